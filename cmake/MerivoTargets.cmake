# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT

# merivo_add_floor(NAME FOLDER SOURCES ... LINKS ...)
#
# One floor of the house: a static, position-independent library. Its include directory shows its own folder alone, so
# a source can include only what its floor links, and a forbidden include doesn't compile.
function(merivo_add_floor name folder)
    cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
    set(view "${PROJECT_BINARY_DIR}/include/${name}")
    get_filename_component(view_parent "${view}/${folder}" DIRECTORY)
    file(MAKE_DIRECTORY "${view_parent}")
    file(CREATE_LINK "${PROJECT_SOURCE_DIR}/${folder}" "${view}/${folder}" RESULT failure SYMBOLIC)
    if(failure)
        # No right to make links, as on Windows without developer mode: builds too, but lets forbidden includes pass.
        set(view "${PROJECT_SOURCE_DIR}")
    endif()

    add_library(${name} STATIC ${arg_SOURCES})
    set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON AUTOMOC ON AUTOUIC ON)
    target_include_directories(${name} PUBLIC "$<BUILD_INTERFACE:${view}>")
    # How we build is nothing that a user of an installed floor takes over.
    target_link_libraries(${name} PUBLIC ${arg_LINKS} PRIVATE $<BUILD_INTERFACE:merivo_options>)
endfunction()

# merivo_add_resources(OUTPUT QRC [OPTIONS ...]): qt5_add_resources() with a reproducible result. rcc stores the time of
# each file, which isn't used; this function replaces it with a constant, independent of the environment.
function(merivo_add_resources output qrc)
    set(Qt5Core_RCC_EXECUTABLE
        "${CMAKE_COMMAND}" -E env --unset=SOURCE_DATE_EPOCH QT_RCC_SOURCE_DATE_OVERRIDE=1 "$<TARGET_FILE:Qt5::rcc>")
    qt5_add_resources(files "${qrc}" ${ARGN})
    set(${output} "${files}" PARENT_SCOPE)
endfunction()

# merivo_add_test(NAME SOURCES ... LINKS ... [LABELS ...] [TIMEOUT seconds])
#
# Adds a QtTest executable that runs without a display. The label "polling" adds it to the target polling_tests, the only
# one that the preset tsan builds.
function(merivo_add_test name)
    cmake_parse_arguments(arg "" "TIMEOUT" "SOURCES;LINKS;LABELS" ${ARGN})
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 120)
    endif()
    add_executable(${name} ${arg_SOURCES})
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
    target_link_libraries(${name} PRIVATE ${arg_LINKS} Qt5::Test merivo_options)
    add_test(NAME ${name} COMMAND ${name})
    if("polling" IN_LIST arg_LABELS)
        add_dependencies(polling_tests ${name})
    endif()
    merivo_set_test_properties(${name} ${arg_TIMEOUT} "${arg_LABELS}")
endfunction()

# merivo_set_test_properties(NAME TIMEOUT LABELS): sets the environment of a test.
function(merivo_set_test_properties name timeout labels)
    set(suppressions "${PROJECT_SOURCE_DIR}/tests/support/tsan-suppressions.txt")
    set_tests_properties(${name} PROPERTIES
        TIMEOUT ${timeout}
        LABELS "${labels}"
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;TSAN_OPTIONS=suppressions=${suppressions}:halt_on_error=1:second_deadlock_stack=1;ASAN_OPTIONS=detect_leaks=0;UBSAN_OPTIONS=print_stacktrace=1")
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
