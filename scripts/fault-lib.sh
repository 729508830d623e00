# Shared by the scripts that kill programs at each system call; it also counts failures.
# shellcheck shell=bash

step=1     # kill at every call
failures=0
options=() # which root, or the computer: for the helper and for Brindle

failed() {
    say "FAILED: $*"
    failures=$((failures + 1))
}

# request TOOL ARGUMENT...: sends the helper this request, which its length precedes, and one of length 0, a commit.
# Prints "refused" unless the reply begins with 6, the output of the tool, without the length before it and the status
# after it, and what the commit complains of. The words in $tracer are put before the helper.
tracer=()
request() {
    local LC_ALL=C length=0 word bytes=
    for word in "$@"; do length=$((length + ${#word} + 1)); done
    for word in 24 16 8 0; do bytes+="$(printf '\\%03o' $((length >> word & 255)))"; done
    # shellcheck disable=SC2059
    { printf "$bytes" && printf '%s\0' "$@" && printf '\0\0\0\0'; } |
        "${tracer[@]}" "$programs/brindle-helper" "${options[@]}" | {
        start="$(dd bs=1 count=1 status=none | od -An -tu1)"
        [ "${start// /}" = 6 ] || printf refused
        tail -c +5 | tr -d '\000-\006'
    }
}

# at_each_call PREPARE CHECK RUN ARGUMENT...: for every $step-th system call of an undisturbed run, does PREPARE, kills
# the run before that call, and does CHECK. RUN must put $tracer before its program. Calls before the first one that
# names $first_call are left out, and so are those that $traced, if set, does not name. strace counts calls by name, so
# the n-th call is the k-th of its name.
first_call=
traced=()
at_each_call() {
    local prepare="$1" check="$2" calls=0 kills=0 begun= line name
    local -A seen=()
    shift 2
    "$prepare"
    tracer=(strace -qq -o "$work/calls" "${traced[@]}")
    "$@" >/dev/null
    tracer=() # the check makes its own requests
    "$check" finished
    while read -r line <&3; do
        name="${line%%(*}"
        [[ "$name" =~ ^[a-z_0-9]+$ ]] || continue
        seen[$name]=$((${seen[$name]:-0} + 1))
        [[ "$line" != *"$first_call"* ]] || begun=1
        [ -n "$begun" ] || continue
        calls=$((calls + 1))
        [ $((calls % step)) -eq 0 ] || continue
        kills=$((kills + 1))
        "$prepare"
        tracer=(strace -qq -o /dev/null -e "inject=$name:signal=SIGKILL:when=${seen[$name]}")
        { "$@" >/dev/null; } 2>/dev/null || true
        tracer=()
        "$check" "killed at $name, call ${seen[$name]} of that name"
    done 3<"$work/calls" # the programs in the loop may read standard input
    tracer=()
    say "$*: killed at $kills of $calls system calls"
}

# script COMMAND...: prints Brindle's output for "start" and these commands.
script() {
    printf '%s\n' start "$@" | "${tracer[@]}" "$programs/brindle" "${options[@]}" --script -
}

# Prints the history's entries, as "2:done 1:undone ".
history_states() {
    script history | sed -n 's/^\([0-9]*\) .* \([a-z]*\)$/\1:\2/p' | tr '\n' ' '
}

# Traces the helper instead of Brindle: in a copy of the programs, the helper is a script that starts the real one.
undo_by_traced_helper() {
    {
        echo '#!/bin/sh'
        printf 'exec %s "$@"\n' "${tracer[*]} $programs/brindle-helper"
    } >"$work/traced/bin/brindle-helper"
    printf '%s\n' start undo | "$work/traced/bin/brindle" "${options[@]}" --script -
}

# undo_at_each_writing_call PREPARE CHECK: kills an undo before each call that changes something, first Brindle, then
# its helper.
undo_at_each_writing_call() {
    traced=(-e "trace=write,pwrite64,fsync,fdatasync,rename,unlink,ftruncate")
    at_each_call "$1" "$2" script undo
    mkdir "$work/traced"
    cp -a "$programs" "$work/traced/bin"
    cp -a "$programs/../share" "$work/traced/share"
    at_each_call "$1" "$2" undo_by_traced_helper
    traced=()
}
