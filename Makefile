# Set-up and everyday targets. Each target installs what is missing first.
PRESET ?= default
BUILD_DIR := build/$(PRESET)
STAGE := $(BUILD_DIR)/stage

.PHONY: all deps build test run package screenshots asan fuzz fuzz-build bench clean

all: build

deps:
	@scripts/install-deps.sh

build: deps
	@cmake --preset $(PRESET) >/dev/null
	@cmake --build --preset $(PRESET)

# Every test of the build, then every kept fuzz input replayed once under
# the sanitizers: the same commit gives the same result on every run.
test: build fuzz-build
	ctest --preset $(PRESET)
	ctest --preset fuzz


# The example session draws two crossing roads and a walled room with a door,
# opens the crossing and cuts the door, then saves and draws the result. With
# a display, the window then opens on the drawing.
run: build
	$(STAGE)/bin/kaldo --script examples/first-session.scr \
	    --save $(BUILD_DIR)/first-session.dxf --export $(BUILD_DIR)/first-session.png --background dark
	@echo "Saved $(BUILD_DIR)/first-session.dxf and its picture $(BUILD_DIR)/first-session.png"
	@if [ -n "$$DISPLAY$$WAYLAND_DISPLAY" ]; then $(STAGE)/bin/kaldo $(BUILD_DIR)/first-session.dxf; fi

# The Debian package, kaldo_<version>_<arch>.deb in this folder, for
# 'sudo apt install ./kaldo_*.deb'.
package: build
	@rm -f kaldo_*.deb
	cmake --build --preset $(PRESET) --target package
	cp $(BUILD_DIR)/package/kaldo_*.deb .

# Pictures of the window for the README, taken on a virtual display.
screenshots: build
	$(STAGE)/bin/kaldo --script examples/first-session.scr --save $(BUILD_DIR)/first-session.dxf >/dev/null
	xvfb-run -a -s "-screen 0 1400x1000x24" $(STAGE)/bin/window_screenshot \
	    $(BUILD_DIR)/first-session.dxf docs/window.png

asan:
	$(MAKE) test PRESET=asan

# The readers with clang, libFuzzer and the sanitizers.
fuzz-build: deps
	@cmake --preset fuzz >/dev/null
	@cmake --build --preset fuzz

# Open-ended search for inputs that break a reader: each target runs for
# FUZZ_SECONDS on its corpus. Not part of the test gate; a finding is a bug
# to fix, and the input that showed it goes into fuzz/corpus/<target>/.
FUZZ_SECONDS ?= 60

fuzz: fuzz-build
	@scripts/run-fuzzers.sh build/fuzz $(FUZZ_SECONDS)

bench: build
	@for b in $(STAGE)/bin/bench_*; do [ -x "$$b" ] && KALDO_SOURCE_DIR=$(CURDIR) "$$b"; done

clean:
	rm -rf build
