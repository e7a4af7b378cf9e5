#!/usr/bin/env bash
# help_test.sh SOURCE: every script answers --help and -h and does nothing else,
# and refuses an argument that it does not know before it does anything.
set -euo pipefail
source "$(dirname "$0")/check.sh"

temporary_folder
tree=$folder/tree
mkdir -p "$tree" "$folder/bin"
cp -R "$1"/{scripts,bench,fuzz,.ci} "$tree"
called=$folder/called
for tool in apt-get cmake ctest ninja dpkg-query sudo gcovr git; do
  printf '#!/bin/bash\necho "%s $*" >>"%s"\n' "$tool" "$called" >"$folder/bin/$tool"
  chmod +x "$folder/bin/$tool"
done

# start SCRIPT [ARGUMENT ...]: sets said, complained and status.
start() {
  rm -f "$called"
  touch "$folder/now"
  said=$(cd / && PATH=$folder/bin:$PATH "$tree/$1" "${@:2}" 2>"$folder/complaint") &&
    status=0 || status=$?
  complained=$(<"$folder/complaint")
  [[ ! -e $called ]] || fail "'$*' ran $(<"$called")"
  expect_text "'$*' wrote files" "" \
    "$(find "$tree" -newer "$folder/now" ! -path '*/__pycache__*')"
}

scripts=(.ci/run)
for script in "$tree"/scripts/*; do
  [[ ! -f $script ]] || scripts+=("scripts/${script##*/}")
done
[[ ${#scripts[@]} -ge 9 ]] || fail "only these scripts were found: ${scripts[*]}"
for script in "${scripts[@]}"; do
  start "$script" --help
  help=$said
  expect_text "$script --help: status and complaint" "0 " "$status $complained"
  name=$script
  [[ $script != .ci/run ]] || name=scripts/test
  grep -qi "^usage: $name" <<<"$help" || fail "$script --help has no usage: $help"

  start "$script" -h
  expect_text "$script -h" "$help" "$said"
  expect_text "$script -h: status and complaint" "0 " "$status $complained"

  start "$script" --nonsense
  expect_text "$script --nonsense: status and answer" "2 " "$status $said"
  grep -qi "^usage: $name" <<<"$complained" || fail "$script --nonsense: $complained"
done

# refused SENTENCE SCRIPT [ARGUMENT ...]
refused() {
  start "${@:2}"
  expect_text "${*:2}: status" 2 "$status"
  grep -qF -- "$1" <<<"$complained" || fail "${*:2}: $complained"
}
refused "unknown argument 'second'" scripts/lint --tidy second
refused "unknown argument 'second'" scripts/demo --no-bootstrap second
refused "unknown argument 'fuzzz'" scripts/bootstrap build fuzzz
refused "unknown argument 'Nobody'" scripts/fuzz 10 Exchange Nobody
refused "unknown argument '..'" scripts/fuzz 10 ..
refused "0 seconds would never end" scripts/fuzz 00
refused "unrecognized arguments: --chec" scripts/bench --chec
