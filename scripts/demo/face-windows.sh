# Sourced by scripts/demo/play: launcher.exe under Wine, played with a real pointer and keys.
# shellcheck shell=bash disable=SC2154

launcher_program=$PWD/build/windows/bin/launcher.exe
layout=$PWD/src/ui/win32/layout_main.cpp
main_window=
pictures=0

visible() { xdotool search --onlyvisible --name "$1" 2>/dev/null; }
first_visible() { visible "$1" | head -n 1; }

face_start() { # face_start NAME
  main_window=
  wine "$game/launcher.exe" >"$demo/launcher-$1.txt" 2>&1 </dev/null &
  launcher=$!
}

# The first news are asked for when the start is done and the buttons work.
face_ready() {
  [ -n "$main_window" ] || main_window=$(first_visible '^Launcher - Kelvarin$') || return 1
  [ -n "$main_window" ] && requests 'web/include/noticiasbase\.php' | grep -q .
}

# At the middle of the control, as the layout places it.
face_press() { # face_press CONTROL
  local x y width height
  IFS=', ' read -r x y width height < <(sed -n "s/^ *{\"$1\", \([0-9, ]*\)},.*/\1/p" "$layout")
  [ -n "$height" ] || fail "$1 has no place in $layout"
  xdotool mousemove --window "$main_window" $((x + width / 2)) $((y + height / 2))
  xdotool click 1
}

face_picture() { # face_picture NAME [WINDOW]
  local window=${2:-$main_window}
  [ "${DEMO_WHOLE_SCREEN-no}" = no ] || window=root
  import -window "$window" "$demo/$((++pictures))-$1.png" || fail "no picture of $1"
}

# A message box that says nothing else bears the main window's title.
box() { visible '^Launcher - Kelvarin$' | grep -vx "$main_window" | head -n 1; }
is_box() { [ -n "$(box)" ]; }
question() { first_visible '^¡ATENCIÓN! Lea con cuidado\.$'; }
is_question() { [ -n "$(question)" ]; }

press_key() { # press_key WINDOW KEY
  xdotool windowactivate --sync "$1" key --window 0 "$2" 2>/dev/null || true
}

face_accept_libraries() {
  wait_until 60 'the closing message of the libraries' is_box
  face_picture libraries "$(box)"
  press_key "$(box)" Return
  wait_until 10 'the end of the message' no_box
}
no_box() { ! is_box; }

face_confirm_repair() {
  wait_until 10 'the question before a repair' is_question
  face_picture repair-question "$(question)"
  press_key "$(question)" alt+y
  wait_until 10 'the end of the question' no_question
}
no_question() { ! is_question; }

face_game_started() { [ -n "$(first_visible '^KVN-DX8$')" ]; }
face_end_game() {
  press_key "$(first_visible '^KVN-DX8$')" Escape
  wait_until 10 "the game's end" game_ended
}
game_ended() { ! face_game_started; }

face_trouble() {
  is_box || return 1
  face_picture trouble "$(box)"
  say 'a message box that nobody expected'
}
