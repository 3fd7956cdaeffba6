# Completion of dawnly for bash.
complete -W "--verbose -h --help -v --version" dawnly
