#!/usr/bin/env bash
# metadata_test.sh SOURCE VERSION: what tells the desktop about the program passes the desktop's own checks.
set -euo pipefail
source=$1 version=$2
cd "$source/packaging"

desktop-file-validate desktop/app.dawnly.Dawnly.desktop
appstreamcli validate --no-net --no-color desktop/app.dawnly.Dawnly.metainfo.xml

for page in man/*.1; do
  mandoc -T lint -W warning "$page"
  complaints=$(LC_ALL=C.UTF-8 MANROFFSEQ='' man --warnings -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 >/dev/null)
  if [[ -n $complaints ]]; then echo "$page: $complaints" >&2; exit 1; fi
done

# The names that the desktop puts together must be the same everywhere.
icon=$(sed -n 's/^Icon=//p' desktop/app.dawnly.Dawnly.desktop)
[[ -f icons/$icon.svg && -f icons/$icon-symbolic.svg ]] || { echo "no icon $icon" >&2; exit 1; }
for text in 'desktop/app.dawnly.Dawnly.metainfo.xml:<release version="'"$version"'"' "debian/changelog:dawnly ($version)"; do
  grep -qF "${text#*:}" "${text%%:*}" || { echo "${text%%:*} does not know version $version" >&2; exit 1; }
done
for size in 16 48; do
  icons/render.sh $size "$TMPDIR/$size.png"
  file=$(od -A n -t u1 -j 16 -N 8 "$TMPDIR/$size.png" | tr -s ' ')
  [[ $file == " 0 0 0 $size 0 0 0 $size" ]] || { echo "the icon of $size pixels is not: $file" >&2; exit 1; }
done
