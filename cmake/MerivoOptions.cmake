# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT

# All compiler flags. Every target links merivo_options.
add_library(merivo_options INTERFACE)
target_compile_features(merivo_options INTERFACE cxx_std_17)
target_compile_definitions(merivo_options INTERFACE QT_NO_KEYWORDS QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING)

if(MSVC)
    target_compile_options(merivo_options INTERFACE /W4 /wd4250 /permissive- /utf-8 $<$<BOOL:${MERIVO_WARNINGS_AS_ERRORS}>:/WX>)
else()
    target_compile_options(merivo_options INTERFACE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -fvisibility=hidden -fvisibility-inlines-hidden
        $<$<BOOL:${MERIVO_WARNINGS_AS_ERRORS}>:-Werror>)
    # qCDebug(category) passes no variadic argument. C++20 allows that, but clang reports it in C++17.
    target_compile_options(merivo_options INTERFACE
        $<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wno-gnu-zero-variadic-macro-arguments>)
    # Separate sections let merivo_export_only() remove unused code. Debug builds link faster without them.
    target_compile_options(merivo_options INTERFACE $<$<NOT:$<CONFIG:Debug>>:-ffunction-sections;-fdata-sections>)
    # Maps build paths in releases, for reproducible builds. Debuggers and coverage reports need them in other builds.
    foreach(folder IN ITEMS "${PROJECT_BINARY_DIR}" "${PROJECT_SOURCE_DIR}") # the last match applies
        target_compile_options(merivo_options INTERFACE $<$<CONFIG:Release>:-ffile-prefix-map=${folder}=.>)
    endforeach()
endif()

if(MERIVO_HARDENED)
    merivo_harden(merivo_options)
endif()

if(MERIVO_SANITIZE)
    target_compile_options(merivo_options INTERFACE
        -fsanitize=${MERIVO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(merivo_options INTERFACE -fsanitize=${MERIVO_SANITIZE})
endif()
