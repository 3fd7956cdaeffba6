# Completion of dawnlyctl for bash.

# The words of this command line that complete the current one.
_dawnlyctl_words() {
  local command=$1 verb=$2 index=$3
  case $command in
    '') echo "brief check watch todo flags feedback playing play-pause next previous mute agenda expand report prompt defaults -h --help -v --version" ;;
    brief | watch | playing) echo "--json -h --help" ;;
    agenda) echo "--json --at -h --help" ;;
    feedback) echo "--folder -h --help" ;;
    check | play-pause | next | previous | mute | expand | report) echo "-h --help" ;;
    prompt) if ((index == 2)); then echo "morning evening delivery --folder -h --help"; else echo "--folder"; fi ;;
    todo) if [[ -z $verb ]]; then echo "list add done open prio rename delete --folder -h --help"; else echo "--folder --json"; fi ;;
    flags) if [[ -z $verb ]]; then echo "list prio unprio --folder -h --help"; else echo "--folder --json"; fi ;;
    defaults)
      case $verb in
        '') echo "read write delete -h --help" ;;
        read) if ((index == 3)); then _dawnlyctl_keys; fi; echo "--json" ;;
        write) if ((index == 3)); then _dawnlyctl_keys; else echo "--string --bool --int --float --array"; fi ;;
        delete) _dawnlyctl_keys ;;
      esac
      ;;
  esac
}

_dawnlyctl_keys() { dawnlyctl defaults read 2>/dev/null | cut -d ' ' -f 1; }

_dawnlyctl() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command='' verb='' i
  ((COMP_CWORD > 1)) && command=${COMP_WORDS[1]}
  # The verb is the first word behind the command that belongs to no option.
  for ((i = 2; i < COMP_CWORD; ++i)); do
    if [[ ${COMP_WORDS[i]} == --folder ]]; then
      ((++i))
    elif [[ ${COMP_WORDS[i]} != -* ]]; then
      verb=${COMP_WORDS[i]}
      break
    fi
  done
  COMPREPLY=()
  if [[ $previous == --folder ]]; then
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -d -- "$current")
    return
  fi
  case $command in
    brief | check | watch)
      if [[ $current != -* ]]; then
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -d -- "$current"; [[ $command == watch ]] || compgen -f -X '!*.md' -- "$current")
        return
      fi
      ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$(_dawnlyctl_words "$command" "$verb" "$COMP_CWORD")" -- "$current")
}

complete -F _dawnlyctl dawnlyctl
