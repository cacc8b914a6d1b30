# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT

# The differences between operating systems in the build files.

# Programs can replace the C library's functions for the clock and for files, see tests/support/VirtualTime.h.
set(MERIVO_HAS_VIRTUAL_TIME OFF)
# Menu entry, manual pages and the completion for bash are installed and tested.
set(MERIVO_HAS_DESKTOP_FILES OFF)
# An installer and an archive contain all libraries, because the system has no packages. Their build needs MinGW-w64.
set(MERIVO_HAS_INSTALLER ${MINGW})
# The command that prints the exports of a library, and what it prints for the plug-in.
set(MERIVO_LIST_EXPORTS "")
# The environment variables of all tests.
set(MERIVO_TEST_ENVIRONMENT LC_ALL=C.UTF-8)
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    set(MERIVO_HAS_VIRTUAL_TIME ON)
    set(MERIVO_HAS_DESKTOP_FILES ON)
    set(MERIVO_LIST_EXPORTS "${CMAKE_NM}" -D --defined-only --format=posix)
    set(MERIVO_PLUGIN_EXPORTS "^qt_plugin_instance T [^\n]*\nqt_plugin_query_metadata T [^\n]*\n$")
elseif(WIN32)
    # Otherwise Qt sends messages to a debugger, and its platform "offscreen" finds no fonts.
    set(MERIVO_TEST_ENVIRONMENT QT_ASSUME_STDERR_HAS_CONSOLE=1 QT_QPA_FONTDIR=C:/Windows/Fonts)
endif()
if(WIN32 AND CMAKE_OBJDUMP)
    set(MERIVO_LIST_EXPORTS "${CMAKE_OBJDUMP}" -p)
    set(MERIVO_PLUGIN_EXPORTS "Name Pointer. Table[^\n]*\n[^\n]* qt_plugin_instance\n[^\n]* qt_plugin_query_metadata\n\n")
endif()

# merivo_link_all_libraries(NAME): links all listed libraries, also those that the target doesn't use.
function(merivo_link_all_libraries name)
    if(UNIX AND NOT APPLE)
        target_link_options(${name} PRIVATE LINKER:--no-as-needed)
    endif()
endfunction()

# merivo_harden(NAME): adds the options of MERIVO_HARDENED to an interface target.
function(merivo_harden name)
    if(NOT CMAKE_SYSTEM_NAME STREQUAL "Linux")
        return()
    endif()
    # Debian's compilers build position-independent executables by default; enable it for others.
    include(CheckPIESupported)
    check_pie_supported()
    set(CMAKE_POSITION_INDEPENDENT_CODE ON PARENT_SCOPE)
    target_compile_options(${name} INTERFACE
        -fstack-protector-strong -fstack-clash-protection -Wformat -Werror=format-security
        $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2>)
    if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
        target_compile_options(${name} INTERFACE -fcf-protection)
    endif()
    target_link_options(${name} INTERFACE LINKER:-z,relro,-z,now)
endfunction()

# merivo_export_only(NAME SYMBOL...): exports only these symbols from the library. Hidden visibility would still export weak
# template symbols; on Windows only declared symbols are exported. Also removes unused code and virtual tables, because
# their relocations slow down loading.
function(merivo_export_only name)
    set(exports "${CMAKE_CURRENT_BINARY_DIR}/${name}.exports")
    if(WIN32)
        return()
    elseif(APPLE)
        list(TRANSFORM ARGN PREPEND "_" OUTPUT_VARIABLE symbols)
        string(JOIN "\n" content ${symbols})
        target_link_options(${name} PRIVATE "LINKER:-exported_symbols_list,${exports}" LINKER:-dead_strip)
    else()
        string(JOIN "; " symbols ${ARGN})
        set(content "{ global: ${symbols}; local: *; };")
        target_link_options(${name} PRIVATE "LINKER:--version-script=${exports}" LINKER:--gc-sections)
    endif()
    file(GENERATE OUTPUT "${exports}" CONTENT "${content}\n")
    set_target_properties(${name} PROPERTIES LINK_DEPENDS "${exports}")
endfunction()

# merivo_add_program_resources(NAME DESCRIPTION): adds icon, version and manifest to a program for Windows.
function(merivo_add_program_resources name description)
    if(NOT WIN32)
        return()
    endif()
    set(MERIVO_PROGRAM "${name}")
    set(MERIVO_DESCRIPTION "${description}")
    string(REPLACE "." "," MERIVO_NUMBERS "${PROJECT_VERSION}")
    set(folder "${PROJECT_SOURCE_DIR}/packaging/windows")
    set(resources "${CMAKE_CURRENT_BINARY_DIR}/${name}.rc")
    configure_file("${folder}/program.rc.in" "${resources}" @ONLY)
    set_source_files_properties("${resources}" PROPERTIES OBJECT_DEPENDS "${folder}/program.manifest;${folder}/merivo.ico")
    enable_language(RC)
    target_sources(${name} PRIVATE "${resources}")
endfunction()
