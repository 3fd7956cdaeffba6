# Completion of dawnly for fish.
complete -c dawnly -f
complete -c dawnly -l verbose -d 'Tell on standard error what happens'
complete -c dawnly -s h -l help -d 'Print a short help'
complete -c dawnly -s v -l version -d 'Print the version'
