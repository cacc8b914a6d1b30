# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT
#
# Completes the options of merivo-host, merivo-reader and merivo-gallery, and their values. These are read from the
# program's --help and --list-faults, so that the completion is always up to date.

# _merivo_offer ACTION...: offers the matches of compgen for the current word.
_merivo_offer()
{
    mapfile -t COMPREPLY < <(compgen "$@" -- "$cur")
}

_merivo()
{
    local program=$1 cur=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]} help value=
    # bash splits "--log=file" into three words.
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
    # An argument, also after an option without a value.
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
