#!/usr/bin/env bash
# Runs the plug-in in a host of others, on an audio server without a sound card: it must come up, take the plug-in's
# ports and play for some seconds. Fails if the host says anything of an error, or ends by itself.
set -euo pipefail
bundle=$1
seconds=${2:-10}
command -v jackd >/dev/null && command -v jalv >/dev/null
work=$(mktemp -d)
export JACK_DEFAULT_SERVER="orvan-test-$$" JACK_NO_AUDIO_RESERVATION=1 LV2_PATH=/usr/lib/lv2:$(dirname "$bundle")
jackd -r -n "$JACK_DEFAULT_SERVER" -d dummy -r 48000 -p 128 >"$work/jackd" 2>&1 &
server=$!
trap 'kill $server 2>/dev/null; wait 2>/dev/null; rm -rf "$work"' EXIT
for _ in $(seq 50); do jack_lsp >/dev/null 2>&1 && break; sleep 0.1; done
mkfifo "$work/commands"
jalv -n orvan-plugin urn:orvanverb:lv2:stereo-headphones <"$work/commands" >"$work/jalv" 2>&1 &
host=$!
exec 3>"$work/commands"
for _ in $(seq 50); do jack_lsp 2>/dev/null | grep -q 'orvan-plugin:out_2' && break; sleep 0.1; done
jack_lsp | grep -q 'orvan-plugin:out_2' || { cat "$work/jalv" "$work/jackd"; exit 1; }
sleep "$seconds"
kill -0 $host || { cat "$work/jalv"; exit 1; }
exec 3>&-
kill $host
wait $host || true
! grep -i 'error\|xrun' "$work/jalv"
