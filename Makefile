# The usual commands. Each is a line over CMake's presets (CMakePresets.json) or a script; nothing is decided here.

PREFIX ?= /usr/local
FUZZ_SECONDS ?= 60
JOBS ?= $(shell nproc)

.PHONY: help setup build demo test sanitize thread bench fuzz format format-check docs model-doc install

help:
	@echo "make demo       decode captures of real routers, show what each router knows"
	@echo "make test       build everything, run the whole suite"
	@echo "make sanitize   the same with clang++ under address and undefined-behaviour sanitizers"
	@echo "make thread     the tests of what threads may do at once, under the thread sanitizer"
	@echo "make bench      run the benchmarks"
	@echo "make fuzz       run each fuzz target for FUZZ_SECONDS (60)"
	@echo "make docs       reference documentation, into build/release/docs/html"
	@echo "make model-doc  write docs/model.md anew from the type table"
	@echo "make format     put all sources into the project's format; format-check only looks"
	@echo "make install    install into PREFIX (/usr/local)"

setup:
	@scripts/setup.sh

build/%/build.ninja: setup
	cmake --preset $*

build: build/release/build.ninja
	cmake --build --preset release

demo: build/release/build.ninja
	cmake --build --preset release --target ldptool
	scripts/demo.sh build/release/bin/ldptool

test: build
	ctest --preset release -j $(JOBS)

sanitize: build/sanitize/build.ninja
	cmake --build --preset sanitize
	ctest --preset sanitize -j $(JOBS)

thread: build/thread/build.ninja
	cmake --build --preset thread
	build/thread/bin/thread_tests

bench: build
	scripts/bench.sh build/release/bin

fuzz: build/fuzz/build.ninja
	cmake --build --preset fuzz
	scripts/fuzz.sh $(FUZZ_SECONDS) build/fuzz

format format-check: setup
	scripts/format.sh $@

docs: build/release/build.ninja
	cmake --build --preset release --target docs

model-doc: build/release/build.ninja
	cmake --build --preset release --target ldptool
	build/release/bin/ldptool types --json | scripts/model_doc.py docs/model.md

install: build
	cmake --install build/release --prefix $(PREFIX)
