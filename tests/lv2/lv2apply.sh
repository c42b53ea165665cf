#!/usr/bin/env bash
# Plays noise through the plug-ins by a host of others, as they are and with the values of a preset at their ports, and
# fails if a sample differs from what the program renders, later by the 63 samples of latency that a host without fixed
# blocks gets. The host gives no features at all.
# Usage: lv2apply.sh BUNDLE PROGRAM
set -euo pipefail
bundle=$1 program=$2
work=$(mktemp -d)
export PYTHONPATH=$(cd "$(dirname "$0")" && pwd) PYTHONDONTWRITEBYTECODE=1
trap 'rm -rf "$work"' EXIT
export LV2_PATH=$(dirname "$bundle")
python3 - "$work/in.wav" <<'NOISE'
import random, struct, sys
random.seed(1)
samples = [random.uniform(-0.2, 0.2) for _ in range(24000)] + [0.0] * 24000
data = struct.pack(f"<{len(samples)}f", *samples)
header = struct.pack("<4sI4s4sIHHIIHH4sI", b"RIFF", 36 + len(data), b"WAVE", b"fmt ", 16, 3, 1, 48000, 192000, 4, 32,
                     b"data", len(data))
open(sys.argv[1], "wb").write(header + data)
NOISE
# The preset hall as options of the host.
mapfile -t hall < <(sed -n '/^<urn:orvanverb:lv2:mono-ring6:hall>/,/state:state/p' "$bundle/presets.ttl" |
    grep -o 'lv2:symbol "[a-z0-9_]*" ; pset:value [-0-9.e]*' | sed 's/lv2:symbol "\(.*\)" ; pset:value \(.*\)/-c\n\1\n\2/')
[[ ${#hall[@]} -gt 90 ]]
echo "source 1 ade -40 2 0" >"$work/place.scene"
# Variant, loudspeakers, which channel of the program's file each output is, and what to set.
for case in "mono-headphones 2 0,1 -" "mono-ring6 6 0,1,2,3,4,5 -" "mono-5.0 5 0,2,1,3,4 -" "mono-headphones 2 0,1 hall" \
    "mono-ring6 6 0,1,2,3,4,5 hall" "mono-5.0 5 0,2,1,3,4 hall"; do
    read -r variant speakers channels preset <<<"$case"
    ports=() words=()
    [[ $preset = - ]] || ports=("${hall[@]}" -c source_1_azimuth -40 -c source_1_distance 2) words=(--preset hall --scene "$work/place.scene")
    lv2apply -i "$work/in.wav" -o "$work/played.wav" "${ports[@]}" "urn:orvanverb:lv2:$variant"
    "$program" render "$work/in.wav" -o "$work/rendered.wav" --speakers "$speakers" --tail 0 --format float --force "${words[@]}" \
        2>/dev/null
    python3 - "$work/played.wav" "$work/rendered.wav" "$channels" "$variant" <<'COMPARE'
import sys
from float_wav import read
played, rendered = read(sys.argv[1]), read(sys.argv[2])
latency = 63
assert max(played[0]) > 0.01
for output, channel in enumerate(map(int, sys.argv[3].split(","))):
    length = len(played[output]) - latency
    assert played[output][latency:] == rendered[channel][:length], (sys.argv[4], output)
COMPARE
done
