#!/usr/bin/env bash
# Checks that the tools and packages a DUNXBase build needs are on this machine.
#
#   tools/check-deps.sh [--cxx COMPILER] [--no-tests] [--sanitize LIST] [--pkg-config] [--make]
#                       [--check-only] [--bench] [--valgrind] [--package] [--windows]
#
#   --cxx COMPILER   the C++ compiler to check (default: $CXX, else c++ or g++)
#   --no-tests       do not require GoogleTest (a build with -DBUILD_TESTING=OFF)
#   --sanitize LIST  also require that COMPILER links programs with -fsanitize=LIST
#   --pkg-config     also require pkg-config (otherwise it is optional)
#   --make           also require GNU make
#   --check-only     never install: name what is missing and fail
#   --bench          also require what bench/ needs: Google Benchmark and the peers (assimp too)
#   --valgrind       also require valgrind (the memory check of .ci/run)
#   --package        also require dpkg-deb (make package)
#   --windows        also require the Windows cross build and its test run (make test-windows):
#                    MinGW-w64 g++ (posix threads), Wine and GoogleTest's sources
#
# When a Debian package is missing and this user is root, or may run sudo
# without a password, it says so, installs the packages with apt-get and
# checks again. Otherwise it prints the one apt-get install line and fails.
set -euo pipefail

cxx="${CXX:-}"
need_tests=1
sanitize=""
need_pkg_config=0
need_make=0
need_valgrind=0
need_package=0
need_windows=0
may_install=1
need_bench=0

while [[ $# -gt 0 ]]; do
    case "$1" in
        --cxx) cxx="${2:?--cxx needs a compiler}"; shift 2 ;;
        --no-tests) need_tests=0; shift ;;
        --sanitize) sanitize="${2:?--sanitize needs a list, e.g. address,undefined}"; shift 2 ;;
        --pkg-config) need_pkg_config=1; shift ;;
        --make) need_make=1; shift ;;
        --valgrind) need_valgrind=1; shift ;;
        --package) need_package=1; shift ;;
        --windows) need_windows=1; shift ;;
        --check-only) may_install=0; shift ;;
        --bench) need_bench=1; shift ;;
        -h|--help) sed -n '2,/^set /{/^#/p}' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
        *) echo "check-deps: unknown argument '$1' (see --help)" >&2; exit 2 ;;
    esac
done

if [[ -z "$cxx" ]]; then
    if command -v c++ >/dev/null 2>&1; then cxx=c++; else cxx=g++; fi
fi

# The Debian package that provides a compiler of this name.
compiler_package() {
    case "$(basename "$1")" in
        *clang*) echo clang ;;
        *) echo g++ ;;
    esac
}

# The Debian package with the sanitizer run-time of this compiler.
sanitizer_package() {
    case "$(basename "$1")" in
        *clang*) echo libclang-rt-14-dev ;;
        *) echo g++ ;;
    esac
}

probe_dir=""
# shellcheck disable=SC2317 # called by the EXIT trap
cleanup() { [[ -n "$probe_dir" ]] && rm -rf "$probe_dir"; return 0; }
trap cleanup EXIT

# Compiles (and links) a small C++17 program with the given extra flags.
compiles() {
    [[ -n "$probe_dir" ]] || probe_dir="$(mktemp -d)"
    cat >"$probe_dir/probe.cpp" <<'EOF'
#include <optional>
#include <string>
int main() { std::optional<std::string> s{"ok"}; return s->size() == 2 ? 0 : 1; }
EOF
    "$cxx" -std=c++17 "$@" "$probe_dir/probe.cpp" -o "$probe_dir/probe" >"$probe_dir/log" 2>&1
}

# Sets `missing` (Debian packages) and `problems` (one line each).
check() {
    missing=()
    problems=()

    if ! command -v cmake >/dev/null 2>&1; then
        missing+=(cmake)
        problems+=("cmake not found (3.20 or newer needed)")
    else
        local version
        version="$(cmake --version | sed -n 's/^cmake version \([0-9][0-9.]*\).*/\1/p')"
        if ! printf '3.20\n%s\n' "$version" | sort -V -C; then
            missing+=(cmake)
            problems+=("cmake $version is too old (3.20 or newer needed)")
        fi
    fi

    if ! command -v "$cxx" >/dev/null 2>&1; then
        missing+=("$(compiler_package "$cxx")")
        problems+=("C++ compiler '$cxx' not found")
    elif ! compiles; then
        missing+=("$(compiler_package "$cxx")")
        problems+=("C++ compiler '$cxx' cannot build a C++17 program: $(head -n 3 "$probe_dir/log")")
    elif [[ -n "$sanitize" ]] && ! compiles -fsanitize="$sanitize"; then
        missing+=("$(sanitizer_package "$cxx")")
        problems+=("'$cxx' cannot link with -fsanitize=$sanitize: $(head -n 3 "$probe_dir/log")")
    fi

    if [[ $need_tests -eq 1 ]]; then
        local found=0 dir
        for dir in /usr/lib/*/cmake/GTest /usr/lib/cmake/GTest /usr/include/gtest \
                   /usr/local/lib/cmake/GTest /usr/local/include/gtest; do
            [[ -e "$dir" ]] && found=1
        done
        if [[ $found -eq 0 ]]; then
            missing+=(libgtest-dev libgmock-dev googletest)
            problems+=("GoogleTest development files not found (CMake package GTest or gtest headers)")
        fi
    fi

    if [[ $need_pkg_config -eq 1 ]] && ! command -v pkg-config >/dev/null 2>&1; then
        missing+=(pkg-config)
        problems+=("pkg-config not found")
    fi

    if [[ $need_valgrind -eq 1 ]] && ! command -v valgrind >/dev/null 2>&1; then
        missing+=(valgrind)
        problems+=("valgrind not found")
    fi

    if [[ $need_package -eq 1 ]] && ! command -v dpkg-deb >/dev/null 2>&1; then
        missing+=(dpkg)
        problems+=("dpkg-deb not found (make package builds Debian packages)")
    fi

    if [[ $need_windows -eq 1 ]]; then
        if ! command -v x86_64-w64-mingw32-g++-posix >/dev/null 2>&1; then
            missing+=(g++-mingw-w64-x86-64-posix)
            problems+=("x86_64-w64-mingw32-g++-posix not found (the Windows cross compiler)")
        fi
        # wine64 runs 64-bit programs; the wine package gives it the wine command.
        if [[ ! -x /usr/lib/wine/wine64 ]] && ! command -v wine64 >/dev/null 2>&1; then
            missing+=(wine64)
            problems+=("wine64 not found (runs the Windows tests)")
        fi
        if ! command -v wine >/dev/null 2>&1; then
            missing+=(wine)
            problems+=("wine not found (the command that starts Windows programs)")
        fi
        if [[ ! -f /usr/src/googletest/CMakeLists.txt ]]; then
            missing+=(googletest)
            problems+=("GoogleTest sources not found in /usr/src/googletest (built for Windows)")
        fi
    fi

    if [[ $need_make -eq 1 ]] && ! command -v make >/dev/null 2>&1; then
        missing+=(make)
        problems+=("make not found")
    fi

    if [[ $need_bench -eq 1 ]]; then
        local entry header
        # header to look for:Debian package that installs it
        for entry in benchmark/benchmark.h:libbenchmark-dev spdlog/spdlog.h:libspdlog-dev \
                     ini.h:libinih-dev cereal/cereal.hpp:libcereal-dev \
                     eigen3/Eigen/Core:libeigen3-dev; do
            header="${entry%%:*}"
            if [[ ! -e "/usr/include/$header" && ! -e "/usr/local/include/$header" ]]; then
                missing+=("${entry#*:}")
                problems+=("<$header> not found (needed by the benchmarks)")
            fi
        done
        if ! command -v assimp >/dev/null 2>&1; then
            missing+=(assimp-utils)
            problems+=("assimp not found (the peer of the translation benchmark)")
        fi
    fi
    return 0
}

report() {
    local p
    echo "DUNXBase build dependencies are missing:" >&2
    for p in "${problems[@]}"; do echo "  - $p" >&2; done
}

check
if [[ ${#missing[@]} -eq 0 ]]; then
    if [[ $need_pkg_config -eq 0 ]] && ! command -v pkg-config >/dev/null 2>&1; then
        echo "check-deps: note: pkg-config not found; only needed to check the installed DUNXBase.pc" >&2
    fi
    exit 0
fi

# Unique package names, in order.
mapfile -t packages < <(printf '%s\n' "${missing[@]}" | awk '!seen[$0]++')

# How to run apt-get as root here: directly, through sudo without a password,
# or not at all.
as_root=()
can_install=0
if [[ $may_install -eq 1 ]] && command -v apt-get >/dev/null 2>&1; then
    if [[ "$(id -u)" -eq 0 ]]; then
        can_install=1
    elif command -v sudo >/dev/null 2>&1 && sudo -n true >/dev/null 2>&1; then
        as_root=(sudo -n)
        can_install=1
    fi
fi

if [[ $can_install -eq 1 ]]; then
    report
    echo "check-deps: installing them: ${as_root[*]:+${as_root[*]} }apt-get install -y ${packages[*]}" >&2
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq >&2
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${packages[@]}" >&2
    check
    if [[ ${#missing[@]} -eq 0 ]]; then
        exit 0
    fi
    report
    echo "check-deps: still missing after the install" >&2
    exit 1
fi

report
echo "Install them with (as root):" >&2
echo "  apt-get install -y ${packages[*]}" >&2
exit 1
