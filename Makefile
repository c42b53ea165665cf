# make demo   renders real recordings into a room and says how to listen to them
# make test   builds and runs every test
# make bench  builds and runs the benchmarks
# make check  layout, layers and static analysis
BUILD := build/release
WERROR ?= $(if $(CI),ON,OFF)

.PHONY: all setup build test asan bench check format clean
all: build

setup:
	@tools/setup

build: setup
	@cmake --preset release -DORVAN_WERROR=$(WERROR) >/dev/null
	@cmake --build --preset release -j2

test: build
	ctest --preset release

asan: setup
	@cmake --preset asan >/dev/null
	@cmake --build --preset asan -j2
	ctest --preset asan

bench: build
	$(BUILD)/bench/orvan_bench

check: build
	tools/format --check
	tools/check_layers
	tools/tidy

format:
	tools/format

clean:
	rm -rf build out
