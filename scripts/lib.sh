# Shared by the scripts beside it: source it first.
# shellcheck shell=bash
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
cd "$root"

fail() {
  echo "${0##*/}: $*" >&2
  exit 1
}

# The time of the last commit in seconds. Without git it is the earliest time that a zip can hold.
commit_time() { git -c safe.directory="$root" log -1 --format=%ct 2>/dev/null || echo 315532800; }

# configure PRESET: starts anew when the build directory comes from another checkout or another generator.
configure() {
  local cache=build/$1/CMakeCache.txt fresh=()
  if [[ -f $cache ]] && ! { grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$cache" &&
    grep -qxF "CMAKE_CACHEFILE_DIR:INTERNAL=$root/build/$1" "$cache" &&
    grep -qxF "CMAKE_GENERATOR:INTERNAL=Ninja" "$cache"; }; then
    fresh=(--fresh)
  fi
  cmake "${fresh[@]}" --preset "$1" </dev/null
}

# build PRESET [TARGET...]
build() {
  local preset=$1
  shift
  configure "$preset"
  cmake --build --preset "$preset" ${1+--target "$@"} </dev/null
}

# run_ctest PRESET: runs the tests and prints `N passed, N failed`; fails when a test does, or when there is none.
run_ctest() {
  local report=$root/build/$1/tests.xml status=0
  rm -f "$report"
  ctest --preset "$1" --parallel "$(nproc)" --output-junit "$report" </dev/null || status=$?
  count_tests "$report"
  return "$status"
}

# count_tests REPORT: prints the counts of a JUnit report of ctest's. A test that did not run has failed, unless it
# skipped itself.
count_tests() {
  local tests skipped disabled passed
  [[ -f $1 ]] || { echo "0 passed, 1 failed"; return; }
  tests=$(grep -c '<testcase ' "$1") || true
  passed=$(grep -c '<testcase .* status="run"' "$1") || true
  skipped=$(grep -c '<skipped message="SKIP_' "$1") || true
  disabled=$(grep -c '<testcase .* status="disabled"' "$1") || true
  skipped=$((skipped + disabled))
  echo "$passed passed, $((tests - passed - skipped)) failed$( ((skipped == 0)) || echo ", $skipped skipped")"
}

# expect WHAT COMMAND...: the command must print standard input, with its exit code when that is not 0. Counts in
# $passed and $failed.
expect() {
  local what=$1 found
  shift
  found=$("$@" 2>&1 </dev/null || echo "exit code $?")
  if diff -u --label expected --label found - <(printf '%s' "${found:+$found$'\n'}"); then
    passed=$((passed + 1))
  else
    failed=$((failed + 1))
    echo "${0##*/}: wrong: $what"
  fi
}
