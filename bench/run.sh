#!/usr/bin/env bash
# run.sh DIRECTORY-OF-PROGRAMS: every measurement, inside a desktop of its own whose home folder it may fill.
set -euo pipefail
programs=$1
here=$(dirname "$(readlink -f "$0")")

mkdir -p "$HOME/briefings" "$HOME/.config/dawnly"
printf '{"briefingsFolderPath": "%s", "calendarAccess": "denied", "didWriteWelcomeBrief": true, "didCompleteOnboarding": true}\n' "$HOME/briefings" >"$HOME/.config/dawnly/defaults.json"
cp "$here/../packaging/sample-briefing.md" "$HOME/briefings/$(date +%F).md"

for program in "$programs"/*_bench; do
  printf '\n== %s\n' "$(basename "$program")"
  "$program"
done
printf '\n== the folded panel beside a bare window and other desktop panels\n'
python3 "$here/panel/panel_bench.py" "$programs"
printf '\n== one poll of the players\n'
python3 "$here/players/poll_bench.py" "$programs"
