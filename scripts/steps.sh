# What the scripts share; they source this file, which takes them to the top of the tree.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
script=$(realpath --relative-to=. "$0")

say() { echo "== $*"; }

fail() {
    echo "$script: $*" >&2
    exit 1
}

# quietly <what> <command>...: shows what the command prints only when it fails.
quietly() {
    local what=$1 log
    shift
    log=$(mktemp)
    if ! "$@" >"$log" 2>&1 </dev/null; then
        cat "$log" >&2
        rm -f "$log"
        fail "$what failed; what it printed stands above"
    fi
    rm -f "$log"
}

# build <preset> <target>: configures the preset when it is not yet, and builds what is out of date.
build() {
    local folder=build/$1
    if [ ! -e "$folder/build.ninja" ]; then
        say "Configuring $folder"
        quietly "configuring $folder" cmake --preset "$1"
    fi
    if ! ninja -C "$folder" -n "$2" 2>/dev/null | grep -q 'no work to do'; then
        say "Building $folder"
        quietly "building $folder" cmake --build "$folder" --target "$2" --parallel "$(nproc)"
    fi
}

# run_tests <preset>: the summary when they pass, everything when they don't.
run_tests() {
    local log
    log=$(mktemp)
    if ! ctest --preset "$1" --parallel "$(nproc)" >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        fail "tests of build/$1 failed; they are listed above"
    fi
    grep -E 'tests passed|Total Test time' "$log"
    rm -f "$log"
}
