#!/bin/sh
# Makes the Debian packages, installs them below a folder, tries what they brought, and removes them.
# Usage: packages.sh BUILD_DIRECTORY SOURCE_DIRECTORY COMPILER
set -eu
build=$1 source=$2 compiler=$3
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
(cd "$build" && cpack -G DEB -B "$place/packages") >"$place/log" 2>&1 || { cat "$place/log"; exit 1; }
packages=$(ls "$place"/packages/*.deb)
if command -v lintian >/dev/null; then
    # shellcheck disable=SC2086
    lintian --allow-root --fail-on error $packages
fi

root=$place/root
mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates"
touch "$root/var/lib/dpkg/status"
as_root=$([ "$(id -u)" = 0 ] || echo fakeroot)
# shellcheck disable=SC2086
install() { $as_root dpkg --root="$root" --log="$place/dpkg.log" --force-depends --force-script-chrootless "$@" >>"$place/log" 2>&1; }
# shellcheck disable=SC2086
install --install $packages || { cat "$place/log"; exit 1; }

# The program finds its rooms where the package puts them; the ears are in it.
[ "$("$root/usr/bin/orvanverb" presets | wc -l)" -gt 16 ]
"$root/usr/bin/orvanverb" ir -o "$place/ir.wav" --preset church 2>"$place/log"
for page in "$root"/usr/share/man/man1/*.1.gz; do
    if command -v man >/dev/null; then LC_ALL=C.UTF-8 man --warnings -l "$page" 2>&1 >/dev/null | tee "$place/complaints"; fi
    [ ! -s "$place/complaints" ]
done
complete() {
    bash -c '. "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _orvanverb; echo "${COMPREPLY[*]}"' - \
        "$root/usr/share/bash-completion/completions/orvanverb" "$root/usr/bin/orvanverb" "$@"
}
[ "$(complete ren)" = render ]
[ "$(complete hrtf con)" = convert ]
[ "$(complete hrtf convert --eq)" = --equalise ]
[ "$(complete scene check walk.scene --j)" = --json ]
[ "$(complete render --preset cat)" = cathedral ]

printf '#include <orvan/verb.h>\nint main() { return Lume::OrvanVerb(8).IsInitialized() ? 1 : 0; }\n' >"$place/try.cpp"
"$compiler" -std=c++20 -I"$root/usr/include" "$place/try.cpp" "$root/usr/lib/liborvan.a" -o "$place/try"
"$place/try"
if [ -d "$root/usr/lib/pd" ] && command -v pd >/dev/null; then
    printf '#N canvas 0 0 300 200 10;\n#X obj 10 10 orvanverb~;\n#X obj 10 50 loadbang;\n#X msg 10 80 \\; pd quit;\n#X connect 1 0 2 0;\n' \
        >"$place/try.pd"
    pd -nogui -noprefs -nosound -stderr -path "$root/usr/lib/pd/extra/orvanverb~" "$place/try.pd" 2>"$place/said"
    ! grep "couldn't create" "$place/said"
fi
if [ -d "$root/usr/lib/lv2" ] && command -v lv2ls >/dev/null; then
    LV2_PATH="$root/usr/lib/lv2" lv2ls | grep -q orvanverb
fi

# shellcheck disable=SC2086
install --purge $(for package in $packages; do dpkg-deb -f "$package" Package; done) || { cat "$place/log"; exit 1; }
left=$(find "$root/usr" -type f 2>/dev/null || true)
[ -z "$left" ] || { echo "left behind: $left"; exit 1; }
