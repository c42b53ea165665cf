#!/bin/sh
# What CONTRIBUTING.md says of a new panner, decoder and command is all there is to do: adds one of each to a copy of the
# sources, in the places that it names and in no other, and runs them by the program.
# Usage: new_parts.sh SOURCE_DIRECTORY COMPILER COMPILER_FLAGS LINKED_FILE...
set -eu
source=$1 compiler=$2 flags=$3
shift 3
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
cp -r "$source/src" "$source/apps" "$source/tools" "$place"
cd "$place"

# A panner: a pair of files in a family, a value, a row.
sed 's/StereoMS/StereoWide/g; s/stereo_ms/stereo_wide/g; s/Mid-side stereo/Wide stereo/' \
    src/pan/stereo/stereo_ms_panning.h >src/pan/stereo/stereo_wide_panning.h
sed 's/StereoMS/StereoWide/g; s/stereo_ms/stereo_wide/g; s/gains\[0\] = .*/gains[0] = 0.25f;/' \
    src/pan/stereo/stereo_ms_panning.cpp >src/pan/stereo/stereo_wide_panning.cpp
sed -i 's/^        null = 15$/        wide = 15,\n        null = 16/' src/pan/pan.h
sed -i 's/^#include "pan\/stereo\/stereo_xy_panning.h"/#include "pan\/stereo\/stereo_wide_panning.h"\n&/
        s/^    {Pan::null, {"null"}/    {Pan::wide, {"wide"}, classOf<StereoWidePanning>, IsFrom<2, 2>,\n     Outputs::two, Choice::none, false, false, 2, "two of a kind"},\n&/' \
    src/pan/pan_factory.cpp

# A decoder that scales and adds: a table, its name, a value, a row.
sed -i 's/^const MatrixFormat lcrs2lrs/const MatrixFormat midside{2, 2, {0.5f, 0.5f}, {{0, 1}, {0, 1, -1.0f}}};\n&/' \
    src/decoders/matrix/matrix_format.cpp
sed -i 's/^extern const MatrixFormat lcrs2fronts;/&\nextern const MatrixFormat midside;/' src/decoders/matrix/matrix_format.h
sed -i 's/^using LCRS2LRSDecoder/using MidSideDecoder = MatrixDecoderOf<midside, false>;\n&/' src/decoders/matrix/matrix_decoders.h
sed -i 's/^        uhj2bformat = 7$/        uhj2bformat = 7,\n        midside = 8/' src/decoders/decoder.h
sed -i '/^constexpr DecoderKind kinds/,/^};/ s/^};/    {Decoder::midside, {"midside"}, MidSideDecoder::Create, SupportsTransaural, Outputs::channels, "2 to 2 channels"},\n};/' \
    src/decoders/decoder_factory.cpp

# A command: a folder, a line, a row.
mkdir apps/orvanverb/hello
sed 's/AddPresetsCommand/AddHelloCommand/' apps/orvanverb/presets/presets_command.h >apps/orvanverb/hello/hello_command.h
cat >apps/orvanverb/hello/hello_command.cpp <<'END'
#include "orvanverb/hello/hello_command.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cstdio>

void program::AddHelloCommand(CLI::App& app, Call& call) {
    app.add_subcommand("hello", "Greet")->callback([&call] { call.run = [] { return std::puts("hello") < 0; }; });
}
END
sed -i 's/^#include "orvanverb\/hrtf\/hrtf_command_line.h"/#include "orvanverb\/hello\/hello_command.h"\n&/
        s/AddRenderCommand, /AddHelloCommand, &/' apps/orvanverb/command_line.cpp
sed -i 's/^    "manual": /    "hello": ["options"],\n&/' tools/check_layers
tools/check_layers

# What names none of the three isn't compiled anew.
# shellcheck disable=SC2086
"$compiler" -std=c++20 $flags -DORVANVERB_VERSION='"0"' -Isrc -Iapps apps/orvanverb/main.cpp apps/orvanverb/command_line.cpp \
    apps/orvanverb/hello/hello_command.cpp apps/orvanverb/pan/pan_methods.cpp apps/orvanverb/decode/decode_setup.cpp \
    src/pan/pan_factory.cpp src/pan/stereo/stereo_wide_panning.cpp src/decoders/decoder_factory.cpp \
    src/decoders/matrix/matrix_format.cpp "$@" -o program

[ "$(./program hello)" = hello ]
./program pan --list | grep -q '^wide .*two of a kind'
./program decode --list | grep -q '^midside .*2 to 2 channels'
python3 - <<'END'
import wave
with wave.open("in.wav", "wb") as file:
    file.setparams((1, 2, 48000, 0, "NONE", ""))
    file.writeframes(b"\x00\x40" * 24000)
END
./program pan in.wav -o wide.wav --method wide --source 1 0 0 1
./program decode wide.wav -o sides.wav --type midside
python3 - <<'END'
import array
def frame(name, n=20000):
    data = open(name, "rb").read()
    start = data.index(b"data") + 8 + 8 * n
    return array.array("f", data[start:start + 8])
pair, sides = frame("wide.wav"), frame("sides.wav")
assert abs(pair[0] - 0.125) < 1e-5 and abs(sides[0] - (pair[0] + pair[1]) / 2) < 1e-6, (pair, sides)
END
