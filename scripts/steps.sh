# Functions that the scripts share; to be sourced.

name=${0##*/}

say() { echo "$name: $*"; }

# Runs a command whose output matters only if it fails.
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

# Builds a preset and shows the progress: on a terminal in one line that changes, otherwise in one line every ten
# seconds. Prints the output of the build only if it fails.
build()
{
    local log=build/last_step.log line shown=-10 status=0
    mkdir -p build
    cmake --build --preset "$1" 2>&1 | tee "$log" | while read -r line; do
        [[ $line =~ ^\[([0-9]+/[0-9]+)\] ]] || continue
        if [[ -t 1 ]]; then
            printf '\r%s: step %s ' "$name" "${BASH_REMATCH[1]}"
        elif ((SECONDS >= shown + 10)); then
            shown=$SECONDS
            say "step ${BASH_REMATCH[1]} after $SECONDS s"
        fi
    done || status=${PIPESTATUS[0]}
    [[ ! -t 1 ]] || printf '\r\033[K'
    ((status == 0)) || {
        tail -n 200 "$log" >&2
        say "failed: building the preset $1" >&2
        exit 1
    }
}
