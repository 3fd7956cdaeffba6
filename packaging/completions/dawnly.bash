# Completion of dawnly for bash.
complete -W "--verbose --help --version" dawnly
