# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT

# The one place for compiler flags: every target of ours links merivo_options.
add_library(merivo_options INTERFACE)
target_compile_features(merivo_options INTERFACE cxx_std_17)
target_compile_definitions(merivo_options INTERFACE QT_NO_KEYWORDS QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING)

if(MSVC)
    target_compile_options(merivo_options INTERFACE /W4 /wd4250 /permissive- /utf-8 $<$<BOOL:${MERIVO_WARNINGS_AS_ERRORS}>:/WX>)
else()
    target_compile_options(merivo_options INTERFACE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -fvisibility=hidden -fvisibility-inlines-hidden
        $<$<BOOL:${MERIVO_WARNINGS_AS_ERRORS}>:-Werror>)
endif()

if(MERIVO_SANITIZE)
    target_compile_options(merivo_options INTERFACE
        -fsanitize=${MERIVO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(merivo_options INTERFACE -fsanitize=${MERIVO_SANITIZE})
endif()
