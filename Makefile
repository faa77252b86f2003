# DUNXBase: a thin front end over CMake and CTest.
#
#   make demo                      build dunx and translate the bundled example
#   make test                      configure, build, run every test
#   make build                     configure and build (library and tests)
#   make install PREFIX=/opt/dunx  configure, build and install
#   make clean                     remove the build folder
#   make bench                     benchmarks against limits and peers (Release)
#   make package                   Debian packages of the library and of dunx
#   make bench-translate           dunx against assimp on one million STL triangles
#   make fuzz                      every fuzz target for FUZZ_SECONDS (default 60)
#   make test-windows              cross-build for Windows (MinGW-w64), run every test under Wine
#
# Variables:
#   BUILD_DIR=build                 build folder
#   CXX=clang++                     C++ compiler (default: CMake's choice)
#   WERROR=1                        warnings are errors (-DDUNX_WARNINGS_AS_ERRORS=ON)
#   SANITIZE=address,undefined      build with these sanitizers (-DDUNX_SANITIZERS=...)
#   BUILD_TYPE=Debug                CMake build type
#   JOBS=<cores>                    parallel build and test jobs
#   CMAKE_ARGS=...                  more arguments for the CMake configure step
#   CTEST_ARGS=...                  more arguments for ctest (e.g. -R DUNXString)
#   DEMO_INPUT=...                  the STL or assembly file of make demo
#   DEMO_ARGS=...                   more arguments for dunx in make demo (e.g. --unit in)

BUILD_DIR ?= build
BUILD_TYPE ?= Debug
PREFIX ?= /usr/local
JOBS ?= $(shell nproc 2>/dev/null || echo 2)
WERROR ?= 0
SANITIZE ?=
CMAKE_ARGS ?=
CTEST_ARGS ?=
TEST_TIMEOUT ?= 300
DEMO_INPUT ?= examples/assembly/trolley.cfg
DEMO_DIR ?= $(BUILD_DIR)/demo
DEMO_ARGS ?=

# Make always defines CXX; pass it on only when the caller set it.
ifneq ($(filter environment command line,$(origin CXX)),)
DUNX_CXX := $(CXX)
endif

# Ninja when it is there, unless the folder was already configured otherwise.
GENERATOR := $(if $(wildcard $(BUILD_DIR)/CMakeCache.txt),,$(if $(shell command -v ninja 2>/dev/null),-G Ninja,-G "Unix Makefiles"))

DEPS_ARGS := $(if $(DUNX_CXX),--cxx "$(DUNX_CXX)") $(if $(SANITIZE),--sanitize "$(SANITIZE)") \
	$(if $(findstring BUILD_TESTING=OFF,$(CMAKE_ARGS)),--no-tests)

CONFIGURE_ARGS := $(GENERATOR) \
	-DCMAKE_BUILD_TYPE=$(BUILD_TYPE) \
	$(if $(DUNX_CXX),-DCMAKE_CXX_COMPILER="$(DUNX_CXX)") \
	-DDUNX_WARNINGS_AS_ERRORS=$(if $(filter 1 ON on yes YES true TRUE,$(WERROR)),ON,OFF) \
	-DDUNX_SANITIZERS="$(SANITIZE)" \
	-DCMAKE_EXPORT_COMPILE_COMMANDS=ON \
	$(CMAKE_ARGS)

.PHONY: all test build configure deps install clean demo

all: build

deps:
	@bash tools/check-deps.sh $(DEPS_ARGS)

configure: deps
	cmake -S . -B "$(BUILD_DIR)" $(CONFIGURE_ARGS)

build: configure
	cmake --build "$(BUILD_DIR)" --parallel $(JOBS)

test: build
	ctest --test-dir "$(BUILD_DIR)" --output-on-failure --no-tests=error \
		--timeout $(TEST_TIMEOUT) -j $(JOBS) $(CTEST_ARGS)

# The driver and its translator only, then one translation of the bundled example.
DUNX := $(BUILD_DIR)/tools/dunx/dunx
DEMO_OUTPUT := $(DEMO_DIR)/$(basename $(notdir $(DEMO_INPUT))).obj

demo: configure
	cmake --build "$(BUILD_DIR)" --parallel $(JOBS) --target dunx
	@mkdir -p "$(DEMO_DIR)"
	"$(DUNX)" translate "$(DEMO_INPUT)" "$(DEMO_OUTPUT)" $(DEMO_ARGS) \
		--report "$(DEMO_DIR)/report.json" --log-dir "$(DEMO_DIR)/logs"
	@echo
	@echo "The demo translated $(DEMO_INPUT):"
	@echo "  output       $(DEMO_OUTPUT)"
	@echo "  report       $(DEMO_DIR)/report.json"
	@echo "  log files    $(DEMO_DIR)/logs/travex_read.log and travex_write.log"
	@echo "  the program  $(DUNX) (try --help)"

install: build
	cmake --install "$(BUILD_DIR)" --prefix "$(PREFIX)"

clean:
	rm -rf "$(BUILD_DIR)"

# Benchmarks: a Release build of its own, then one table of ratios to each
# group's limit (median of the repetitions). BENCH_ARGS go to the program,
# e.g. BENCH_ARGS=--benchmark_filter=string.
BENCH_DIR ?= build-bench
BENCH_ARGS ?=

.PHONY: bench
bench:
	@bash tools/check-deps.sh --bench $(if $(DUNX_CXX),--cxx "$(DUNX_CXX)") --no-tests
	cmake -S . -B "$(BENCH_DIR)" $(if $(wildcard $(BENCH_DIR)/CMakeCache.txt),,$(if $(shell command -v ninja 2>/dev/null),-G Ninja)) \
		-DCMAKE_BUILD_TYPE=Release -DDUNX_BENCH=ON -DBUILD_TESTING=OFF -DDUNX_BUILD_TOOLS=OFF \
		$(if $(DUNX_CXX),-DCMAKE_CXX_COMPILER="$(DUNX_CXX)")
	cmake --build "$(BENCH_DIR)" --parallel $(JOBS) --target dunx_bench
	"$(BENCH_DIR)/bench/dunx_bench" $(BENCH_ARGS)

# Debian packages (cpack): dunxbase (library, headers, CMake and pkg-config
# files) and dunx (the driver and its translator module), in $(PACKAGE_DIR).
PACKAGE_DIR ?= build-package

.PHONY: package
package:
	@bash tools/check-deps.sh --no-tests --package $(if $(DUNX_CXX),--cxx "$(DUNX_CXX)")
	cmake -S . -B "$(PACKAGE_DIR)" $(if $(wildcard $(PACKAGE_DIR)/CMakeCache.txt),,$(if $(shell command -v ninja 2>/dev/null),-G Ninja)) \
		-DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr -DBUILD_SHARED_LIBS=ON \
		-DBUILD_TESTING=OFF -DDUNX_BUILD_TOOLS=ON $(if $(DUNX_CXX),-DCMAKE_CXX_COMPILER="$(DUNX_CXX)")
	cmake --build "$(PACKAGE_DIR)" --parallel $(JOBS)
	cd "$(PACKAGE_DIR)" && cpack -G DEB
	@echo "Packages:" && ls -1 "$(PACKAGE_DIR)"/*.deb

# The driver against `assimp export`: a Release build of dunx of its own, then
# one million triangles of binary STL to OBJ with each (bench/translation.py).
BENCH_TRANSLATE_DIR ?= build-bench-translate
BENCH_TRANSLATE_ARGS ?=

.PHONY: bench-translate
bench-translate:
	@bash tools/check-deps.sh --bench $(if $(DUNX_CXX),--cxx "$(DUNX_CXX)") --no-tests
	cmake -S . -B "$(BENCH_TRANSLATE_DIR)" $(if $(wildcard $(BENCH_TRANSLATE_DIR)/CMakeCache.txt),,$(if $(shell command -v ninja 2>/dev/null),-G Ninja)) \
		-DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=ON -DBUILD_TESTING=OFF -DDUNX_BUILD_TOOLS=ON \
		$(if $(DUNX_CXX),-DCMAKE_CXX_COMPILER="$(DUNX_CXX)")
	cmake --build "$(BENCH_TRANSLATE_DIR)" --parallel $(JOBS) --target dunx
	python3 bench/translation.py --dunx "$(BENCH_TRANSLATE_DIR)/tools/dunx/dunx" \
		--work "$(BENCH_TRANSLATE_DIR)/work" $(BENCH_TRANSLATE_ARGS)

# Windows: the whole suite cross-built with MinGW-w64 into $(WINDOWS_BUILD_DIR) and
# run under Wine, then dunx.exe's translation of the bundled example compared with
# the Linux dunx's of $(BUILD_DIR), byte for byte (tools/test-windows.sh).
WINDOWS_BUILD_DIR ?= build-windows

.PHONY: test-windows
test-windows: configure
	cmake --build "$(BUILD_DIR)" --parallel $(JOBS) --target dunx
	bash tools/test-windows.sh --build-dir "$(WINDOWS_BUILD_DIR)" --jobs $(JOBS) \
		--linux-dunx "$(DUNX)"

# Fuzzing: every libFuzzer target of fuzz/ for FUZZ_SECONDS each (clang,
# -DDUNX_FUZZ=ON); FUZZ_TARGETS="archive string" runs only those.
FUZZ_SECONDS ?= 60
FUZZ_TARGETS ?=

.PHONY: fuzz
fuzz:
	bash tools/run-fuzz.sh --seconds $(FUZZ_SECONDS) $(FUZZ_TARGETS)
