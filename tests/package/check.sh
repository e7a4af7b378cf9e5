# Sourced by the tests of this folder.

fail() {
  echo "FAILED: $1" >&2
  exit 1
}

# expect_text WHAT EXPECTED ACTUAL
expect_text() {
  diff -u --label "$1: expected" <(printf '%s\n' "$2") \
    --label "$1: actual" <(printf '%s\n' "$3") || fail "$1"
}

# A folder that goes when the test ends.
temporary_folder() {
  folder=$(mktemp -d)
  trap 'rm -rf "$folder"' EXIT
}

# build_consumer BUILD [OPTION ...]: the application in consumer/.
build_consumer() {
  local build=$1
  shift
  cmake -G Ninja -S "$here/consumer" -B "$build" "$@" >"$build.log" 2>&1 &&
    cmake --build "$build" >>"$build.log" 2>&1 ||
    { cat "$build.log" && fail "the application does not build"; }
}

# What consumer/main.cpp writes with the emulator below it.
with_emulator='status: 0
pump shares with:
valve shares with: pump
valve put to: pump
pump got: level &gt; 3
stranger failed: -2'

# What it writes with the transport of external/, and LOGGING beside it.
with_external() {
  local logging=$1
  local ids="external-transport $logging"
  echo "status: -2
pump shares with: $ids
valve shares with: $ids
valve put to: $ids
pump got: <ids><sharedClients>external-transport</sharedClients>\
<sharedClients>$logging</sharedClients></ids>
stranger failed: -2"
}

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
unset LD_LIBRARY_PATH PKG_CONFIG_PATH
export OVMEM_STORE=memory:
