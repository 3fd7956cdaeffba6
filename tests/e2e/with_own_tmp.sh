#!/bin/sh
# with_own_tmp.sh LOCK COMMAND...: runs the command with a /tmp of its own, because every running program answers with the
# same file there and several tests run at a time. Where that is not allowed, or would hide the program itself, it waits
# for its turn at the lock.
lock=$1
shift
case $(pwd -P) in
/tmp/*) ;;
*)
  if unshare --mount true 2>/dev/null; then
    # shellcheck disable=SC2016
    exec unshare --mount sh -c 'mount -t tmpfs -o mode=1777 tmpfs /tmp && exec "$@"' sh "$@"
  fi
  ;;
esac
exec flock "$lock" "$@"
