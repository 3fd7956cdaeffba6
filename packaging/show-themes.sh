#!/usr/bin/env bash
# show-themes.sh PROGRAM PICTURE: every theme over the same wallpaper, a row for each of three translucencies.
# Runs inside a desktop of its own whose home folder it may fill.
set -euo pipefail
program=$1 picture=$2
source "$(dirname "$(readlink -f "$0")")/sample-desktop.sh"

sample_day
"$here/colourful-wallpaper.sh" "$HOME/wallpaper.png"
hsetroot -fill "$HOME/wallpaper.png"
compositor
tiles=()
for translucency in 0.2 0.6 1.0; do
  for theme in glass haze sun dusk custom dark; do
    settings ", \"notchTheme\": \"$theme\", \"translucency.$theme\": $translucency,
      \"customTopHex\": 1143146, \"customBottomHex\": 8270591"
    open_panel "$program" 2
    tile=$HOME/$translucency-$theme.png
    import -window root "$HOME/screen.png"
    convert "$HOME/screen.png" -crop 840x540+220+0 +repage -resize 50% -set label "$theme, translucency $translucency" "$tile"
    tiles+=("$tile")
    kill "$panel"
    wait "$panel" || true
  done
done
montage "${tiles[@]}" -tile 6x3 -geometry +6+6 -font Inter -pointsize 16 -background '#20232a' -fill white png:- | convert png:- -resize 1560x "$picture"
