#!/bin/sh
# wide_kernels.sh NM LIBRARY: fails if an object of the wide kernels defines a symbol that the linker could take for
# everybody's (an inline function or template of a shared header), or none at all.
set -e
for lanes in 8 16 16_by_8 16_by_4; do
    symbols=$("$1" --defined-only "$2" 2>/dev/null | sed -n "/kernels_$lanes.cpp.o:/,/^$/p" | grep -c ' [DR] .*kernels') || true
    shared=$("$1" --defined-only "$2" 2>/dev/null | sed -n "/kernels_$lanes.cpp.o:/,/^$/p" | grep ' [VWu] ') || true
    [ "$symbols" -ge 1 ] || { echo "no kernels of $lanes lanes in $2"; exit 1; }
    [ -z "$shared" ] || { echo "shared symbols among the kernels of $lanes lanes:"; echo "$shared"; exit 1; }
done
