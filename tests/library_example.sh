#!/bin/sh
# Installs the build into a temporary place and builds and runs the library example against that copy, as a stranger's
# project would. Also: the README shows this very program.
# Usage: library_example.sh BUILD_DIRECTORY SOURCE_DIRECTORY COMPILER COMPILER_FLAGS
set -eu
build=$1 source=$2 compiler=$3 flags=$4
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT

cmake --install "$build" --prefix "$place/installed" >"$place/log"
cp -r "$source/examples/library" "$place/example"
cmake -S "$place/example" -B "$place/build" -DCMAKE_PREFIX_PATH="$place/installed" -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS="$flags" >>"$place/log" || { cat "$place/log"; exit 1; }
cmake --build "$place/build" >>"$place/log" || { cat "$place/log"; exit 1; }
"$place/build/clap" >"$place/energies"
cat "$place/energies"
# Loudspeaker 1 of the ring stands at the front left.
awk 'NR == 1 { first = $1 } NR > 1 && $1 >= first { exit 1 } END { if (NR != 6 || first <= 0.1) exit 1 }' "$place/energies"
[ -x "$place/installed/bin/orvanverb" ]

sed -n '/^```cpp$/,/^```$/p' "$source/README.md" | sed '1d;$d' >"$place/shown"
cmp "$place/shown" "$source/examples/library/main.cpp"
