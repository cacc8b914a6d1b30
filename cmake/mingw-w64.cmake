# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT

# Toolchain of the preset "windows": MinGW-w64, with the Qt and KArchive that scripts/windows builds in its cache.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(MERIVO_WINDOWS_CACHE "$ENV{MERIVO_WINDOWS_CACHE}")
if(NOT MERIVO_WINDOWS_CACHE)
    message(FATAL_ERROR "Set the environment variable MERIVO_WINDOWS_CACHE to the cache folder of scripts/windows")
endif()
set(CMAKE_FIND_ROOT_PATH "${MERIVO_WINDOWS_CACHE}/qt" /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../scripts/wine")
