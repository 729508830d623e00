# Shared by the scripts that kill what writes files: killing at each system call, and what failed.
# shellcheck shell=bash

step=1     # kill at every call
failures=0
options=() # the helper's

failed() {
    say "FAILED: $*"
    failures=$((failures + 1))
}

# request TOOL ARGUMENT...: runs the helper on a request; the started byte is taken off its output. Words in $tracer go
# before the helper.
tracer=()
request() {
    printf '%s\0' "$@" | "${tracer[@]}" "$programs/brindle-helper" "${options[@]}" | tr -d '\006'
}

# at_each_call PREPARE CHECK RUN ARGUMENT...: PREPARE, the run with $tracer before its program killed before one of its
# system calls, CHECK; for every $step-th call of an undisturbed run, from the first on that names $first_call, of those
# that $traced names where it is set. strace counts calls by name, so the n-th call is the k-th of its name.
first_call=
traced=()
at_each_call() {
    local prepare="$1" check="$2" calls=0 kills=0 begun= line name
    local -A seen=()
    shift 2
    "$prepare"
    tracer=(strace -qq -o "$work/calls" "${traced[@]}")
    "$@" >/dev/null
    tracer=() # the check makes requests of its own
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
    done 3<"$work/calls" # what is run meanwhile may read the standard input
    tracer=()
    say "$*: killed at $kills of $calls system calls"
}
