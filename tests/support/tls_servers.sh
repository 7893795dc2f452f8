#!/bin/sh
# Makes certificates of several kinds in FOLDER and serves a page behind each, on ports of localhost that the system
# chooses, until FOLDER is gone or two minutes have passed:
#
#   tls_servers.sh FOLDER
#
#   good      as it should be               stranger   for another host
#   expired   its time is over              unknown    its issuer is not trusted
#   old       good, but the server speaks TLS 1.1 only
set -eu
PATH=/usr/bin:/bin
export PATH
folder=$1
cd "$folder"
trap 'if [ -d "$folder" ] && [ ! -e ready ]; then : >failed; fi' EXIT

cat >ca.cnf <<'END'
[ca]
default_ca = tests
[tests]
database = index.txt
serial = serial
new_certs_dir = .
default_md = sha256
policy = any
unique_subject = no
[any]
commonName = supplied
END
: >index.txt
echo 1000 >serial

key() { openssl ecparam -name prime256v1 -genkey -noout -out "$1.key"; }

# Signs with RSA: Wine 8 takes one in 64 signatures of elliptic curves for wrong, those of which a number has a leading
# zero.
authority() { # authority NAME
  openssl genrsa -out "$1.key" 2048
  openssl req -x509 -new -key "$1.key" -subj "/CN=launcher tests, $1" -days 30 -out "$1.crt" \
    -addext basicConstraints=critical,CA:TRUE -addext keyUsage=keyCertSign
}

certificate() { # certificate NAME ISSUER HOST YEARS
  key "$1"
  openssl req -new -key "$1.key" -subj "/CN=$3" -out "$1.csr"
  printf 'subjectAltName=DNS:%s\nextendedKeyUsage=serverAuth\n' "$3" >"$1.ext"
  openssl ca -batch -notext -config ca.cnf -cert "$2.crt" -keyfile "$2.key" -in "$1.csr" -out "$1.crt" \
    -extfile "$1.ext" -startdate "${4%-*}0101000000Z" -enddate "${4#*-}0101000000Z"
}

{
  authority trusted
  authority untrusted
  certificate good trusted localhost 2020-2090
  certificate old trusted localhost 2020-2090
  certificate expired trusted localhost 2020-2021
  certificate stranger trusted elsewhere.example 2020-2090
  certificate unknown untrusted localhost 2020-2090
} >log 2>&1 </dev/null

servers=
serve() { # serve KIND [OPTION...]
  kind=$1
  shift
  openssl s_server -accept 127.0.0.1:0 -cert "$kind.crt" -key "$kind.key" -www "$@" >"$kind.out" 2>&1 </dev/null &
  servers="$servers $!"
  until grep -q '^ACCEPT' "$kind.out"; do sleep 0.02; done
  sed -n 's/^ACCEPT .*:\([0-9]*\)$/\1/p' "$kind.out" | tr -d '\n' >"$kind.port"
}
for kind in good expired stranger unknown; do serve $kind; done
serve old -tls1_1 -cipher ALL:@SECLEVEL=0
: >ready

waited=0
while [ -e "$folder/ready" ] && [ $waited -lt 600 ]; do
  sleep 0.2
  waited=$((waited + 1))
done
# shellcheck disable=SC2086  # a list of numbers
kill $servers
