# Sourced by scripts/demo/play: a game in three versions, each published and signed by one release.
# shellcheck shell=bash disable=SC2034,SC2154

key=$demo/key.pem
public_key= # the line of Deployment.ini
released=0  # patches that the newest release made

log_of_publisher() { "$publisher" "$@" >>"$demo/publisher.log" 2>&1 || fail "publisher $1 failed (publisher.log)"; }

make_signed_publication() {
  publication=$demo/signed
  public_key=$("$publisher" keygen "$key" 2>>"$demo/publisher.log") || fail 'no key'
  log_of_publisher init "$publication"
  write_answers
}

count_archives() { find "$publication/OldAct" -name '*.zip' | wc -l; }

release_version() { # release_version NUMBER
  local before
  before=$(count_archives)
  log_of_publisher release "$publication" "$demo/version-$1" --key "$key"
  log_of_publisher check "$publication" --public-key "${public_key#*=}"
  released=$(($(count_archives) - before))
}

# The files share their bytes with the package.
make_first_version() {
  lay_out game "$demo/version-1"
  lay_out bin "$demo/version-1/Bin"
  cp "$demo/game/Bin/KVN-DX8.exe" "$demo/version-1/Bin/"
}

make_second_version() {
  cp -al "$demo/version-1" "$demo/version-2"
  renew_part game . 11 21
  renew_part bin Bin 2 4
}

# Changes a file, deletes one and adds one, in the second version and in its list. A changed file is replaced, since
# the old one shares its bytes with the package.
renew_part() { # renew_part LIST FOLDER CHANGED DELETED    (numbers of the list's files)
  local folder=$demo/version-2/$2 changed added='novedades/añadido.txt'
  changed=$(file_of "$1" "$3")
  { cat "$folder/$changed" && echo 'segunda versión'; } >"$demo/changed"
  mv "$demo/changed" "$folder/$changed"
  rm "$folder/$(file_of "$1" "$4")"
  mkdir -p "$folder/novedades"
  echo 'desde la segunda versión' >"$folder/$added"
  { sed "$3d; $4d" "$lists/$1" && (cd "$folder" && md5sum "$changed" "$added"); } >"$lists/$1-2"
}

# What somebody without the key can do at his mirror: put good archives there that are not the operator's, and sign all
# of it himself.
plant_archives() { # plant_archives FOLDER
  local file
  if [ ! -e "$demo/planted" ]; then
    mkdir -p "$demo/intruder"
    echo 'nadie lo firmó' >"$demo/intruder/intruso.txt"
    log_of_publisher init "$demo/planted"
    log_of_publisher patch "$demo/planted" Extras "$demo/intruder"
  fi
  while IFS= read -r -d '' file; do
    cp "$demo/planted/OldAct/Extras/Extras1.zip" "$file"
  done < <(each_file "$1/OldAct" '*.zip')
}
sign_with_another_key() { # sign_with_another_key FOLDER
  log_of_publisher keygen "$demo/another-key.pem"
  log_of_publisher sign "$1" "$demo/another-key.pem"
}
nothing_planted() { [ ! -e "$game/intruso.txt" ] || fail "$name: a file that the operator did not sign was installed"; }
