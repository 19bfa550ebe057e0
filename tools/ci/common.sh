# Shared steps of the CI target scripts (sourced, not run).
#
# ci_install PACKAGE...: installs the Debian packages that are missing. As
#   root it runs apt-get (waiting for a lock held by another install); as
#   anyone else it names the missing packages and fails.
# ci_target PRESET: configures, builds and tests one preset, keeping the
#   whole output in build/PRESET/ci.log and printing the times of the three
#   steps and CTest's summary; on a failure it prints the log's end as well.
#   A target script may define ci_before_test (called with the build folder
#   between build and test). Fails when any step fails. The times and counts
#   are appended to the file $CI_RESULTS names, if any.

set -euo pipefail
CI_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

ci_install() {
  local missing=() p
  for p in "$@"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q '^install ok installed$' || missing+=("$p")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  if [ "$(id -u)" != 0 ]; then
    echo "missing packages: ${missing[*]}" >&2
    echo "install them with: sudo apt-get update && sudo apt-get install -y ${missing[*]}" >&2
    return 1
  fi
  echo "=== installing ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  local apt=(apt-get -o DPkg::Lock::Timeout=600 -y -qq)
  "${apt[@]}" update >/dev/null
  "${apt[@]}" install --no-install-recommends "${missing[@]}" >/dev/null
}

# Runs one step with its output appended to the log; sets step_seconds.
ci_step() {
  local log=$1
  shift
  local start=$SECONDS rc=0
  echo "\$ $*" >>"$log"
  "$@" >>"$log" 2>&1 || rc=$?
  step_seconds=$((SECONDS - start))
  return $rc
}

ci_target() {
  local preset=$1
  local dir=$CI_ROOT/build/$preset
  local log=$dir/ci.log
  local configure=- build=- test=- passed=0 failed=0 result=ok
  mkdir -p "$dir"
  : >"$log"
  cd "$CI_ROOT"
  echo "=== $preset"
  if ci_step "$log" cmake --preset "$preset"; then
    configure=$step_seconds
    if ci_step "$log" cmake --build --preset "$preset"; then
      build=$step_seconds
      # The test time includes the preparation.
      test=0
      if declare -F ci_before_test >/dev/null; then
        ci_step "$log" ci_before_test "$dir" || result=failed
        test=$step_seconds
      fi
      if [ $result = ok ]; then
        ci_step "$log" ctest --preset "$preset" || result=failed
        test=$((test + step_seconds))
      fi
    else
      build=$step_seconds
      result=failed
    fi
  else
    configure=$step_seconds
    result=failed
  fi

  # CTest's closing lines: "N% tests passed, F tests failed out of T", the
  # list of failed tests and the total time.
  local summary
  summary=$(sed -n '/% tests passed/,$p' "$log")
  if [ -n "$summary" ]; then
    local total
    total=$(sed -n 's/.*tests failed out of \([0-9]*\).*/\1/p' <<<"$summary" | tail -n 1)
    failed=$(sed -n 's/.*, \([0-9]*\) tests failed out of.*/\1/p' <<<"$summary" | tail -n 1)
    passed=$((total - failed))
  fi
  if [ $result != ok ]; then
    echo "--- $preset failed; the end of $log:"
    tail -n 150 "$log"
  fi
  [ -n "$summary" ] && printf '%s\n' "$summary"
  echo "=== $preset: $result (configure ${configure} s, build ${build} s, test ${test} s)"
  [ -n "${CI_RESULTS:-}" ] &&
    printf '%s %s %s %s %s %s %s\n' "$preset" "$result" "$configure" "$build" "$test" "$passed" "$failed" >>"$CI_RESULTS"
  [ $result = ok ]
}
