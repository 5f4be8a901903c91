# Set-up and everyday targets. Each target installs what is missing first.
PRESET ?= default
BUILD_DIR := build/$(PRESET)
STAGE := $(BUILD_DIR)/stage

.PHONY: all deps build test run asan fuzz bench clean

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


run: build
	$(STAGE)/bin/kaldo --script examples/first-session.scr

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
