# What the commands here share; to be sourced.

name=${0##*/}

say() { echo "$name: $*"; }

# Runs a command that has nothing to tell unless it fails.
quietly()
{
    local log=build/last_step.log
    mkdir -p build
    "$@" >"$log" 2>&1 || {
        tail -n 200 "$log" >&2
        say "failed: $*" >&2
        exit 1
    }
}
