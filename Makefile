# Two entry points: `make run` opens the viewer on the demo board, `make test` runs every test.
# `make check-format` and `make check-sanitize` are the further checks CI runs (.ci/run).
BUILD ?= build
JOBS  ?= 2
# WERROR=ON makes every compiler warning an error; it applies when $(BUILD) is first configured.
WERROR ?=
SANITIZE_BUILD ?= build-sanitize

.PHONY: all bootstrap configure build run test bench check-format check-sanitize clean

all: build

bootstrap:
	@bash tools/bootstrap.sh

$(BUILD)/build.ninja:
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo $(if $(WERROR),-DTVX_WERROR=$(WERROR))

configure: bootstrap $(BUILD)/build.ninja

build: configure
	cmake --build $(BUILD) -j $(JOBS)

# The demo board, each file on its layer: copper top 3 and bottom 4, silkscreen 1, mask 2,
# outline 30, drill 31.
DEMO_FILES := --layer 3 samples/demo-top.gbr --layer 4 samples/demo-bottom.gbr \
	--layer 1 samples/demo-silk-top.gbr --layer 2 samples/demo-mask-top.gbr \
	--layer 30 samples/demo-outline.gbr --layer 31 samples/demo.drl

run: build
	$(BUILD)/bin/tarvex-gbrviewer $(DEMO_FILES)

test: build
	cd $(BUILD) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)

# Every benchmark, each timed briefly (BENCH_MIN_TIME seconds a case, about 40 s in all); they
# run without a display.
BENCH_MIN_TIME ?= 0.05
bench: build
	@set -e; for b in $(BUILD)/bin/bench_*; do echo "== $$b"; $$b --benchmark_min_time=$(BENCH_MIN_TIME); done

# clang-format over every tracked C++ file, or those changed since BASE (make check-format BASE=main).
check-format:
	@bash tools/check-format.sh $(BASE)

# The unit tests under AddressSanitizer and UndefinedBehaviorSanitizer in a build directory of
# their own: -O1 with line tables only, and no benchmarks, to keep the build short. Debug keeps
# Qt's own bounds assertions in its inline containers.
SANITIZER_ENV := ASAN_OPTIONS=detect_stack_use_after_return=1:strict_init_order=1:check_initialization_order=1 \
  UBSAN_OPTIONS=print_stacktrace=1 \
  LSAN_OPTIONS=suppressions=$(CURDIR)/tools/lsan.supp:print_suppressions=0

check-sanitize: bootstrap
	cmake -S . -B $(SANITIZE_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-O1 -g1" \
	  -DTVX_SANITIZE=ON -DTVX_BUILD_BENCHMARKS=OFF -DTVX_BUILD_FUZZERS=OFF
	cmake --build $(SANITIZE_BUILD) -j $(JOBS)
	cd $(SANITIZE_BUILD) && $(SANITIZER_ENV) QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)

clean:
	rm -rf $(BUILD) $(SANITIZE_BUILD)
