#!/usr/bin/env bash
# add-to-desktop.sh [--remove]: lets this user's desktop and shells find the Dawnly.app that this file lies in: its menu
# entry, icons, commands, man pages and completions. They are links into it, so run this again after moving it.
set -euo pipefail
bundle=$(dirname "$(readlink -f "$0")")/../..
bundle=$(readlink -f "$bundle")
data=${XDG_DATA_HOME:-$HOME/.local/share}
entry=$data/applications/app.dawnly.Dawnly.desktop

# Links LINK to a file of the bundle, but replaces nothing that was not a link. With --remove takes it away.
link() {
  local file=$1 link=$2
  if [[ -e $link && ! -L $link ]]; then echo "$link is there already, and stays as it is" >&2; return; fi
  rm -f "$link"
  [[ $mode == --remove ]] && return
  mkdir -p "$(dirname "$link")"
  ln -s "$file" "$link"
}

mode=${1:-}
[[ -z $mode || $mode == --remove ]] || { echo "usage: $0 [--remove]" >&2; exit 2; }
[[ $bundle == *.app ]] || { echo "$bundle is no installed Dawnly.app" >&2; exit 1; }
for program in dawnly dawnlyctl; do
  link "$bundle/bin/$program" "$HOME/.local/bin/$program"
done
while IFS= read -r -d '' file; do
  link "$bundle/share/$file" "$data/$file"
done < <(cd "$bundle/share" && find icons man bash-completion fish zsh -type f -print0)

# A menu knows nothing of ~/.local/bin, so the entry tells where the programs are, quoted for its Exec lines.
if [[ $mode == --remove ]]; then rm -f "$entry"; exit; fi
quoted=$(sed 's/\\/&&&&/g; s/["`$]/\\\\&/g; s/%/%%/g' <<<"$bundle/bin/")
mkdir -p "${entry%/*}"
while IFS= read -r line; do
  case $line in
    Exec=*) rest=${line#Exec=}; program=${rest%% *}; printf 'Exec="%s%s"%s\n' "$quoted" "$program" "${rest#"$program"}" ;;
    *) printf '%s\n' "$line" ;;
  esac
done <"$bundle/share/applications/app.dawnly.Dawnly.desktop" >"$entry.new"
mv "$entry.new" "$entry"

# What neither this script nor a link can do: these are the user's own files.
if [[ :$PATH: != *":$HOME/.local/bin:"* ]]; then
  echo "$HOME/.local/bin is not in PATH: log in anew if your profile adds it, or add it there."
fi
functions=$data/zsh/site-functions
if command -v zsh >/dev/null && ! grep -qsF zsh/site-functions "${ZDOTDIR:-$HOME}/.zshrc" "${ZDOTDIR:-$HOME}/.zshenv"; then
  printf 'For completions in zsh put this into ~/.zshrc, before compinit:\n  fpath+=(%q)\n' "$functions"
fi
