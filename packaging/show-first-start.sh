#!/usr/bin/env bash
# show-first-start.sh PROGRAM PICTURE: what a new user sees, with the welcome briefing in the open panel and the welcome
# tour beside it. Runs inside a desktop of its own, of at least 1920 points across, whose home folder is empty.
set -euo pipefail
program=$1 picture=$2
source "$(dirname "$(readlink -f "$0")")/sample-desktop.sh"

# window TITLE: waits for a window, and `window` is it then.
window() {
  for _ in $(seq 100); do
    window=$(xdotool search --onlyvisible --name "^$1\$") && return
    sleep 0.1
  done
  echo "no window \"$1\"" >&2
  return 1
}

evening_sky
compositor
open_panel "$program" 1
window 'Calendar access'
xdotool windowfocus --sync "$window" key Return
for _ in $(seq 100); do
  [[ -n $(xdotool search --onlyvisible --name '^Calendar access$') ]] || break
  sleep 0.1
done
window 'Welcome to Dawnly'
xdotool windowmove --sync "$window" $((middle + 360)) 60 windowfocus --sync "$window"
unfold
import -window root "$picture"
