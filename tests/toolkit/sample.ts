<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_GB" sourcelanguage="en">
<context>
    <name>Sample</name>
    <message>
        <source>working text</source>
        <translation>displayed text</translation>
    </message>
</context>
</TS>
