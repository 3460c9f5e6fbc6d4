# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

# Completes the lines of standard input, as if the cursor were at their ends, and prints what is offered for each, behind
# "> LINE". $SCRIPTS is the folder of the completion scripts.
set fish_complete_path $SCRIPTS
while read --local line
    printf '> %s\n' $line
    for candidate in (complete -C $line)
        set candidate (string split \t -- $candidate)[1]
        string unescape -- $candidate
    end
end
