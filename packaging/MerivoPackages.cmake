# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT

# Debian packages by CPack: merivo-connections, the plug-in with the programs, and liblmtoolkit-dev, the toolkit. The
# toolkit is a static library and needs no runtime package. Built by scripts/package.
set(MERIVO_PACKAGE_CONTACT "The Merivo Connections developers <merivo-connections@example.org>"
    CACHE STRING "Maintainer of the packages, with a mail address")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME merivo-connections)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}") # all four numbers
set(CPACK_PACKAGE_CONTACT "${MERIVO_PACKAGE_CONTACT}")
set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL MerivoConnections LmToolkit)
set(CPACK_COMPONENTS_GROUPING IGNORE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_MERIVOCONNECTIONS_PACKAGE_NAME merivo-connections)
set(CPACK_DEBIAN_MERIVOCONNECTIONS_PACKAGE_SECTION science)
set(CPACK_DEBIAN_MERIVOCONNECTIONS_PACKAGE_SHLIBDEPS ON)
# Qt loads the database driver at run time, so no link dependency shows it.
set(CPACK_DEBIAN_MERIVOCONNECTIONS_PACKAGE_DEPENDS libqt5sql5-sqlite)
set(CPACK_DEBIAN_MERIVOCONNECTIONS_PACKAGE_RECOMMENDS "bash-completion, hicolor-icon-theme")
set(CPACK_COMPONENT_MERIVOCONNECTIONS_DESCRIPTION
"plug-in that reads insulin pumps, with a stand-in host
Merivo Connections is a plug-in of a desktop application for diabetes data.
It assigns an insulin pump to the patient whose diary is open, reads the
pump's history into that diary, and can remove the assignment. The pump is
connected through a USB reader, which appears as a removable drive.
.
The programs of this package run it without a pump, a reader or the real
application: merivo-host is a stand-in host with patients, imports and a log,
merivo-reader simulates the reader in any folder, and merivo-gallery shows the
widgets.")

set(CPACK_DEBIAN_LMTOOLKIT_PACKAGE_NAME liblmtoolkit-dev)
set(CPACK_DEBIAN_LMTOOLKIT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_LMTOOLKIT_PACKAGE_DEPENDS
    "libqt5svg5-dev (>= 5.15), libqt5xmlpatterns5-dev (>= 5.15), qtbase5-dev (>= 5.15)")
set(CPACK_COMPONENT_LMTOOLKIT_DESCRIPTION
"Qt widgets, texts and files of desktop applications (development files)
The Lm toolkit has fields with special texts, a calendar, lists with movable
items, message boxes and tooltips; numbers, durations and dates in the user's
locale, right-to-left texts and CSV fields; icons, drives and files; tracking
of objects and timings; and XML validation.
.
This package has the static libraries, the headers and the CMake package
LmToolkit with its targets LmToolkit::Toolkit and LmToolkit::Xml.")

# Applies Debian's requirements to the installed files before packing.
set(MERIVO_PACKAGE_VERSION "${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")
string(TIMESTAMP MERIVO_PACKAGE_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
foreach(package IN ITEMS merivo-connections liblmtoolkit-dev)
    configure_file(changelog.in changelog.${package} @ONLY)
endforeach()
configure_file(prepare-packages.cmake.in prepare-packages.cmake @ONLY)
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_BINARY_DIR}/prepare-packages.cmake")

include(CPack)
