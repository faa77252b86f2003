#!/usr/bin/env bash
# The Windows build of DUNXBase, cross-built with MinGW-w64 and tested under Wine:
#
#   tools/test-windows.sh --linux-dunx PATH [--build-dir DIR] [--jobs N]
#
#   --linux-dunx PATH  the Linux dunx whose translation of the bundled example the
#                      Windows dunx.exe must reproduce byte for byte
#   --build-dir DIR    the cross build folder (default build-windows); Wine's prefix
#                      is made in DIR/wine on first use
#   --jobs N           parallel build and test jobs (default: every core)
#
# Checks the tools first (tools/check-deps.sh --windows), then configures with
# cmake/toolchain-mingw64.cmake, builds everything, runs the whole suite through
# CTest (one Wine process per test program; the end-to-end tests start dunx.exe
# as Wine processes of their own) and translates
# examples/assembly/trolley.cfg with dunx.exe and with the Linux dunx.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
build_dir=build-windows
jobs="$(nproc 2>/dev/null || echo 2)"
linux_dunx=""

while [[ $# -gt 0 ]]; do
    case "$1" in
        --build-dir) build_dir="${2:?--build-dir needs a folder}"; shift 2 ;;
        --jobs) jobs="${2:?--jobs needs a number}"; shift 2 ;;
        --linux-dunx) linux_dunx="${2:?--linux-dunx needs the Linux dunx program}"; shift 2 ;;
        -h|--help) sed -n '2,/^set /{/^#/p}' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
        *) echo "test-windows: unknown argument '$1' (see --help)" >&2; exit 2 ;;
    esac
done
if [[ -z "$linux_dunx" || ! -x "$linux_dunx" ]]; then
    echo "test-windows: --linux-dunx must name the built Linux dunx (got '$linux_dunx')" >&2
    exit 2
fi

bash tools/check-deps.sh --windows --no-tests

# Absolute: Wine's prefix lies in it, and Wine starts in another folder.
[[ "$build_dir" == /* ]] || build_dir="$PWD/$build_dir"

generator=()
if [[ ! -f "$build_dir/CMakeCache.txt" ]] && command -v ninja >/dev/null 2>&1; then
    generator=(-G Ninja)
fi
cmake -S . -B "$build_dir" "${generator[@]}" \
    -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/toolchain-mingw64.cmake" -DCMAKE_BUILD_TYPE=Debug
cmake --build "$build_dir" --parallel "$jobs"

# The same Wine set-up as CTest's (the toolchain's emulator): a private prefix,
# no debug channels, no display, no offer to install .NET or the HTML engine.
export WINEPREFIX="$build_dir/wine" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
unset DISPLAY WAYLAND_DISPLAY
# Made once here: test programs started in parallel would each try to make it.
if [[ ! -f "$WINEPREFIX/system.reg" ]]; then
    echo "test-windows: making the Wine prefix $WINEPREFIX"
    wine cmd /c exit >/dev/null 2>&1 || true
    wineserver -w
fi

ctest --test-dir "$build_dir" --output-on-failure --no-tests=error --timeout 600 -j "$jobs"

# dunx.exe must write the very bytes that the Linux dunx writes.
compare_dir="$build_dir/compare"
rm -rf "$compare_dir"
mkdir -p "$compare_dir"
dunx_exe="$build_dir/bin/dunx.exe"
wine "$dunx_exe" translate examples/assembly/trolley.cfg "$compare_dir/windows.obj" \
    --quiet --no-progress --log-dir "$compare_dir/windows-logs"
"$linux_dunx" translate examples/assembly/trolley.cfg "$compare_dir/linux.obj" \
    --quiet --no-progress --log-dir "$compare_dir/linux-logs"
if ! cmp "$compare_dir/windows.obj" "$compare_dir/linux.obj"; then
    echo "test-windows: dunx.exe wrote another OBJ file than the Linux dunx:" >&2
    diff "$compare_dir/linux.obj" "$compare_dir/windows.obj" | head -n 20 >&2 || true
    exit 1
fi
echo "test-windows: dunx.exe and the Linux dunx wrote the same OBJ file" \
    "($(grep -c '^f ' "$compare_dir/windows.obj") faces, $(wc -c <"$compare_dir/windows.obj") bytes)"
