# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT

# merivo_add_layer(TARGET ALIAS SOURCES ... LINKS ...)
#
# Adds one layer: a static, position-independent library. Its headers are the listed ones and, for each source, the
# header of the same name. They are included by folder, as "readerlink/StatusFileParser.h". Each layer has an include
# folder in the build tree with one forwarding header for each, so that only targets that link the layer can include
# them.
function(merivo_add_layer target alias)
    cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
    set(headers ${arg_SOURCES})
    list(TRANSFORM headers REPLACE "\\.cpp$" ".h")
    set(include_dir "${PROJECT_BINARY_DIR}/include/${target}")
    file(RELATIVE_PATH folder "${PROJECT_SOURCE_DIR}" "${CMAKE_CURRENT_SOURCE_DIR}")
    string(REGEX REPLACE "^src/" "" folder "${folder}")
    set(public_headers)
    foreach(header IN LISTS headers)
        if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/${header}" AND header MATCHES "\\.h$")
            file(RELATIVE_PATH path "${include_dir}/${folder}" "${CMAKE_CURRENT_SOURCE_DIR}/${header}")
            file(CONFIGURE OUTPUT "${include_dir}/${folder}/${header}" CONTENT "#include \"${path}\"\n")
            list(APPEND public_headers ${header})
        endif()
    endforeach()

    add_library(${target} STATIC ${arg_SOURCES})
    add_library(${alias} ALIAS ${target})
    set_target_properties(${target} PROPERTIES
        POSITION_INDEPENDENT_CODE ON AUTOMOC ON AUTOUIC ON PUBLIC_HEADER "${public_headers}")
    target_include_directories(${target} PUBLIC "$<BUILD_INTERFACE:${include_dir}>")
    # Installed layers don't depend on the project's compiler options.
    target_link_libraries(${target} PUBLIC ${arg_LINKS} PRIVATE $<BUILD_INTERFACE:merivo_options>)
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

# merivo_set_test_properties(NAME TIMEOUT LABELS): sets time-out, labels and environment of a test.
function(merivo_set_test_properties name timeout labels)
    set(suppressions "${PROJECT_SOURCE_DIR}/tests/support/tsan-suppressions.txt")
    set_tests_properties(${name} PROPERTIES
        TIMEOUT ${timeout}
        LABELS "${labels}"
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;${MERIVO_TEST_ENVIRONMENT};TSAN_OPTIONS=suppressions=${suppressions}:halt_on_error=1:second_deadlock_stack=1;ASAN_OPTIONS=detect_leaks=0;UBSAN_OPTIONS=print_stacktrace=1")
endfunction()

# merivo_add_program(NAME DESCRIPTION SOURCES ... LINKS ... [GUI]): adds a program and installs it. On Windows it has an
# icon, a version and a manifest, and a GUI program opens no console.
function(merivo_add_program name description)
    cmake_parse_arguments(arg "GUI" "" "SOURCES;LINKS" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    set_target_properties(${name} PROPERTIES WIN32_EXECUTABLE ${arg_GUI})
    target_link_libraries(${name} PRIVATE ${arg_LINKS} merivo_options)
    install(TARGETS ${name} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
    merivo_add_program_resources(${name} "${description}")
endfunction()

# merivo_skip_test(NAME REASON): adds a test that ctest reports as skipped, with the reason in its output.
function(merivo_skip_test name reason)
    add_test(NAME ${name} COMMAND "${CMAKE_COMMAND}" -E echo "${reason}")
    set_tests_properties(${name} PROPERTIES SKIP_REGULAR_EXPRESSION ".")
endfunction()
