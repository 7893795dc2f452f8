# Sourced by the parts of bench/run, which run in the project's folder: a game to measure with, one launch of the
# launcher, its times and those of other programs, and rows of tables.
# shellcheck shell=bash disable=SC2034,SC2154

. scripts/demo/common.sh
. scripts/demo/game.sh
package=${BENCH_PACKAGE:-$PWD/build/bench/package} # the demo's game, for all parts
game=$demo/Kelvarin
times=$demo/times # one file for each program, a line for each round
client=scripts/demo/native-client
server=$demo/nginx
free_port() { perl -MIO::Socket::INET -e 'print IO::Socket::INET->new(LocalAddr => "127.0.0.1", Listen => 1)->sockport'; }
port=$(free_port)
link_port=$(free_port) # the same files through a link of limited speed

# A game of the size of the demo's, where the package cannot be had: 1,436 files and 127 MB, sizes spread as those of
# pictures, sounds and maps are, three quarters of the bytes incompressible. The same bytes each time.
generate_like_demo() {
  rm -rf "$package"
  mkdir -p "$package/files"
  perl -e '
    srand 1;
    my ($folder, $count, $total) = @ARGV;
    my @noise = map { int rand 2 ** 32 } 1 .. 1 << 19;
    my $noise = pack "N*", @noise;
    my $text = join "", map { sprintf "capa=%d x=%d y=%d solido=%s\n", $_ % 7, $_ % 100, $_ / 100, $_ % 3 ? "si" : "no" } 1 .. 65536;
    my @sizes = map { exp(10 + 1.6 * sqrt(-2 * log(1 - rand)) * cos(6.2832 * rand)) } 1 .. $count;
    my $sum = 0; $sum += $_ for @sizes;
    for my $i (0 .. $#sizes) {
      my $size = int($sizes[$i] * $total / $sum) + 1;
      my $from = $i % 4 ? \$noise : \$text;
      my $in = sprintf "%s/%s%02d", $folder, ("graficos", "sonidos", "mapas")[$i % 3], $i / 90;
      mkdir $in;
      open my $file, ">", sprintf("%s/recurso %d.dat", $in, $i) or die;
      print $file pack "N", $i;
      for (my $left = $size; $left > 0; $left -= length $$from) {
        my $at = ($i * 4096) % (length($$from) / 2);
        print $file substr $$from, $at, $left;
        $left += $at;
      }
      close $file or die;
    }' "$package/files" 1436 $((127 << 20))
  (cd "$package/files" && find . -type f -printf '%P\0' | sort -z | xargs -0 md5sum) >"$package/md5sums"
  echo 'a generated game of the size of the demo'"'"'s' >"$package/what"
}

get_demo_game() {
  [ ! -s "$package/what" ] || return 0
  if [ "${BENCH_GENERATED:-no}" = no ] && rm -rf "$package" && fetch_package; then
    echo 'the package flare-game' >"$package/what"
  else
    generate_like_demo
  fi
}

# COUNT files of BYTES below FOLDER, a hundred in each folder.
many_files() { # many_files FOLDER COUNT BYTES
  rm -rf "$1"
  mkdir -p "$1"
  perl -e '
    my ($folder, $count, $bytes) = @ARGV; my $noise = join "", map { pack "N", int rand 2 ** 32 } 1 .. $bytes / 4;
    for my $i (1 .. $count) {
      my $in = sprintf "%s/d%04d", $folder, $i / 100;
      mkdir $in if $i == 1 || $i % 100 == 0;
      open my $file, ">", "$in/f$i" or die; print $file pack("N", $i) . substr($noise, 4); close $file or die;
    }' "$1" "$2" "$3"
}

# The index of a list that md5sum made; no file is missing, so no packed ones are needed.
write_index() { # write_index LIST
  mkdir -p "$publication/NewAct2"
  perl -MCompress::Zlib -e '
    binmode STDIN; my @records = map { /^(\w{32})  (.*)$/s; my ($d, $p) = ($1, "\\Bin\\$2"); chomp $p; $p =~ tr|/|\\|;
      $d . pack("v/a*", $p) } <STDIN>;
    my $index = pack("V", scalar @records) . join("", @records);
    print pack("V", length $index), compress($index, 1)' <"$1" >"$publication/NewAct2/Info.kvn"
}

# $lists/game in PARTS patches, the whole as the game's Bin too, so that every file is both patched and proved.
publish_parts() { # publish_parts PARTS
  local i
  parts=$1
  rm -rf "$demo/patches" "$publication" "$lists"/game.*
  mkdir -p "$demo/patches"
  cut_list game "$parts"
  "$publisher" init "$publication" >"$demo/publisher.log"
  for ((i = 1; i <= parts; ++i)); do lay_out "game.$i" "$demo/patches/$i/Bin"; done
  cp "$client" "$demo/patches/1/Bin/KVN-DX8.exe"
  mkdir -p "$publication/OldAct/Extras"
  seq "$parts" | (cd "$demo/patches" && xargs -P "$(nproc)" -I {} sh -c "cd {} && zip -qr '$publication/OldAct/Extras/Extras{}.zip' .")
  sed -i "s/^Extras=.*/Extras=$parts/" "$publication/OldAct/Update.ini"
  { cat "$lists/game"; md5sum <"$client" | sed "s/-$/KVN-DX8.exe/"; } >"$demo/list"
  write_index "$demo/list"
}

# Serves the publication: at full speed, and through a link of LINK_MB megabytes a second (bench/link).
link=
start_nginx() { # start_nginx LINK_MB
  mkdir -p "$server/logs"
  cat >"$server/nginx.conf" <<NGINX
worker_processes 1;
pid $server/pid;
error_log $server/logs/error.log;
events { worker_connections 1024; }
http {
    sendfile on;
    tcp_nodelay on;
    access_log $server/logs/access.log;
    client_body_temp_path $server/body;
    proxy_temp_path $server/proxy;
    fastcgi_temp_path $server/fastcgi;
    uwsgi_temp_path $server/uwsgi;
    scgi_temp_path $server/scgi;
    server {
        listen 127.0.0.1:$port;
        root $publication;
        location /update/kvn2011/ { alias $publication/; }
        location /web/ { root $publication; }
    }
}
NGINX
  nginx -c "$server/nginx.conf" 2>"$server/logs/start.log" || fail "nginx does not start ($server/logs)"
  bench/link $link_port $port "$1" &
  link=$!
  wait_until 10 nginx curl -sf -o /dev/null "http://127.0.0.1:$link_port/Online.txt"
}
stop_servers() {
  [ -z "$link" ] || kill "$link" 2>/dev/null || true
  [ ! -s "$server/pid" ] || kill "$(cat "$server/pid")" 2>/dev/null || true
  link=
}
end_part() { # its files are large
  stop_servers
  rm -rf "$demo"
}

make_fresh_folder() { # make_fresh_folder PORT
  rm -rf "$game"
  mkdir -p "$game/RECURSOS"
  cp build/native/bin/launcher "$game/"
  cp -r assets/skin "$game/RECURSOS/GRAFICOS"
  printf '[MIRRORS]\n1=http://127.0.0.1:%s/update/kvn2011/\n' "$1" >"$game/Deployment.ini"
}

# One start of the launcher, from its play button to the game. screen.txt keeps every line it prints with the time,
# taken half a millisecond apart at most so that keeping it costs the launcher next to nothing; memory.txt the most
# memory it had, in KB.
export XDG_CONFIG_HOME=$demo/home XDG_RUNTIME_DIR=$demo/home DEMO_CLIENT=$demo/client.txt
launch() {
  local player
  exec {player}<>"$demo/player"
  echo frmMain.cmdIniciar >&"$player"
  timeout 300 /usr/bin/time -f %M -o "$demo/memory.txt" "$game/launcher" <"$demo/player" 2>"$demo/launcher.log" |
    perl -MTime::HiRes=time,usleep -e '
      fcntl STDIN, 1031, 1 << 20; # F_SETPIPE_SZ: all that is printed meanwhile has room
      my (@blocks, $block);
      while (sysread STDIN, $block, 1 << 20) { push @blocks, [time, $block]; usleep 500 }
      my $rest = "";
      for $block (@blocks) {
        my @lines = split /^/, $rest . $$block[1];
        $rest = @lines && $lines[-1] !~ /\n$/ ? pop @lines : "";
        printf "%.4f %s", $$block[0], $_ for @lines;
      }' >"$demo/screen.txt"
  exec {player}>&-
  grep -q ' Run .*KVN-DX8\.exe' "$demo/screen.txt" || fail 'the launcher did not start the game'
}

# From the first line that the press on the button changes to the start of the game.
launch_time() { awk '/ frmMain.lblEstado: Buscando/ && !from { from = $1 } / Run .*KVN-DX8/ { print $1 - from }' "$demo/screen.txt"; }

# From the last line before the first file is counted to the last file.
verify_time() { # verify_time FILES
  awk '/ frmMain.lblEstado: Archivos verificados: / { if (!from) from = before; to = $1; count = $NF } { before = $1 }
    END { if (!count) exit 1; print to - from; print count >"/dev/stderr" }' "$demo/screen.txt" 2>"$demo/counted"
  [ "$(cat "$demo/counted")" = "$1" ] || fail 'the launcher did not verify every file'
}

stopwatch() { # stopwatch COMMAND...
  local from=$EPOCHREALTIME
  "$@" >/dev/null
  awk -v from="$from" -v to="$EPOCHREALTIME" 'BEGIN { print to - from }'
}

# Runs each program in turn, round by round, and keeps what it prints; a first round, which is not counted, warms
# everything up.
measure() { # measure ROUNDS PROGRAM...
  local program i rounds=$1
  shift
  rm -rf "$times"
  mkdir -p "$times"
  for ((i = 0; i <= rounds; ++i)); do
    for program in "$@"; do
      if [ "$i" = 0 ]; then $program >/dev/null; else $program >>"$times/$program"; fi
    done
  done
}

middle() { sort -n | awk '{ value[NR] = $1 } END { printf "%.3f", (value[int((NR + 1) / 2)] + value[int((NR + 2) / 2)]) / 2 }'; }
time_of() { middle <"$times/$1"; }
ratio() { paste "$times/$1" "$times/$2" | awk '{ print $1 / $2 }' | middle; }
megabytes() { awk -v kb="$1" 'BEGIN { printf "%.1f MB", kb / 1024 }'; }
