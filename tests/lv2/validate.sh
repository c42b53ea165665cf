#!/usr/bin/env bash
# Fails if the validator of LV2 texts finds anything wrong with the bundle, or hosts don't list its plug-ins.
set -euo pipefail
bundle=$1
mapfile -t vocabularies < <(find "${LV2_VOCABULARIES:-/usr/lib/lv2}" -name '*.ttl' -not -path '*eg-*' -not -path '*example*')
sord_validate "${vocabularies[@]}" "$bundle"/*.ttl
LV2_PATH=$(dirname "$bundle") lv2ls | grep -c '^urn:orvanverb:lv2:' | grep -qx 15
LV2_PATH=$(dirname "$bundle") lv2info urn:orvanverb:lv2:8-headphones >/dev/null
