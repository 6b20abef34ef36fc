# Two entry points: `make run` opens the viewer on the demo board, `make test` runs every test.
BUILD ?= build
JOBS  ?= 2

.PHONY: all bootstrap configure build run test bench clean

all: build

bootstrap:
	@bash tools/bootstrap.sh

$(BUILD)/build.ninja:
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo

configure: bootstrap $(BUILD)/build.ninja

build: configure
	cmake --build $(BUILD) -j $(JOBS)

# The demo board: every sample file that exists, Gerber layers first, the drill file last.
DEMO_FILES := $(wildcard samples/*.gbr samples/*.drl)

run: build
	$(BUILD)/bin/tarvex-gbrviewer $(DEMO_FILES)

test: build
	cd $(BUILD) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)

bench: build
	$(BUILD)/bin/bench_store

clean:
	rm -rf $(BUILD)
