#!/bin/sh
# What call_screen shows, and what the log has, of a call that is answered, of one that is missed and of one that is
# placed.
#
# usage: zynphone run -- sh call_screen_test.sh CALL_SCREEN
set -eu

folder=$(mktemp -d)
"$1" >"$folder/shown" &
screen=$!
trap 'kill "$screen"; rm -r "$folder"' EXIT

# Waits until the screen shows the line $1.
await() {
    for _ in $(seq 200); do
        [ "$(tail -n 1 "$folder/shown")" != "$1" ] || return 0
        sleep 0.05
    done
    echo "'$1' is not shown, but: $(cat "$folder/shown")" >&2
    exit 1
}

await "no call"
zynphone phone incoming 0301112222 Dora
await "a call"
zynphone phone answer
await "connected"
zynphone phone hangup
await "0301112222 answered"

zynphone phone incoming 0303334444
await "a call"
zynphone phone missed
await "0303334444 missed"

zynphone dial 0305556666 >"$folder/trace"
await "0305556666 dialed" # the phone server answers and hangs up by itself

diff - "$folder/shown" <<END
no call
a call
connected
0301112222 answered
a call
0303334444 missed
a call
connected
0305556666 dialed
END

zynphone calls list >"$folder/log"
for call in "dialed *0305556666" "missed *0303334444" "answered *0301112222 *Dora"; do
    grep -q "$call" "$folder/log" || { echo "the log has no '$call', but: $(cat "$folder/log")" >&2; exit 1; }
done
