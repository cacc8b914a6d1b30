# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT
#
# Completion of the options of merivo-host, merivo-reader and merivo-gallery, and of their values. The program itself is
# asked for them, by --help and --list-faults, so this file knows none and can't fall behind.

# _merivo_offer ACTION...: what compgen makes of the action and the word so far.
_merivo_offer()
{
    mapfile -t COMPREPLY < <(compgen "$@" -- "$cur")
}

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
    fi
    # Also behind an option that takes no value.
    if [[ -z $value && $cur != -* && $help == *$'\nArguments:\n'* ]]; then
        value=FOLDER # of the reader's drive
    fi
    case $value in
    "") _merivo_offer -W "$(sed -nE 's/^  (-[a-z], )?(--[a-z-]+).*/\2/p' <<<"$help")" ;;
    FILE | LIBRARY | STEPS) compopt -o filenames && _merivo_offer -f ;;
    FOLDER) compopt -o filenames && _merivo_offer -d ;;
    NAME) _merivo_offer -W "$(locale -a | sed -n 's/^\([a-z]*_[A-Z]*\).*/\1/p' | sort -u)" ;;
    FAULT) _merivo_offer -W "$("$program" --list-faults | grep -oE '^[a-z-]+')" ;;
    esac
}
complete -F _merivo merivo-host merivo-reader merivo-gallery
