# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

# The .zshrc of a shell that completes the lines of the file $LINES_FILE, as if the cursor were at their ends, and writes to
# $OFFERED_FILE what is offered for each, behind "> LINE". $SCRIPTS is the folder of the completion scripts.
fpath=("$SCRIPTS" $fpath)
autoload -Uz compinit
compinit -u -D

# Writes down the candidates that fit instead of inserting them.
compadd() {
    if [[ ${@[1,(i)(-|--)]} == *-[OAD]\ * ]]; then
        builtin compadd "$@"
        return
    fi
    local -a offered
    builtin compadd -O offered "$@"
    (( $#offered )) && print -rl -- $offered >>"$OFFERED_FILE"
}

complete_line() { _main_complete }
zle -C complete_line complete-word complete_line

zle-line-init() {
    local line
    for line in "${(@f)$(<"$LINES_FILE")}"; do
        print -r -- "> $line" >>"$OFFERED_FILE"
        BUFFER=$line
        CURSOR=$#BUFFER
        zle complete_line
    done
    exit 0
}
zle -N zle-line-init
