#!/usr/bin/env bash
# test_script_test.sh SOURCE: the steps that scripts/test takes, and that it stops
# at the first that fails. Its tools are played by small programs.
set -euo pipefail
source "$(dirname "$0")/check.sh"

temporary_folder
tree=$folder/tree
mkdir -p "$tree/scripts" "$tree/.ci" "$folder/bin"
cp "$1/scripts/test" "$tree/scripts"
cp "$1/.ci/run" "$tree/.ci"
for program in "$tree"/scripts/{bootstrap,lint,coverage,fuzz} "$folder"/bin/{cmake,ctest}; do
  cat >"$program" <<'END'
#!/bin/bash
call="$(basename "$0") $*"
echo "${call% }"
[[ "${call% }" != "$FAILING" ]]
END
  chmod +x "$program"
done

# start FAILING SCRIPT [OPTION ...]
start() {
  export FAILING=$1
  shift
  said=$(cd / && PATH=$folder/bin:$PATH "$tree/$1" "${@:2}" 2>&1) && status=0 || status=$?
}

# suite PRESET [SELECTION]
suite() {
  echo "== $1
cmake --preset $1 --log-level=WARNING
cmake --build --preset $1
ctest --preset $1${2+ $2}"
}

for script in scripts/test .ci/run; do
  start none $script
  expect_text "$script: steps" "bootstrap
lint --tidy
$(suite dev '-LE long')" "$said"
  expect_text "$script: status" 0 "$status"
done

start none scripts/test --all
expect_text "--all: steps" "bootstrap bench coverage fuzz
lint --tidy
$(suite clang '-LE long')
$(suite asan '-LE long')
$(suite tsan '-LE long')
$(suite release '-LE long')
$(suite bench '-LE long')
coverage
fuzz 10
$(suite dev)" "$said"
expect_text "--all: status" 0 "$status"

start none scripts/test --no-bootstrap
expect_text "--no-bootstrap: steps" "lint --tidy
$(suite dev '-LE long')" "$said"
expect_text "--no-bootstrap: status" 0 "$status"

for step in bootstrap 'lint --tidy' 'cmake --preset dev --log-level=WARNING' \
  'cmake --build --preset dev' 'ctest --preset dev -LE long'; do
  start "$step" scripts/test
  expect_text "when $step fails: last step" "$step" "$(tail -n 1 <<<"$said")"
  expect_text "when $step fails: status" 1 "$status"
done

start none scripts/test --everything
expect_text "unknown argument: first line" \
  "scripts/test: unknown argument '--everything'" "$(head -n 1 <<<"$said")"
expect_text "unknown argument: status" 2 "$status"
