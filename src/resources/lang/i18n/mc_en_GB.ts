<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<!--
SPDX-FileCopyrightText: 2026 The Merivo Connections developers
SPDX-License-Identifier: MIT

What the user reads, in every locale. Of several messages with one source text in a context, lrelease stores the first
without its comment, so that a call whose comment isn't stored still finds a text: keep the order within a context.
-->
<TS version="2.1" language="en_GB" sourcelanguage="en_GB">
<context>
    <name>DevicesModel</name>
    <message>
        <source>Assigned to</source>
        <comment>Column name within pump selection table</comment>
        <translation>Assigned to</translation>
    </message>
    <message>
        <source>Device name</source>
        <comment>Column name within pump selection table</comment>
        <translation>Device name</translation>
    </message>
    <message>
        <source>Serial Number</source>
        <comment>Column name within pump selection table</comment>
        <translation>Serial number</translation>
    </message>
</context>
<context>
    <name>ErrorHandler</name>
    <message>
        <source>&lt;b&gt;Connection Error&lt;/b&gt;</source>
        <comment>Title when the pump was not found.</comment>
        <translation>&lt;b&gt;Pump communication error&lt;/b&gt;</translation>
    </message>
    <message>
        <source>&lt;b&gt;Connection Error&lt;/b&gt;</source>
        <comment>Title when the pump must be removed.</comment>
        <translation>&lt;b&gt;Pump communication error&lt;/b&gt;</translation>
    </message>
    <message>
        <source>&lt;b&gt;Connection Error&lt;/b&gt;</source>
        <comment>Title when the LM2 must be removed from the pump.</comment>
        <translation>&lt;b&gt;Pump communication error&lt;/b&gt;</translation>
    </message>
    <message>
        <source>&lt;b&gt;Connection lost&lt;/b&gt;</source>
        <translation>&lt;b&gt;Connection lost&lt;/b&gt;</translation>
    </message>
    <message>
        <source>&lt;b&gt;Unable to pair with this device&lt;/b&gt;</source>
        <translation>&lt;b&gt;Pairing not possible with this device&lt;/b&gt;</translation>
    </message>
    <message>
        <source>&lt;b&gt;Unknown error code: %1&lt;/b&gt;</source>
        <translation>&lt;b&gt;Error Code: %1&lt;/b&gt;</translation>
    </message>
    <message>
        <source>Maybe the battery is weak, or the pump is too far away. Please move it closer and try again to connect.</source>
        <translation>If the pump display is on, wait for the pump display to turn off.&lt;br/&gt; 
The pump may be too far away. Move the pump closer to the Sanvio Lumo device.&lt;br/&gt; 
Try to connect again.</translation>
    </message>
    <message>
        <source>Maybe the battery is weak, or the pump is too far away. Please move it closer and try again to connect. The pump can&apos;t be connected to the LM2.</source>
        <translation>If the pump display is on, wait for the pump display to turn off. &lt;br/&gt;
The pump may be too far away. Move the pump closer to the Sanvio Lumo device.&lt;br/&gt; 
Try to connect again.</translation>
    </message>
    <message>
        <source>Merivo Connections</source>
        <comment>Message box title used in communication error/warning messages</comment>
        <translation>Sanvio Merivo Pump Plugin</translation>
    </message>
    <message>
        <source>Please contact the support.</source>
        <translation>&lt;br/&gt;Contact your customer support and service centre.</translation>
    </message>
    <message>
        <source>The pump is already paired to a LM2. Remove the LM2 from the pump.</source>
        <translation>The pump is already paired to this Sanvio Lumo device.&lt;br/&gt; 
On the pump, remove the Sanvio Lumo device from the list of paired devices. Try to add the pump again.</translation>
    </message>
    <message>
        <source>This pump is already paired with the LM2. Remove the pump and then you can pair again.</source>
        <translation>This Sanvio Lumo device is already paired to the pump.&lt;br/&gt; 
Remove the pump from the Sanvio Merivo pump plugin. Try to add the pump again.</translation>
    </message>
    <message>
        <source>Unfortunately, this version of the pump doesn&apos;t work with this plugin. Please contact the support.</source>
        <translation>Pairing not possible with this pump version. Contact your customer support and service centre.</translation>
    </message>
</context>
<context>
    <name>MainDialog</name>
    <message>
        <source>&lt;b&gt;Request of patient assigned paired pump failed.&lt;/b&gt;</source>
        <translation>&lt;b&gt;Request of patient assigned paired pump failed.&lt;/b&gt;</translation>
    </message>
    <message>
        <source>Add pump</source>
        <translation>Add pump</translation>
    </message>
    <message>
        <source>Do you want to retry the request?</source>
        <translation>Do you want to retry the request?</translation>
    </message>
    <message>
        <source>Merivo Connection Plugin</source>
        <translation>Sanvio Merivo Pump Plugin</translation>
    </message>
    <message>
        <source>Merivo Connections</source>
        <comment>Default message box title used within plugin warnings.</comment>
        <translation>Sanvio Merivo Pump Plugin</translation>
    </message>
    <message>
        <source>Merivo Connections</source>
        <comment>Message box title used in communication error/warning messages</comment>
        <translation>Sanvio Merivo Pump Plugin</translation>
    </message>
    <message>
        <source>No pump assigned</source>
        <translation>No pump assigned</translation>
    </message>
    <message>
        <source>Pump assigned: S/N &apos;%1&apos;.</source>
        <translation>Assigned pump: Serial number &apos;%1&apos;.</translation>
    </message>
    <message>
        <source>Read pump</source>
        <translation>Read pump</translation>
    </message>
    <message>
        <source>Remove pump</source>
        <translation>Remove pump</translation>
    </message>
    <message>
        <source>Something is wrong with the devicereader. Please reconnect it to the PC.</source>
        <translation>The Sanvio Lumo device is not responding. Disconnect the device from the PC and reconnect it.</translation>
    </message>
</context>
<context>
    <name>MerivoConnectionsComponent</name>
    <message>
        <source>Merivo Connection</source>
        <comment>Used as transaltable menu entry</comment>
        <translation>Sanvio Merivo Pump Plugin</translation>
    </message>
    <message>
        <source>No lumo2 device reader is currently connected.</source>
        <translation>No Sanvio Lumo device connected.</translation>
    </message>
    <message>
        <source>No patient is selected. Please select first an patient and then start the plugin again.</source>
        <translation>No patient record is selected.&lt;br/&gt;
 First, select a patient record. Then start the Sanvio Merivo pump plugin again.</translation>
    </message>
    <message>
        <source>The Lumodevice has an old firmware. Please update the DeviceReader and start the plugin again</source>
        <translation>Your Sanvio Lumo device uses an old software version. Download the latest software version and start the Sanvio Merivo pump plugin again.</translation>
    </message>
</context>
<context>
    <name>PatientSession</name>
    <message>
        <source>%1, %2</source>
        <comment>Pattern to display patient name and surname</comment>
        <translation>%1, %2</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <comment>Pattern to display patient line 2 (birthday and extension)</comment>
        <translation>%1, %2</translation>
    </message>
</context>
<context>
    <name>PumpAddDialog</name>
    <message>
        <source>&lt;b&gt;Data can only be transmitted to the reader when your pump display is off.&lt;/b&gt;</source>
        <translation>&lt;b&gt;Note:&lt;/b&gt; Only click “OK” when the pump display has turned off.</translation>
    </message>
    <message>
        <source>&lt;b&gt;List of found pumps&lt;/b&gt;</source>
        <translation>&lt;b&gt;List of available pumps&lt;/b&gt;</translation>
    </message>
    <message>
        <source>&lt;b&gt;Looking for new&lt;br/&gt;Sanvio Merivo pump&lt;/b&gt;</source>
        <translation>&lt;b&gt;Searching for an &lt;br/&gt;Sanvio Merivo pump&lt;/b&gt;</translation>
    </message>
    <message>
        <source>&lt;b&gt;Note:&lt;/b&gt;&lt;br/&gt;&lt;i&gt;The data that was downloaded from the pump remains in the patient record.&lt;/b&gt;</source>
        <translation>&lt;b&gt;Note:&lt;/b&gt;&lt;br/&gt;All data previously downloaded from this pump remain in the previous patient record.&lt;/b&gt;</translation>
    </message>
    <message>
        <source>&lt;b&gt;Please wait...&lt;br/&gt;Get confirmation code from pump&lt;/b&gt;</source>
        <translation>&lt;b&gt;Please wait...&lt;br/&gt;Requesting confirmation code from the pump&lt;/b&gt;</translation>
    </message>
    <message>
        <source>&lt;b&gt;Please wait...&lt;br/&gt;Handle pairing confirmation on pump&lt;/b&gt;</source>
        <translation>&lt;b&gt;Waiting&lt;br/&gt;for the pairing to be completed on the pump&lt;/b&gt;</translation>
    </message>
    <message>
        <source>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;
&lt;br&gt;1. On the Pump, go to &lt;b&gt;Settings&lt;/b&gt;, then select &lt;b&gt;Communication&lt;/b&gt;.&lt;br/&gt;
&lt;br&gt;2. Make sure &lt;b&gt;Bluetooth&lt;/b&gt; is enabled on the pump.&lt;br/&gt;
&lt;br&gt;3. In &lt;b&gt;Settings&lt;/b&gt; choose &lt;b&gt;Communication&lt;/b&gt; and select &lt;b&gt;Add Device&lt;/b&gt;. It may take a few moment for the pump to appear.&lt;br/&gt;
&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</source>
        <translation>Select a pump and click &quot;Assign&quot; to assign the pump to the currently open patient record.</translation>
    </message>
    <message>
        <source>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;
&lt;br&gt;1. On the Pump, go to &lt;b&gt;Settings&lt;/b&gt;, then select &lt;b&gt;Communication&lt;/b&gt;.&lt;br/&gt;
&lt;br&gt;2. Make sure &lt;b&gt;Bluetooth&lt;/b&gt; is enabled on the pump.&lt;br/&gt;
&lt;br&gt;3. In &lt;b&gt;Settings&lt;/b&gt; choose &lt;b&gt;Communication&lt;/b&gt; and select &lt;b&gt;Add Device&lt;/b&gt;. It may take a few moment for the pump to appear.&lt;br/&gt;
&lt;br&gt;4. Please make sure the pump is close enogh to the reader. If the pump shows up, please click assign to add the pump to this patient.&lt;br/&gt;
&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</source>
        <translation>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;
&lt;br&gt;1. On the pump, go to &lt;b&gt;Settings&lt;/b&gt; and select &lt;b&gt;Communication&lt;/b&gt;.&lt;br/&gt;
&lt;br&gt;2. Make sure &lt;b&gt;&lt;i&gt;Bluetooth&lt;/i&gt;&lt;sup&gt;®&lt;/sup&gt; technology&lt;/b&gt; is enabled.&lt;br/&gt;
&lt;br&gt;3. On the pump, go to &lt;b&gt;Settings&lt;/b&gt;, select &lt;b&gt;Communication&lt;/b&gt; and select &lt;b&gt;Add Device&lt;/b&gt;.&lt;br/&gt;
&lt;br&gt;4. Click &quot;Search&quot;. It may take a few moments for the pump to appear.
&lt;br/&gt;
&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</translation>
    </message>
    <message>
        <source>Add new pump</source>
        <translation>Add pump</translation>
    </message>
    <message>
        <source>Are you sure to reassign the pump &lt;b&gt;%1&lt;/b&gt; from patient &lt;b&gt;&apos;%2&apos;&lt;/b&gt; to patient &lt;b&gt;&apos;%3&apos;&lt;/b&gt;?</source>
        <translation>Are you sure you want to reassign the pump &lt;b&gt;%1&lt;/b&gt; from patient &lt;b&gt;&apos;%2&apos;&lt;/b&gt; to patient &lt;b&gt;&apos;%3&apos;&lt;/b&gt;?</translation>
    </message>
    <message>
        <source>Assign</source>
        <translation>Assign</translation>
    </message>
    <message>
        <source>Cancel the pairing on the pump by pressing the &quot;Back&quot; key and wait until the display to switches off. Only if the display is off the pump can transmit data to the reader.</source>
        <translation>On the pump, press the &quot;Back&quot; key to cancel the pairing process. Wait for the pump display to turn off. Then click &quot;OK&quot; to start the data transfer.</translation>
    </message>
    <message>
        <source>Check if the code matches the one shown on the pumps display</source>
        <translation>Compare the code with the code shown on the pump display. If the code matches, click &quot;Confirm&quot;. If the code does not match, click &quot;Decline&quot;.</translation>
    </message>
    <message>
        <source>Confirm</source>
        <translation>Confirm</translation>
    </message>
    <message>
        <source>Decline</source>
        <translation>Decline</translation>
    </message>
    <message>
        <source>Follow the instructions on the pump to complete the pairing.</source>
        <translation>Follow the instructions on the pump to complete the pairing. Wait for the pump display to turn off. Then click &quot;OK&quot; to start the data transfer.</translation>
    </message>
    <message>
        <source>Merivo Connection - Add pump</source>
        <translation>Sanvio Merivo Pump Plugin - Add pump</translation>
    </message>
    <message>
        <source>Merivo Connections</source>
        <comment>Default message box title used within plugin warnings.</comment>
        <translation>Sanvio Merivo Pump Plugin</translation>
    </message>
    <message>
        <source>Merivo Connections</source>
        <comment>Default message box title used within plugin questions.</comment>
        <translation>Sanvio Merivo Pump Plugin</translation>
    </message>
    <message>
        <source>No device selected.</source>
        <translation>No device selected. Select a device and click &quot;Assign&quot;.</translation>
    </message>
    <message>
        <source>No device was found.</source>
        <translation>No device found. Ensure the pump is in pairing mode.</translation>
    </message>
    <message>
        <source>Please cancel pairing on pump</source>
        <translation>Reassign the pump to another patient.</translation>
    </message>
    <message>
        <source>Please confirm connection on pump</source>
        <translation>Complete pairing on the pump</translation>
    </message>
    <message>
        <source>Please confirm the pump</source>
        <translation>Pairing with the pump</translation>
    </message>
    <message>
        <source>Press &quot;OK&quot; to continue. Press &quot;Prev&quot; to see the list of available pumps.</source>
        <translation>If you want to select a different pump, click &quot;Prev&quot;.</translation>
    </message>
    <message>
        <source>Prev</source>
        <comment>Button description within &apos;Reassign&apos; page to open the &apos;Overview&apos; page</comment>
        <translation>Prev</translation>
    </message>
    <message>
        <source>Reassign</source>
        <translation>Reassign</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Search</translation>
    </message>
    <message>
        <source>Search</source>
        <comment>Button description within &apos;Start&apos; page to search and open the &apos;Overview&apos; page</comment>
        <translation>Search</translation>
    </message>
    <message>
        <source>Something is wrong with the devicereader. Please reconnect it to the PC.</source>
        <translation>The Sanvio Lumo device is not responding. Disconnect the device from the PC and reconnect it.</translation>
    </message>
    <message>
        <source>Stop</source>
        <comment>Button description within &apos;Start&apos; page to stop the search</comment>
        <translation>Abort</translation>
    </message>
</context>
<context>
    <name>PumpDialog</name>
    <message>
        <source>Merivo Connections</source>
        <comment>Default message box title used within plugin warnings.</comment>
        <translation>Sanvio Merivo Pump Plugin</translation>
    </message>
    <message>
        <source>Something is wrong with the devicereader. Please reconnect it to the PC.</source>
        <translation>The Sanvio Lumo device is not responding. Disconnect the device from the PC and reconnect it.</translation>
    </message>
</context>
<context>
    <name>PumpReadDialog</name>
    <message>
        <source>&lt;b&gt;NOTE:&lt;/b&gt;&lt;br/&gt;&lt;i&gt;The data recently read from the &lt;b&gt;Sanvio Merivo&lt;/b&gt; pump &lt;b&gt;%1&lt;/b&gt; will be discarded!&lt;/i&gt;&lt;br/&gt;Do you want to proceed anyway?</source>
        <translation>&lt;b&gt;NOTE:&lt;/b&gt;&lt;br/&gt;&lt;i&gt;The data just read from the &lt;b&gt;Sanvio Merivo&lt;/b&gt; pump &lt;b&gt;%1&lt;/b&gt; will be discarded!&lt;/i&gt;&lt;br/&gt;Do you want to proceed anyway?</translation>
    </message>
    <message>
        <source>Import</source>
        <comment>Button description of the &apos;OK&apos; button</comment>
        <translation>Import</translation>
    </message>
    <message>
        <source>Looking for pump %1</source>
        <translation>Searching for pump with serial number %1</translation>
    </message>
    <message>
        <source>Merivo Connection - Add pump</source>
        <translation>Sanvio Merivo Pump Plugin - Read pump</translation>
    </message>
    <message>
        <source>Merivo Connections</source>
        <comment>Default message box title used within plugin questions.</comment>
        <translation>Sanvio Merivo Pump Plugin</translation>
    </message>
    <message>
        <source>Read out completed!</source>
        <translation>Download completed!</translation>
    </message>
    <message>
        <source>Read out device pump %1</source>
        <translation>Downloading data from pump with serial number %1</translation>
    </message>
    <message>
        <source>Read out failed!</source>
        <translation>Download failed!</translation>
    </message>
    <message>
        <source>Read out pump</source>
        <translation>Read pump</translation>
    </message>
    <message>
        <source>Read out running ...</source>
        <translation>Download in progress...</translation>
    </message>
    <message>
        <source>Read pump</source>
        <translation>Read pump</translation>
    </message>
</context>
<context>
    <name>PumpRemoveDialog</name>
    <message>
        <source>&lt;b&gt;List of found pumps&lt;/b&gt;</source>
        <translation>&lt;b&gt;List of available pumps&lt;/b&gt;</translation>
    </message>
    <message>
        <source>&lt;b&gt;Note:&lt;/b&gt;&lt;br/&gt;&lt;i&gt; The data that was downloaded from the pump remains in the patient record.&lt;/i&gt;</source>
        <translation>On the pump, remove the Sanvio Lumo device from the list of paired devices.</translation>
    </message>
    <message>
        <source>A pump only needs to be removed from a patient, if you want to add a different new device to this patient. Please select the pump you want to remove from this patient.</source>
        <translation>Select the pump you want to remove and click “Remove”. &lt;br/&gt;
If you remove the pump, only the assignment to the patient record is removed. All data previously downloaded remain in the patient record.</translation>
    </message>
    <message>
        <source>Are you sure to remove the pump &lt;b&gt;%1&lt;/b&gt; from patient &lt;b&gt;%2&lt;/b&gt;?</source>
        <translation>Are you sure that you want to remove the assignment of the pump &lt;b&gt;%1&lt;/b&gt; to patient record &lt;b&gt;%2&lt;/b&gt;?&lt;br/&gt;
All data previously downloaded from this pump remain in the record of patient &lt;b&gt;%2&lt;/b&gt;.</translation>
    </message>
    <message>
        <source>Merivo Connection - Add pump</source>
        <translation>Sanvio Merivo Pump Plugin - Remove pump</translation>
    </message>
    <message>
        <source>Merivo Connections</source>
        <comment>Default message box title used within plugin questions.</comment>
        <translation>Sanvio Merivo Pump Plugin</translation>
    </message>
    <message>
        <source>Remove</source>
        <comment>Description on the dialog accept button</comment>
        <translation>Remove</translation>
    </message>
    <message>
        <source>Remove Pump</source>
        <translation>Remove pump</translation>
    </message>
</context>
<context>
    <name>ReadoutPumpControl</name>
    <message>
        <source>Merivo Connections</source>
        <comment>Message box title used when read pump failed.</comment>
        <translation>Sanvio Merivo Pump Plugin</translation>
    </message>
    <message>
        <source>The paired device for the patient can&apos;t be found.</source>
        <translation>The assigned pump for this patient cannot be found.</translation>
    </message>
</context>
</TS>
