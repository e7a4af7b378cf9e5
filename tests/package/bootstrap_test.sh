#!/usr/bin/env bash
# bootstrap_test.sh SOURCE: what scripts/bootstrap says and runs, on a machine
# that is played by small programs at the head of PATH.
set -euo pipefail
source "$(dirname "$0")/check.sh"
bootstrap=$1/scripts/bootstrap

temporary_folder
mkdir "$folder/bin"
calls=$folder/calls

# machine USER_ID MISSING APT_STATUS [TOOL ...]: apt-get, dpkg-query and id as
# they would answer there, and the tools named.
machine() {
  local user=$1 missing=$2 status=$3 tool
  shift 3
  rm -f "$folder"/bin/*
  : >"$calls"
  for tool in bash cat env grep mktemp rm sed tail "$@"; do
    ln -s "$(command -v "$tool")" "$folder/bin/$tool"
  done
  program id "echo $user"
  program dpkg-query "$("$bootstrap" --list | grep -vxF "$missing" | sed 's/.*/echo "ii  &"/')"
  program apt-get "echo \"apt-get \$* [\$DEBIAN_FRONTEND]\" >>'$calls'
    echo 'E: the network is down'
    exit $status"
}

program() {
  printf '#!/bin/bash\n%s\n' "$2" >"$folder/bin/$1"
  chmod +x "$folder/bin/$1"
}

start() {
  said=$(PATH=$folder/bin "$folder/bin/bash" "$bootstrap" "$@" 2>&1) && status=0 || status=$?
}

machine 0 "nothing" 0
start
expect_text "nothing missing: said" "" "$said"
expect_text "nothing missing: status and calls" "0" "$status$(cat "$calls")"

installs='apt-get -o DPkg::Lock::Timeout=120 update [noninteractive]
apt-get -o DPkg::Lock::Timeout=120 install --yes --no-install-recommends cmake [noninteractive]'
machine 0 "cmake" 0
start
expect_text "cmake missing: said" "scripts/bootstrap: installing cmake" "$said"
expect_text "cmake missing: calls" "$installs" "$(cat "$calls")"
expect_text "cmake missing: status" "0" "$status"

machine 0 "nothing" 0
start bench
expect_text "what only the benches need: said" "scripts/bootstrap: installing \
libbenchmark-dev libxml2-dev libpugixml-dev libexpat1-dev" "$said"
expect_text "what only the benches need: status" "0" "$status"

machine 0 "nothing" 0
start coverage fuzz
expect_text "what only two scripts need: said" "scripts/bootstrap: installing \
gcovr libclang-rt-14-dev" "$said"
expect_text "what only two scripts need: status" "0" "$status"

machine 0 "libgtest-dev" 0
start build
expect_text "what only the tests need: said" "" "$said"
expect_text "what only the tests need: status and calls" "0" "$status$(cat "$calls")"

machine 0 "cmake" 0
start build
expect_text "build, and cmake missing: said" "scripts/bootstrap: installing cmake" "$said"
expect_text "build, and cmake missing: calls" "$installs" "$(cat "$calls")"

machine 1000 "cmake" 0
program sudo "echo sudo >>'$calls'; exec \"\$@\""
start
expect_text "with sudo: calls" "$(sed 's/^/sudo\n/' <<<"$installs")" "$(cat "$calls")"
expect_text "with sudo: status" "0" "$status"

machine 1000 "cmake" 0
start
expect_text "neither root nor sudo: said" \
  "scripts/bootstrap: packages are missing. As root, run:
  apt-get update && apt-get install --no-install-recommends cmake" "$said"
expect_text "neither root nor sudo: status and calls" "1" "$status$(cat "$calls")"

machine 0 "cmake" 100
start
expect_text "apt-get fails: said" "scripts/bootstrap: installing cmake
E: the network is down
scripts/bootstrap: 'apt-get update' failed; its last lines are above. Missing: cmake" "$said"
expect_text "apt-get fails: status" "1" "$status"
