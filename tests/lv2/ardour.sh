#!/usr/bin/env bash
# Makes a session of Ardour with noise on a track and a plug-in behind it, opens it and takes a preset, opens it again and
# exports it, and fails if the export isn't what the program renders.
# Usage: ardour.sh BUNDLE PROGRAM
set -euo pipefail
bundle=$1 program=$2
work=$(mktemp -d)
export PYTHONPATH=$(cd "$(dirname "$0")" && pwd) PYTHONDONTWRITEBYTECODE=1
trap 'rm -rf "$work"' EXIT
export LV2_PATH=$(dirname "$bundle") HOME=$work
lua() {
    cat >"$work/script.lua"
    ardour7-lua "$work/script.lua" >"$work/log" 2>&1 && ! grep -i "error" "$work/log" || { cat "$work/log"; return 1; }
}

lua <<LUA
session = assert(create_session("$work/session", "session", 48000))
track = session:new_audio_track(1, 2, nil, 1, "voice", ARDOUR.PresentationInfo.max_order, ARDOUR.TrackMode.Normal, true):front()
plugin = ARDOUR.LuaAPI.new_plugin(session, "urn:orvanverb:lv2:mono-headphones", ARDOUR.PluginType.LV2, "")
assert(not plugin:isnil() and track:add_processor_by_index(plugin, 0, nil, true) == 0)
session:save_state("")
close_session()
LUA

# Noise on the track: Ardour imports files only by its windows.
python3 - "$work" <<'PYTHON'
import random, re, struct, sys
work = sys.argv[1]
random.seed(1)
frames = 96000
samples = [random.uniform(-0.2, 0.2) for _ in range(frames // 2)] + [0.0] * (frames // 2)
data = struct.pack(f"<{frames}f", *samples)
header = struct.pack("<4sI4s4sIHHIIHH4sI", b"RIFF", 36 + len(data), b"WAVE", b"fmt ", 16, 3, 1, 48000, 192000, 4, 32,
                     b"data", len(data))
for path in ("in.wav", "session/interchange/session/audiofiles/in.wav"):
    open(f"{work}/{path}", "wb").write(header + data)
path, end = f"{work}/session/session.ardour", frames * 282240000 // 48000  # in Ardour's clock
text = open(path).read()
text = text.replace("<Sources/>", '<Sources><Source name="in.wav" take-id="" type="audio" flags="" id="9000" channel="0" '
                    'origin="in.wav" gain="1"/></Sources>')
text = text.replace("<Locations/>", f'<Locations><Location id="9001" name="session" start="a0" end="a{end}" '
                    'flags="IsSessionRange" locked="0" timestamp="0" cue="0"/></Locations>')
region = (f'<Region id="9002" type="audio" name="in.1" start="a0" length="a{end}@a0" sync-position="a0" position="a0" '
          'muted="0" opaque="1" locked="0" video-locked="0" automatic="0" whole-file="0" import="0" external="0" sync-marked="0" left-of-split="0" '
          'right-of-split="0" hidden="0" position-locked="0" valid-transients="0" ancestral-start="a0" '
          f'ancestral-length="a{end}@a0" stretch="1" shift="1" layering-index="0" envelope-active="0" default-fade-in="0" '
          'default-fade-out="0" fade-in-active="0" fade-out-active="0" scale-amplitude="1" channels="1" source-0="9000" '
          'master-source-0="9000"/>')
text = re.sub(r'(<Playlist [^>]*name="voice"[^>]*)/>', rf"\1>{region}</Playlist>", text)
open(path, "w").write(text)
PYTHON

lua <<LUA
session = assert(load_session("$work/session", "session"))
processor = session:route_by_name("voice"):nth_plugin(0)
plugin = processor:to_insert():plugin(0)
preset = plugin:preset_by_label("Hall")
assert(preset, "no preset")
assert(plugin:load_preset(preset))
session:save_state("")
close_session()
LUA
ardour7-export -b float -s 48000 -o "$work/exported.wav" "$work/session" session >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
"$program" render "$work/in.wav" -o "$work/rendered.wav" --preset hall --tail 0 --format float 2>/dev/null
python3 - "$work/exported.wav" "$work/rendered.wav" <<'COMPARE'
import sys
from float_wav import read
exported, rendered = read(sys.argv[1]), read(sys.argv[2])
peak = max(map(abs, rendered[0]))
assert len(exported) == 2 and len(exported[0]) == len(rendered[0]) and peak > 0.1
for left, right in zip(exported, rendered):
    # The direct sound to the last bit; the late field depends on how long the plug-in has run before, by some 65 dB below.
    assert left[:800] == right[:800]
    assert max(abs(a - b) for a, b in zip(left, right)) < 1e-3 * peak
COMPARE
echo "Ardour exports what orvanverb renders"
