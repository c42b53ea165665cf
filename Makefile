# make demo   renders real recordings into three rooms and says how to listen to them
# make test   builds and runs the tests
# make slow   runs the tests that take minutes, and judges the built-in ears against their measurements
# make soak   plays for an hour in three shapes under random control, or for SOAK_SECONDS
# make asan   builds and runs the tests with address and undefined-behaviour sanitizers
# make tsan   runs the tests of what crosses threads, with the thread sanitizer
# make fuzz   throws crafted files at the loaders for a minute each (clang)
# make pd-package  puts the external for Pure Data into out/
# make python builds the Python package into build/release/python
# make lv2    installs the LV2 plug-ins for this user, or into LV2_FOLDER
# make lv2-package  puts them into out/
# make test-ardour  opens and exports a session of Ardour with a plug-in in it
# make deb    makes Debian packages, into out/
# make web    puts the page with the engine in it into out/web, for any server of static files
# make test-web  tests it in a browser
# make bench  builds and runs the benchmarks
# make gate   before a hand-over: asan, docs, tidy, and the tests as clang builds them
# make check  layout, layers, quirks: seconds
# make tidy   static analysis: a quarter of an hour, or TIDY="FILE..."
# make docs   the pages of the library's interface, into out/docs (doxygen)
# make format lays out every file
BUILD := build/release
WERROR ?= $(if $(CI),ON,OFF)
# Compilers take up to 1 GB each; a machine without nproc gets two.
JOBS ?= $(shell nproc 2>/dev/null || echo 2)

.PHONY: all setup configure build demo test slow soak asan gate tsan fuzz bench web test-web check tidy docs format pd-package lv2 lv2-package test-ardour python deb clean
all: build

setup:
	@tools/setup

configure: setup
	@cmake --preset release -DORVAN_WERROR=$(WERROR) >/dev/null

build: configure
	@cmake --build --preset release -j$(JOBS)

demo: configure
	@cmake --build --preset release -j$(JOBS) --target orvanverb
	@tools/demo $(BUILD)/apps/orvanverb/orvanverb

test: build
	ctest --preset release

slow: build
	@tools/setup hrtf
	ctest --preset slow
	tools/hrtf/check_kemar.py

SOAK_SECONDS ?= 3600
soak: configure
	@cmake --build --preset release -j$(JOBS) --target test_realtime
	ORVAN_SOAK_SECONDS=$(SOAK_SECONDS) $(BUILD)/tests/test_realtime --gtest_filter='*SLOW_Soak'

asan: setup
	@cmake --preset asan >/dev/null
	@cmake --build --preset asan -j$(JOBS)
	ctest --preset asan

gate: asan docs tidy
	@tools/setup fuzz
	@cmake --preset clang >/dev/null
	@cmake --build --preset clang -j$(JOBS)
	ctest --preset clang

tsan: setup
	@cmake --preset tsan >/dev/null
	@cmake --build --preset tsan -j$(JOBS) --target test_room test_hosted_room test_live orvanverb orvanverb-live
	build/tsan/tests/test_room
	build/tsan/tests/test_hosted_room
	build/tsan/tests/test_live
	@# But for JACK, whose threads the sanitizer doesn't see. What it finds ends a program with another status than 0.
	ORVAN_SANITIZED=1 ORVANVERB=$(CURDIR)/build/tsan/apps/orvanverb/orvanverb ORVANVERB_LIVE=$(CURDIR)/build/tsan/apps/orvanverb-live/orvanverb-live \
		/usr/bin/python3 -m pytest -q -p no:cacheprovider -k "not jack" tests/live

FUZZ_SECONDS ?= 60
fuzz: setup
	@tools/setup fuzz
	@cmake --preset fuzz >/dev/null
	@cmake --build --preset fuzz -j$(JOBS)
	@tools/fuzz build/fuzz $(FUZZ_SECONDS)

# For a folder of externals, as an archive and as a package for Pd's own package manager (Help, Find externals).
PD_PACKAGE := out/orvanverb~.tar.gz
pd-package: configure
	@cmake --build --preset release -j$(JOBS) --target orvan_pd
	@rm -rf out/pd out/orvanverb~*.dek*
	@cmake --install $(BUILD) --component pd --strip --prefix out/pd >/dev/null
	@tar -czf $(PD_PACKAGE) --owner=0 --group=0 -C out/pd/lib/pd/extra orvanverb~
	@version=$$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' $(BUILD)/CMakeCache.txt); \
	machine=$$(uname -m | sed 's/x86_64/amd64/; s/aarch64/arm64/'); \
	dek="orvanverb~[v$$version](Linux-$$machine-32).dek"; \
	cd out && cmake -E chdir pd/lib/pd/extra cmake -E tar cf "$(CURDIR)/out/$$dek" --format=zip orvanverb~ && \
	sha256sum "$$dek" >"$$dek.sha256" && echo "out/$$dek: Pd's Help menu, Find externals, installs such files"
	@echo "$(PD_PACKAGE) unpacks into Pd's folder of externals, such as ~/.local/lib/pd/extra"

python: configure
	@cmake --build --preset release -j$(JOBS) --target orvan_python
	@echo "$(BUILD)/python holds the package orvanverb: add it to PYTHONPATH, or pip install ./bindings/python"

LV2_FOLDER ?= $(HOME)/.lv2
lv2: configure
	@cmake --build --preset release -j$(JOBS) --target orvan_lv2 orvan_lv2_texts
	@rm -rf out/lv2
	@cmake --install $(BUILD) --component lv2 --strip --prefix out/lv2 >/dev/null
	@mkdir -p "$(LV2_FOLDER)"
	@cp -r out/lv2/lib/lv2/orvanverb.lv2 "$(LV2_FOLDER)"
	@echo "$(LV2_FOLDER)/orvanverb.lv2: hosts find it when they look for plug-ins again"

LV2_PACKAGE := out/orvanverb.lv2.tar.gz
lv2-package: LV2_FOLDER := out/lv2/package
lv2-package: lv2
	@tar -czf $(LV2_PACKAGE) --owner=0 --group=0 -C $(LV2_FOLDER) orvanverb.lv2
	@echo "$(LV2_PACKAGE) unpacks into a folder of LV2 plug-ins, such as ~/.lv2"

test-ardour: configure
	@tools/setup ardour
	@cmake --build --preset release -j$(JOBS) --target orvanverb orvan_lv2 orvan_lv2_texts
	tests/lv2/ardour.sh $(CURDIR)/$(BUILD)/lv2/orvanverb.lv2 $(CURDIR)/$(BUILD)/apps/orvanverb/orvanverb

deb: build
	@tools/setup deb
	@rm -rf out/deb
	@cd $(BUILD) && cpack -G DEB -B $(CURDIR)/out/deb >/dev/null
	@mv out/deb/*.deb out/ && rm -rf out/deb
	@ls out/*.deb

web: setup
	@tools/setup web
	@cmake --preset web >/dev/null
	@cmake --build --preset web -j$(JOBS)
	@web/assemble build/web/web/orvanverb.wasm out/web

test-web: build web
	@ORVAN_WEB=$(CURDIR)/out/web ORVANVERB=$(CURDIR)/$(BUILD)/apps/orvanverb/orvanverb BUILD=$(CURDIR)/$(BUILD) \
		/usr/bin/python3 -m pytest -q -p no:cacheprovider web/test

bench: build
	$(BUILD)/bench/orvan_bench

check:
	@tools/setup check
	tools/format --check
	tools/check_layers
	tools/check_quirks

# Files for clang-tidy, which takes a quarter of an hour for all of them.
TIDY ?=
tidy: build
	@tools/setup check
	tools/tidy $(TIDY)

docs:
	@tools/setup docs
	@mkdir -p out
	doxygen docs/Doxyfile
	@echo "out/docs/html/index.html"

format:
	@tools/setup check
	tools/format

clean:
	rm -rf build out
