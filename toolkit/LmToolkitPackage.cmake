# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT
include(CMakePackageConfigHelpers)

# The install component LmToolkit: libraries, public headers and a CMake package. The headers are installed in a folder
# "toolkit" below the include directory, so that #include "toolkit/LmIcons.h" works here and in an installation.
set(lm_include_directory "${CMAKE_INSTALL_INCLUDEDIR}/LmToolkit")
set(lm_package_directory "${CMAKE_INSTALL_LIBDIR}/cmake/LmToolkit")

# lm_install_library(TARGET NAME LIBRARY [PRIVATE_HEADERS ...]): installs the target as LmToolkit::NAME, in a file named
# LIBRARY, with all of its headers except the private ones.
function(lm_install_library target name library)
    cmake_parse_arguments(arg "" "" "PRIVATE_HEADERS" ${ARGN})
    get_target_property(headers ${target} PUBLIC_HEADER)
    list(REMOVE_ITEM headers ${arg_PRIVATE_HEADERS})
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${name} OUTPUT_NAME ${library} PUBLIC_HEADER "${headers}")
    install(TARGETS ${target} EXPORT ${library}Targets
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT LmToolkit
        PUBLIC_HEADER DESTINATION "${lm_include_directory}/toolkit" COMPONENT LmToolkit
        INCLUDES DESTINATION "${lm_include_directory}")
    install(EXPORT ${library}Targets
        NAMESPACE LmToolkit:: DESTINATION "${lm_package_directory}" COMPONENT LmToolkit)
endfunction()

# lm_install_package(): installs the files for find_package(LmToolkit).
function(lm_install_package)
    set(config "${CMAKE_CURRENT_BINARY_DIR}/LmToolkitConfig.cmake")
    set(version "${CMAKE_CURRENT_BINARY_DIR}/LmToolkitConfigVersion.cmake")
    configure_package_config_file(LmToolkitConfig.cmake.in "${config}"
        INSTALL_DESTINATION "${lm_package_directory}" NO_SET_AND_CHECK_MACRO)
    write_basic_package_version_file("${version}" COMPATIBILITY SameMinorVersion)
    install(FILES "${config}" "${version}" DESTINATION "${lm_package_directory}" COMPONENT LmToolkit)
endfunction()
