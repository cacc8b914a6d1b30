# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT
#
# Completion of the options of merivo-host, merivo-reader and merivo-gallery, and of their values. The program itself is
# asked for them, by --help and --list-faults, so this file knows none and can't fall behind.

_merivo()
{
    local program=$1 cur=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]} help value=
    # "--log=file" comes in three words.
    if [[ $cur == = ]]; then
        cur=
    elif [[ $option == = ]]; then
        option=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    COMPREPLY=()
    help=$("$program" --help 2>/dev/null) || return 0

    if [[ $option =~ ^--[a-z-]+$ ]]; then
        value=$(sed -n "s/^  .*$option <\([^>]*\)>.*/\1/p" <<<"$help")
    elif [[ $cur != -* && $help == *$'\nArguments:\n'* ]]; then
        value=FOLDER # of the reader's drive
    fi
    case $value in
    "") mapfile -t COMPREPLY < <(compgen -W "$(grep -oE '^  (-[a-z], )?--[a-z-]+' <<<"$help" | grep -oE -- '--.*')" -- "$cur") ;;
    FILE | LIBRARY | STEPS) compopt -o filenames && mapfile -t COMPREPLY < <(compgen -f -- "$cur") ;;
    FOLDER) compopt -o filenames && mapfile -t COMPREPLY < <(compgen -d -- "$cur") ;;
    NAME) mapfile -t COMPREPLY < <(compgen -W "$(locale -a | sed -n 's/^\([a-z]*_[A-Z]*\).*/\1/p' | sort -u)" -- "$cur") ;;
    FAULT) mapfile -t COMPREPLY < <(compgen -W "$("$program" --list-faults | grep -oE '^[a-z-]+')" -- "$cur") ;;
    esac
}
complete -F _merivo merivo-host merivo-reader merivo-gallery
