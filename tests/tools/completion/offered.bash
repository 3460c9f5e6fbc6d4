# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

# Completes the lines of standard input, as if the cursor were at their ends, and prints what is offered for each, behind
# "> LINE". $SCRIPTS is the folder of the completion scripts.
set -u
while IFS= read -r line; do
    echo "> $line"
    COMP_WORDS=()
    rest=$line
    # An equals sign is a word by itself, and so is a colon.
    while [[ $rest =~ ^(=|:|(\\.|[^ =:\\])+)\ ? ]]; do
        COMP_WORDS+=("${BASH_REMATCH[1]}")
        rest=${rest#"${BASH_REMATCH[0]}"}
    done
    [[ $line != *' ' ]] || COMP_WORDS+=('')
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    COMPREPLY=()
    before='' # what stays of a word with a colon when the last part is replaced
    if [ "${COMP_WORDS[COMP_CWORD]}" = : ]; then
        before=${COMP_WORDS[COMP_CWORD - 1]}:
    elif [ "${COMP_WORDS[COMP_CWORD - 1]}" = : ]; then
        before=${COMP_WORDS[COMP_CWORD - 2]}:
    fi
    program=${COMP_WORDS[0]}
    # shellcheck disable=SC1090 # of the build
    source "$SCRIPTS/$program"
    words=$(complete -p "$program")
    words=${words#*-F }
    "${words%% *}"
    for candidate in "${COMPREPLY[@]}"; do
        eval "printf '%s\n' $before$candidate"
    done
done
