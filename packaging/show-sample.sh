#!/usr/bin/env bash
# show-sample.sh PROGRAM PICTURE: opens the panel over a wallpaper with a sample briefing and takes its picture.
# Runs inside a desktop of its own whose home folder it may fill.
set -euo pipefail
program=$1 picture=$2
here=$(dirname "$(readlink -f "$0")")

mkdir -p "$HOME/briefings" "$HOME/.config/dawnly" "$HOME/.local/share/dawnly/calendars"
printf '{"briefingsFolderPath": "%s", "calendarAccess": "fullAccess"}\n' "$HOME/briefings" >"$HOME/.config/dawnly/defaults.json"
sed "s/^# .*/# Morning Briefing, $(date '+%A %-d %B')/" "$here/sample-briefing.md" >"$HOME/briefings/$(date +%F).md"
printf '# Yesterday\n### Notes\n- Nothing new\n' >"$HOME/briefings/$(date -d yesterday +%F).md"
at() { date -u -d "$1" +%Y%m%dT%H%M%SZ; }
sed "s/@now@/$(at now)/; s/@start@/$(at '12 minutes')/; s/@end@/$(at '57 minutes')/" "$here/sample-calendar.ics" \
  >"$HOME/.local/share/dawnly/calendars/Work.ics"

hsetroot -add '#34446f' -add '#b0667e' -add '#e8b478' -gradient 0
picom --backend xrender --config /dev/null >/dev/null 2>&1 &
children=($!)
trap 'kill "${children[@]}" 2>/dev/null; wait 2>/dev/null' EXIT
xdotool mousemove 100 700
"$program" &
children+=($!)

wait_for_panel() {
  for _ in $(seq 100); do
    rm -f /tmp/dawnly-state.json
    dbus-send --session --type=signal / app.dawnly.Dawnly.report
    sleep 0.1
    if grep -qs "$1" /tmp/dawnly-state.json; then return 0; fi
  done
  echo "the panel did not answer" >&2
  return 1
}
wait_for_panel '"briefings":2'
xdotool mousemove 640 8
wait_for_panel '"expanded":true'
xdotool mousemove 640 60
sleep 1
import -window root "$picture"
