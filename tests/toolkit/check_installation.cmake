# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT

# Installs the toolkit alone into an empty folder, and configures, builds and runs an application against it.
#
#     cmake -D BUILD=folder -D WORK=folder -D CONFIG=type -D FLAGS=flags ... -P check_installation.cmake
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "Ended with ${result}: ${ARGN}\n${output}")
    endif()
endfunction()

file(REMOVE_RECURSE "${WORK}")
run("${CMAKE_COMMAND}" --install "${BUILD}" --config "${CONFIG}" --component LmToolkit --prefix "${WORK}/prefix")

file(GLOB_RECURSE headers "${WORK}/prefix/*.h")
foreach(header IN LISTS headers)
    file(STRINGS "${header}" confessions REGEX "Private to the toolkit" LIMIT_COUNT 1)
    if(confessions)
        message(SEND_ERROR "A private header is installed: ${header}")
    endif()
endforeach()

run("${CMAKE_COMMAND}" -S "${CMAKE_CURRENT_LIST_DIR}/consumer" -B "${WORK}/build" -G "${GENERATOR}"
    "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER}" "-DCMAKE_CXX_FLAGS=${FLAGS}"
    "-DCMAKE_BUILD_TYPE=${CONFIG}" "-DCMAKE_PREFIX_PATH=${WORK}/prefix"
    -DCMAKE_RUNTIME_OUTPUT_DIRECTORY=${WORK}/bin -DCMAKE_FIND_PACKAGE_NO_PACKAGE_REGISTRY=ON)
run("${CMAKE_COMMAND}" --build "${WORK}/build" --config "${CONFIG}")
find_program(consumer consumer PATHS "${WORK}/bin" "${WORK}/bin/${CONFIG}" NO_DEFAULT_PATH REQUIRED)
run("${consumer}")
