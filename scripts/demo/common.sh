# Sourced by the demonstration's scripts, which run in the project's folder: places, words, failing, waiting.
# shellcheck shell=bash disable=SC2034

demo=$PWD/build/demo
publisher=$PWD/build/native/bin/publisher
publication=$demo/publication
lists=$demo/lists # of digests: the package's own, and the parts of it that are found elsewhere in the game too

say() { printf '%s\n' "$*"; }
step() { printf '\n== %s (%d s)\n' "$1" "$SECONDS"; }
fail() {
  printf 'demo: %s\ndemo: the logs are in %s\n' "$*" "$demo" >&2
  exit 1
}

wait_until() { # wait_until SECONDS WHAT COMMAND...
  local end=$((SECONDS + $1)) what=$2
  shift 2
  until "$@"; do
    [ $SECONDS -lt "$end" ] || fail "waited in vain for $what"
    sleep 0.05
  done
}
