#!/bin/sh
# Installs the build into a temporary place and builds and runs the examples of the library against that copy, as a
# stranger's project would.
# Usage: library_example.sh BUILD_DIRECTORY SOURCE_DIRECTORY COMPILER COMPILER_FLAGS
set -eu
build=$1 source=$2 compiler=$3 flags=$4
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT

cmake --install "$build" --prefix "$place/installed" >"$place/log"
cp -r "$source/examples/library" "$place/example"
cmake -S "$place/example" -B "$place/build" -DCMAKE_PREFIX_PATH="$place/installed" -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS="$flags" >>"$place/log" || { cat "$place/log"; exit 1; }
cmake --build "$place/build" -j2 >>"$place/log" || { cat "$place/log"; exit 1; }
"$place/build/clap" >"$place/energies"
cat "$place/energies"

# By pkg-config, and in C: against the static library and the shared one.
export PKG_CONFIG_PATH=$(dirname "$(find "$place/installed" -name orvan.pc)")
library=$(dirname "$PKG_CONFIG_PATH")
c="$(command -v gcc || echo cc) -std=c11 -Wall -Wextra -Wpedantic -Werror $flags $place/example/clap.c"
$compiler -std=c++20 $flags "$place/example/clap.cpp" -o "$place/clap++" $(pkg-config --cflags --libs orvan)
"$place/clap++" | cmp - "$place/energies"
$c -o "$place/clap_static" $(pkg-config --cflags --libs orvan)
"$place/clap_static" >"$place/in_c"
$c -o "$place/clap_shared" $(pkg-config --cflags --libs orvan_c)
LD_LIBRARY_PATH=$library "$place/clap_shared" | cmp - "$place/in_c"
awk 'NR == 1 { first = $1 } NR > 1 && $1 >= first { exit 1 } END { if (NR != 6 || first <= 0.1) exit 1 }' "$place/in_c"
objdump -p "$library/liborvan_c.so" | grep -q 'SONAME *liborvan_c.so.1$'
nm -D --defined-only "$library/liborvan_c.so" | awk '$3 !~ /^orvan_/ { print; found = 1 } END { exit found }'
printf '#include <orvan/orvan.h>\n#if ORVAN_VERSION < ORVAN_VERSION_NUMBER(0, 1, 0)\n#error old\n#endif\nsize_t n(void) { return orvan_num_controls(); }\n' |
    gcc -std=c11 -Wall -Wextra -Wpedantic -Werror $(pkg-config --cflags orvan) -fsyntax-only -x c -

# Loudspeaker 1 of the ring stands at the front left.
awk 'NR == 1 { first = $1 } NR > 1 && $1 >= first { exit 1 } END { if (NR != 6 || first <= 0.1) exit 1 }' "$place/energies"
[ -x "$place/installed/bin/orvanverb" ]

# The others say what they did; a walk to the right is louder on the right.
cd "$place"
build/walk
python3 - <<'WALK'
import array
samples = array.array("f", open("walk.wav", "rb").read()[44:])
left, right = samples[0::2], samples[1::2]
quarter = slice(len(left) // 8, 3 * len(left) // 8)  # around 90 degrees
energy = [sum(x * x for x in ear[quarter]) for ear in (left, right)]
assert len(left) == 4 * 48000 and energy[1] > 1.3 * energy[0] > 0, energy
WALK
build/callback | tee said
grep -q "^heard [1-9][0-9]* of 100 times, 0 messages lost, decay 3.47 s" said
build/batch responses
[ "$(ls responses | wc -l)" = 12 ]
