#!/bin/sh
# A new control is two places, its row and its members of the engine: adds a row to a copy of the table and the members
# to a copy of the engine's header, and finds the control in the listing, under Room's limits and in the named state.
# Usage: new_control.sh SOURCE_DIRECTORY COMPILER COMPILER_FLAGS LIBRARY...
set -eu
source=$1 compiler=$2 flags=$3
shift 3
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
cp -r "$source/src" "$source/apps" "$place"

# The first place: the row. The second one: setter and getter.
sed -i '/rows\[\] = {/a {"shimmer", nullptr, 0, "shimmer", "shimmer", "", "an octave above the tail", 0.0f, 1.0f, 0.25f, linear, late, ramps, nearest, Set<E, \&E::SetShimmer>, Get<E, \&E::GetShimmer>},' \
    "$place/src/parameters/controls.h"
sed -i '/^class OrvanVerb /,/^public:/ s/^public:/public: void SetShimmer(float v) { shimmer = v; } float GetShimmer() const { return shimmer; } static inline float shimmer = 0.5f;/' \
    "$place/src/engine/orvan_verb.h"

cat >"$place/main.cpp" <<'END'
#include <cstdio>

#include "orvanverb/object/control_listing.h"
#include "room/room.h"

int main() {
    constexpr std::size_t shimmer = Lume::ControlIndex("shimmer");
    Lume::Room room(1, 2);
    std::fputs(program::ControlTable().c_str(), stdout);
    std::printf("a new room has %g\n", room.Get(shimmer));
    room.Set(shimmer, 9.0f);
    std::fputs(room.SaveState().Text().c_str(), stdout);
}
END
# What lists the controls is compiled anew; everything else of the libraries doesn't look at the table.
# shellcheck disable=SC2086
"$compiler" -std=c++20 $flags -I"$place/src" -I"$place/apps" "$place/main.cpp" "$place"/src/room/*.cpp \
    "$place/apps/orvanverb/object/control_listing.cpp" "$place/apps/orvanverb/object/listing_text.cpp" "$@" \
    -o "$place/program"
"$place/program" >"$place/said"
for line in '^shimmer  *0.25  *0 to 1  *an octave above the tail$' '^a new room has 0.25$' '^shimmer 1$'; do
    grep -q "$line" "$place/said" || { echo "not said: $line" >&2; cat "$place/said" >&2; exit 1; }
done
