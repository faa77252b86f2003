#!/usr/bin/env bash
# Builds the libFuzzer targets (clang, -DDUNX_FUZZ=ON) and runs each for a while.
#
#   tools/run-fuzz.sh [--seconds N] [--build-dir DIR] [SUBJECT...]
#
#   --seconds N      how long each target runs (default 60)
#   --build-dir DIR  build folder (default build-fuzz)
#   SUBJECT          run only these targets (<subject>_fuzz); default: all of them
#
# Each target starts from its starting corpus in fuzz/corpus/<subject>/ and keeps what
# it finds new in a scratch folder, so the committed corpus never changes. A
# finding (crash, sanitizer report, leak, timeout) stops the run with a non-zero
# exit and leaves the input that caused it in the build folder.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
seconds=60
build_dir=build-fuzz
subjects=()
while [[ $# -gt 0 ]]; do
    case "$1" in
        --seconds) seconds="${2:?--seconds needs a number}"; shift 2 ;;
        --build-dir) build_dir="${2:?--build-dir needs a folder}"; shift 2 ;;
        -h|--help) sed -n '2,13p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
        -*) echo "run-fuzz: unknown option '$1' (see --help)" >&2; exit 2 ;;
        *) subjects+=("$1"); shift ;;
    esac
done

bash tools/check-deps.sh --cxx clang++ --sanitize fuzzer-no-link,address,undefined --no-tests

generator=()
if command -v ninja >/dev/null 2>&1; then generator=(-G Ninja); fi
cmake -S . -B "$build_dir" "${generator[@]}" -DCMAKE_CXX_COMPILER=clang++ -DDUNX_FUZZ=ON \
    -DBUILD_TESTING=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo -DDUNX_WARNINGS_AS_ERRORS=ON >/dev/null

if [[ ${#subjects[@]} -eq 0 ]]; then
    for source in fuzz/*_fuzz.cpp; do
        name="$(basename "$source" .cpp)"
        subjects+=("${name%_fuzz}")
    done
fi
targets=()
for subject in "${subjects[@]}"; do targets+=("${subject}_fuzz"); done
cmake --build "$build_dir" --parallel "$(nproc 2>/dev/null || echo 2)" --target "${targets[@]}" >/dev/null

scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
failed=0
for subject in "${subjects[@]}"; do
    program="$(realpath "$(find "$build_dir" -name "${subject}_fuzz" -type f -perm -u+x | head -n 1)")"
    mkdir -p "$scratch/$subject" "$build_dir/findings/$subject"
    log="$build_dir/findings/$subject/last-run.log"
    if (cd "$build_dir/findings/$subject" &&
        "$program" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
            -print_final_stats=1 "$scratch/$subject" "$OLDPWD/fuzz/corpus/$subject") >"$log" 2>&1; then
        runs="$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")"
        cover="$(grep -o 'cov: [0-9]*' "$log" | tail -n 1)"
        echo "${subject}_fuzz: ${runs:-?} runs in ${seconds}s, ${cover:-cov: ?}, no finding"
    else
        echo "${subject}_fuzz: FINDING (see $log and the crash-* file beside it):"
        grep -E 'ERROR|SUMMARY|runtime error|Test unit written' "$log" | head -n 5 || true
        failed=1
    fi
done
exit "$failed"
