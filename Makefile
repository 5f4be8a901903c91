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

test: build
	ctest --preset $(PRESET)

run: build
	$(STAGE)/bin/kaldo --script examples/first-session.scr

asan:
	$(MAKE) test PRESET=asan

fuzz:
	$(MAKE) build PRESET=fuzz

bench: build
	@for b in $(STAGE)/bin/bench_*; do [ -x "$$b" ] && "$$b"; done

clean:
	rm -rf build
