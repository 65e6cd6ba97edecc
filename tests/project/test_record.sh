#!/usr/bin/env bash
# What scripts/test_record.py calls unchanged: in a small project of its own with one test program, one library, one
# picture and one script, every change must make run again what depends on it, and nothing else.
set -euo pipefail
source_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir -p "$folder/scripts" "$folder/build/fake/bin" "$folder/tools" "$folder/tests"
cp "$source_root/scripts/test_record.py" "$folder/scripts/"
cd "$folder"
printf 'build/\ntools/\n' >.gitignore
git init -q .
echo one >build/fake/bin/program && echo one >build/fake/bin/library.so && echo one >build/fake/bin/other
echo one >tests/picture.ppm && echo one >source.cpp && echo one >words.md && echo one >scripts/test.sh

# What the real ctest says about two tests.
cat >tools/ctest <<END
#!/bin/sh
echo '{"tests": [{"name": "compiled", "command": ["$folder/build/fake/bin/program", "--fast"], "properties": []},
  {"name": "shell", "command": ["/usr/bin/bash", "$folder/scripts/test.sh", "$folder/build/fake/bin"]}]}'
END
chmod +x tools/ctest
export PATH=$folder/tools:$PATH

passed=0 failed=0
# expect WHAT TESTS...: the tests that would run now
expect() {
  local what=$1 got
  shift
  got=$(scripts/test_record.py tests fake | awk '$1 == "run" { printf "%s ", $2 }')
  if [ "${got% }" = "$*" ]; then
    passed=$((passed + 1))
  else
    failed=$((failed + 1))
    echo "FAILED: $what: these run: $got, expected: $*"
  fi
}
store() { printf '%s\n' "$@" | scripts/test_record.py store fake; }
pass_all() { scripts/test_record.py tests fake >/dev/null && store "compiled 12 0 1.5" "shell 3 0 2"; }
# changed FILE TESTS...: the tests that run after a change of the file, and no others
changed() {
  local file=$1
  shift
  pass_all
  expect "before $file" ""
  echo two >>"$file"
  expect "after a change of $file" "$@"
}

expect "at first" compiled shell
changed build/fake/bin/program compiled shell
changed build/fake/bin/library.so compiled shell
changed build/fake/bin/other shell
changed tests/picture.ppm compiled shell
changed source.cpp shell
changed words.md shell
changed scripts/test.sh shell
pass_all
sed -i 's/--fast/--slow/' tools/ctest
expect "with other arguments" compiled

pass_all
store "compiled 11 1 1.5"
expect "after a failure" compiled
pass_all
store "compiled 0 0 1.5"
expect "after a run of no test" compiled
pass_all
rm build/test_record.json
expect "without a record" compiled shell
pass_all
echo '{"broken' >build/test_record.json
expect "with a broken record" compiled shell

# What is stored is the state before the tests ran, not one that came while they did.
scripts/test_record.py tests fake >/dev/null
echo three >>tests/picture.ppm
store "compiled 12 0 1.5" "shell 3 0 2"
expect "a change while the tests ran" compiled shell

pass_all
[ "$(scripts/test_record.py tests fake | awk '$2 == "compiled" { print $1, $3, $4 }')" = "passed 12 1.5" ] &&
  passed=$((passed + 1)) || { failed=$((failed + 1)); echo "FAILED: counts of a test that is not run"; }
scripts/test_record.py script lint >/dev/null
echo "lint 1 0 3" | scripts/test_record.py store lint
[[ $(scripts/test_record.py script lint) == "passed lint 1 3.0 "* ]] && passed=$((passed + 1)) ||
  { failed=$((failed + 1)); echo "FAILED: a script that passed"; }
echo four >>words.md
[ "$(scripts/test_record.py script lint)" = "run lint" ] && passed=$((passed + 1)) ||
  { failed=$((failed + 1)); echo "FAILED: a script after a change"; }

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
