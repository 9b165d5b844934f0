# What the checks that are scripts have in common: a folder for what they make, $scratch, and the words in which they
# fail. One that needs another folder has named it before, and removes it itself.
# shellcheck shell=sh
set -eu
check=$(basename "$0")
at_end() { :; }
if [ -z "${scratch:-}" ]; then
    scratch=$(mktemp -d)
    trap 'at_end; rm -rf "$scratch"' EXIT
fi

fail() {
    echo "$check: $*" >&2
    exit 1
}

skip() {
    echo "$check: $*: skipped" >&2
    exit 77
}

# Runs a command of which only a failure is worth reading.
logged() {
    log=$(mktemp "$scratch/log.XXXXXX")
    "$@" >"$log" 2>&1 || fail "$* failed: $(cat "$log")"
}

# Starts a service, of which $! is the process, and waits until it serves.
start_service() {
    service=${1##*/}
    rm -f "$scratch/ready" # the one before may still be open
    mkfifo "$scratch/ready"
    "$@" --ready-fd 3 3>"$scratch/ready" >/dev/null 2>"$scratch/$service.log" &
    if ! read -r _ <"$scratch/ready"; then
        echo "$check: $service does not start: $(cat "$scratch/$service.log")" >&2
        return 1
    fi
}
