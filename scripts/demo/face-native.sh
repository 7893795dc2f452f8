# Sourced by scripts/demo/play: the launcher in a terminal, whose input acts as the player.
# shellcheck shell=bash disable=SC2154

launcher_program=$PWD/build/native/bin/launcher
export XDG_CONFIG_HOME=$demo/home XDG_RUNTIME_DIR=$demo/home DEMO_CLIENT=$demo/client.txt
screen= # what the launcher prints

face_start() { # face_start NAME
  screen=$demo/launcher-$1.txt
  mkdir -p "$demo/home"
  rm -f "$DEMO_CLIENT" "$demo/player"
  mkfifo "$demo/player"
  : >"$screen"
  exec {player}<>"$demo/player"
  "$game/launcher" <"$demo/player" >"$screen" 2>&1 &
  launcher=$!
}

# The next start searches the ring from its first entry.
face_forget_mirror() { sed -i '/^URL=/d' "$demo/home/KVN_UPDATER.ini"; }

face_ready() { grep -q '^frmMain\.Visible: True' "$screen"; }
face_press() { say "frmMain.$1" >&"$player"; }
face_accept_libraries() { wait_until 60 'the closing message of the libraries' grep -q '^MsgBox .*librerias' "$screen"; }
face_picture() { :; }
face_game_started() { [ -s "$DEMO_CLIENT" ]; }
face_command_line() { cat "$DEMO_CLIENT"; }
face_end_game() { exec {player}>&-; }

face_confirm_repair() {
  wait_until 10 'the question before a repair' grep -q '^MsgBox \[¡ATENCIÓN!' "$screen"
  say Yes >&"$player"
}

face_trouble() { grep '^MsgBox ' "$screen" | grep -v -e 'librerias correctamente' -e '\[¡ATENCIÓN!'; }
