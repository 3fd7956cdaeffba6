# Completion of dawnlyctl for fish.
set -l seen __fish_seen_subcommand_from

complete -c dawnlyctl -f
complete -c dawnlyctl -l help -d 'Print the usage'
# Further on it may be part of a text.
complete -c dawnlyctl -n 'test (count (commandline -opc)) -le 2' -s h -d 'Print the usage'
complete -c dawnlyctl -n __fish_use_subcommand -s v -l version -d 'Print the version'
complete -c dawnlyctl -n __fish_use_subcommand -a brief -d 'Show a briefing'
complete -c dawnlyctl -n __fish_use_subcommand -a check -d 'Say what will not show as meant'
complete -c dawnlyctl -n __fish_use_subcommand -a watch -d 'Follow a folder'
complete -c dawnlyctl -n __fish_use_subcommand -a todo -d 'Show or change todos'
complete -c dawnlyctl -n __fish_use_subcommand -a flags -d 'Show or change flags on cards'
complete -c dawnlyctl -n __fish_use_subcommand -a feedback -d 'Write the feedback for the agent and print it'
complete -c dawnlyctl -n __fish_use_subcommand -a playing -d 'Show what plays'
complete -c dawnlyctl -n __fish_use_subcommand -a play-pause -d 'Pause what plays, or play on'
complete -c dawnlyctl -n __fish_use_subcommand -a next -d 'Skip to the next track'
complete -c dawnlyctl -n __fish_use_subcommand -a previous -d 'Go back to the previous track'
complete -c dawnlyctl -n __fish_use_subcommand -a mute -d 'Mute the sound output, or let it be heard again'
complete -c dawnlyctl -n __fish_use_subcommand -a agenda -d "Show the day's events"
complete -c dawnlyctl -n __fish_use_subcommand -a expand -d 'Unfold the panel'
complete -c dawnlyctl -n __fish_use_subcommand -a report -d 'Print what the running program shows'
complete -c dawnlyctl -n __fish_use_subcommand -a prompt -d 'Print the instructions for an agent'
complete -c dawnlyctl -n __fish_use_subcommand -a defaults -d 'Read and change settings'

complete -c dawnlyctl -n "$seen brief check" -a '(__fish_complete_path (commandline -ct) | string match -r "^[^\t]*(?:/|\.md)(?:\t.*)?\$")'
complete -c dawnlyctl -n "$seen watch" -a '(__fish_complete_directories)'
complete -c dawnlyctl -n "$seen brief watch todo flags playing agenda defaults" -l json -d 'Print for programs'
complete -c dawnlyctl -n "$seen todo flags feedback prompt" -l folder -x -a '(__fish_complete_directories)' -d 'The briefings folder'
complete -c dawnlyctl -n "$seen agenda" -l at -x -d 'Another time, in ISO 8601'
complete -c dawnlyctl -n "$seen todo; and not $seen list add done open prio rename delete" -a 'list add done open prio rename delete'
complete -c dawnlyctl -n "$seen flags; and not $seen list prio unprio" -a 'list prio unprio'
complete -c dawnlyctl -n "$seen prompt; and not $seen morning evening delivery" -a 'morning evening delivery'
complete -c dawnlyctl -n "$seen defaults; and not $seen read write delete" -a 'read write delete'
complete -c dawnlyctl -n "$seen defaults; and $seen read write delete" -a '(dawnlyctl defaults read 2>/dev/null | string replace -r " = .*" "")'
for type in string bool int float array
  complete -c dawnlyctl -n "$seen write" -l $type
end
