# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT

# Installs the libraries that Windows doesn't provide. CPack packs everything as an archive and an installer; see
# scripts/windows.

# The pages as HTML. Links to pages that aren't installed become text.
find_program(MERIVO_MARKDOWN markdown_py)
foreach(page IN LISTS pages)
    set(source "${PROJECT_SOURCE_DIR}/docs/${page}.md")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${source}")
    if(NOT MERIVO_MARKDOWN)
        install(FILES "${source}" DESTINATION "${documents}")
        continue()
    endif()
    execute_process(COMMAND "${MERIVO_MARKDOWN}" -x fenced_code -x tables -x toc -e utf-8 "${source}"
        OUTPUT_VARIABLE body COMMAND_ERROR_IS_FATAL ANY)
    foreach(other IN LISTS pages)
        string(REPLACE "href=\"${other}.md" "href=\"${other}.html" body "${body}")
    endforeach()
    string(REGEX REPLACE "<a href=\"[^\":]*\\.md[^\"]*\">([^<]*)</a>" "\\1" body "${body}")
    file(CONFIGURE OUTPUT "${page}.html" @ONLY CONTENT [[<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>Merivo Connections: @page@</title>
<style>
body { font-family: sans-serif; max-width: 60em; margin: 2em auto; padding: 0 1em; line-height: 1.4 }
table { border-collapse: collapse } td, th { border: 1px solid #ccc; padding: 0.3em 0.6em; vertical-align: top }
img { max-width: 100% } pre, code { background: #f4f4f4 }
</style>
</head>
<body>
@body@
</body>
</html>
]])
    install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${page}.html" DESTINATION "${documents}")
endforeach()

# Qt's libraries are installed beside the programs; its plug-ins are found by qt.conf.
get_filename_component(qt "${Qt5Core_DIR}/../../.." ABSOLUTE)
file(CONFIGURE OUTPUT qt.conf CONTENT "[Paths]\nPrefix = .\nPlugins = plugins\n")
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/qt.conf" DESTINATION "${CMAKE_INSTALL_BINDIR}")
foreach(plugin IN ITEMS iconengines/qsvgicon imageformats/qgif imageformats/qsvg platforms/qoffscreen platforms/qwindows
        sqldrivers/qsqlite styles/qwindowsvistastyle)
    get_filename_component(folder "${plugin}" DIRECTORY)
    install(PROGRAMS "${qt}/plugins/${plugin}.dll" DESTINATION "${CMAKE_INSTALL_BINDIR}/plugins/${folder}")
endforeach()
install(DIRECTORY "${qt}/licences" DESTINATION "${CMAKE_INSTALL_BINDIR}" OPTIONAL)
# merivo_find_library_folder(VARIABLE LIBRARY): sets the variable to the compiler's folder that contains the library.
function(merivo_find_library_folder variable library)
    execute_process(COMMAND "${CMAKE_CXX_COMPILER}" "-print-file-name=${library}"
        OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
    get_filename_component(folder "${path}" DIRECTORY)
    get_filename_component(folder "${folder}" ABSOLUTE)
    set(${variable} "${folder}" PARENT_SCOPE)
endfunction()
merivo_find_library_folder(compiler_libraries libstdc++-6.dll)
merivo_find_library_folder(mingw_libraries libkernel32.a)
configure_file(windows/install-libraries.cmake.in install-libraries.cmake @ONLY)
install(SCRIPT "${CMAKE_CURRENT_BINARY_DIR}/install-libraries.cmake")

set(CPACK_GENERATOR ZIP NSIS)
set(CPACK_PACKAGE_NAME MerivoConnections)
set(CPACK_PACKAGE_VENDOR "The Merivo Connections developers")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_FILE_NAME "MerivoConnections-${PROJECT_VERSION}-win64")
set(CPACK_PACKAGE_INSTALL_DIRECTORY "Merivo Connections")
set(CPACK_PACKAGE_EXECUTABLES merivo-host "Merivo Host" merivo-gallery "Merivo Gallery")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_INSTALL_CMAKE_PROJECTS "${PROJECT_BINARY_DIR};MerivoConnections;MerivoConnections;/") # without the toolkit
set(CPACK_STRIP_FILES ON)
set(CPACK_NSIS_DISPLAY_NAME "Merivo Connections")
set(CPACK_NSIS_PACKAGE_NAME "Merivo Connections")
# A 64-bit installer also runs where Windows or Wine can't run 32-bit programs.
set(CPACK_NSIS_EXECUTABLE_PRE_ARGUMENTS [[-XTarget\ amd64-unicode]])
set(CPACK_VERBATIM_VARIABLES ON) # keeps the backslash
set(CPACK_NSIS_INSTALL_ROOT "$PROGRAMFILES64")
set(CPACK_NSIS_EXECUTABLES_DIRECTORY "${CMAKE_INSTALL_BINDIR}")
set(CPACK_NSIS_INSTALLED_ICON_NAME merivo-host.exe)
set(CPACK_NSIS_MUI_ICON "${CMAKE_CURRENT_SOURCE_DIR}/windows/merivo.ico")
set(CPACK_NSIS_MUI_UNIICON "${CPACK_NSIS_MUI_ICON}")
set(CPACK_NSIS_MENU_LINKS doc/merivo-connections/user-guide.html "User guide")
set(CPACK_NSIS_ENABLE_UNINSTALL_BEFORE_INSTALL ON)
set(CPACK_NSIS_MANIFEST_DPI_AWARE ON)
include(CPack)
