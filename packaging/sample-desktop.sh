# For scripts that take pictures, in a desktop of their own whose home folder they may fill: a sample day, a wallpaper,
# a compositor, and the program opened over them. Sets a trap that ends what was started.
here=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
children=()
trap 'kill "${children[@]}" 2>/dev/null; wait 2>/dev/null' EXIT

# settings [MEMBERS]: the sample's settings, with more members of JSON, each with a comma before it.
settings() {
  mkdir -p "$HOME/.config/dawnly"
  printf '{"briefingsFolderPath": "%s", "calendarAccess": "fullAccess", "didWriteWelcomeBrief": true,
    "didCompleteOnboarding": true%s}\n' "$HOME/briefings" "${1-}" \
    >"$HOME/.config/dawnly/defaults.json"
}

sample_day() {
  mkdir -p "$HOME/briefings" "$HOME/.local/share/dawnly/calendars"
  settings
  sed "s/^# .*/# Morning Briefing, $(date '+%A %-d %B')/" "$here/sample-briefing.md" >"$HOME/briefings/$(date +%F).md"
  printf '# Yesterday\n### Notes\n- Nothing new\n' >"$HOME/briefings/$(date -d yesterday +%F).md"
  at() { date -u -d "$1" +%Y%m%dT%H%M%SZ; }
  sed "s/@now@/$(at now)/; s/@start@/$(at '12 minutes')/; s/@end@/$(at '57 minutes')/" "$here/sample-calendar.ics" \
    >"$HOME/.local/share/dawnly/calendars/Work.ics"
}

evening_sky() {
  hsetroot -add '#34446f' -add '#b0667e' -add '#e8b478' -gradient 0
}

compositor() {
  picom --backend xrender --config /dev/null >/dev/null 2>&1 &
  children+=($!)
  sleep 1
}

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

# open_panel PROGRAM BRIEFINGS: starts it, waits until it shows that many briefings, and unfolds the panel. `panel` is its
# process, `middle` the middle of the screen.
open_panel() {
  local width
  read -r width _ < <(xdotool getdisplaygeometry)
  middle=$((width / 2))
  xdotool mousemove 100 700
  "$1" &
  panel=$!
  children+=("$panel")
  wait_for_panel "\"briefings\":$2"
  unfold
}

unfold() {
  xdotool mousemove "$middle" 8
  wait_for_panel '"expanded":true'
  xdotool mousemove "$middle" 60
  sleep 1
}
