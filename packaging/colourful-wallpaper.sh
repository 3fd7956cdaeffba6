#!/usr/bin/env bash
# colourful-wallpaper.sh PICTURE: a wallpaper with everything that makes text hard to read: light and dark, every hue,
# large areas and hard edges.
set -euo pipefail
convert -size 1280x800 gradient:'#2b5fd9'-'#ffd27a' \
  -fill '#ff5a8a' -draw 'circle 360,260 360,80' \
  -fill '#ffffff' -draw 'circle 620,120 620,20' \
  -fill '#21d19f' -draw 'circle 760,420 760,270' \
  -fill '#111318' -draw 'rectangle 900,60 1000,560' \
  -fill '#fff36b' -draw 'polygon 420,600 560,330 680,600' \
  -fill '#7a3cff' -draw 'rectangle 240,480 420,640' "$1"
