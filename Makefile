# Set-up and everyday targets. Each target installs what is missing first.
PRESET ?= default
BUILD_DIR := build/$(PRESET)
STAGE := $(BUILD_DIR)/stage

.PHONY: all deps build test run screenshots asan fuzz bench clean

all: build

deps:
	@scripts/install-deps.sh

build: deps
	@cmake --preset $(PRESET) >/dev/null
	@cmake --build --preset $(PRESET)

FUZZ_SECONDS ?= 60

test: build
	ctest --preset $(PRESET)
	$(MAKE) fuzz


# The example session draws two crossing roads and a walled room with a door,
# opens the crossing and cuts the door, then saves and draws the result. With
# a display, the window then opens on the drawing.
run: build
	$(STAGE)/bin/kaldo --script examples/first-session.scr \
	    --save $(BUILD_DIR)/first-session.dxf --export $(BUILD_DIR)/first-session.png --background dark
	@echo "Saved $(BUILD_DIR)/first-session.dxf and its picture $(BUILD_DIR)/first-session.png"
	@if [ -n "$$DISPLAY$$WAYLAND_DISPLAY" ]; then $(STAGE)/bin/kaldo $(BUILD_DIR)/first-session.dxf; fi

# Pictures of the window for the README, taken on a virtual display.
screenshots: build
	$(STAGE)/bin/kaldo --script examples/first-session.scr --save $(BUILD_DIR)/first-session.dxf >/dev/null
	xvfb-run -a -s "-screen 0 1400x1000x24" $(STAGE)/bin/window_screenshot \
	    $(BUILD_DIR)/first-session.dxf docs/window.png

asan:
	$(MAKE) test PRESET=asan

# Builds the readers with clang and libFuzzer, then fuzzes each for a bounded time.
fuzz: deps
	@cmake --preset fuzz >/dev/null
	@cmake --build --preset fuzz
	@scripts/run-fuzzers.sh build/fuzz $(FUZZ_SECONDS)

bench: build
	@for b in $(STAGE)/bin/bench_*; do [ -x "$$b" ] && "$$b"; done

clean:
	rm -rf build
