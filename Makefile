# The usual commands. Each is a line over CMake's presets (CMakePresets.json) or a script; nothing is decided here.

PREFIX ?= /usr/local
FUZZ_SECONDS ?= 60
JOBS ?= $(shell nproc)

.PHONY: help build dist dist-clang demo test sanitize thread memory bench bench-tables fuzz fuzz-fast fuzz-keep format format-check docs model-doc ring-doc forward install deb abi

help:
	@echo "make demo       decode captures of real routers, show what each router knows"
	@echo "make test       build everything, run the whole suite"
	@echo "make sanitize   the same with clang++ under address and undefined-behaviour sanitizers"
	@echo "make thread     the tests of what threads may do at once, under the thread sanitizer"
	@echo "make memory     the inputs of the fuzz targets under the memory sanitizer"
	@echo "make bench      the aims for speed: met or missed; bench-tables: what all benchmarks print"
	@echo "make fuzz       run each fuzz target for FUZZ_SECONDS (60); fuzz-fast: the lean one without sanitizers"
	@echo "make fuzz-keep  take into fuzz/corpus what the runs have found that covers more"
	@echo "make docs       reference documentation, into build/dist/docs/html"
	@echo "make model-doc  write docs/model.md anew from the type table"
	@echo "make ring-doc   write the sample of docs/ring-trace.md anew from a ring trace"
	@echo "make forward    write include/Ldp/Fwd.h anew from the other headers"
	@echo "make format     put all sources into the project's format; format-check only looks"
	@echo "make dist       what is installed: libraries and ldptool; dist-clang: the same with clang++"
	@echo "make install    install into PREFIX (/usr/local)"
	@echo "make deb        Debian packages, into build/deb, used once in a clean Debian; abi compares with the last tag"

# What each preset needs installed, see scripts/setup.sh.
needs_release := tests
needs_dist := tool
needs_dist-clang := tool clang
needs_sanitize := tests clang
needs_thread := tests clang
needs_fuzz := tests clang
needs_fuzz-fast := tests clang
needs_memory := tests clang

.PRECIOUS: build/%/build.ninja
build/%/build.ninja: FORCE
	@scripts/setup.sh $(needs_$*)
	cmake --preset $*
FORCE:

build: build/release/build.ninja
	cmake --build --preset release

dist dist-clang: %: build/%/build.ninja
	cmake --build --preset $@

demo: dist
	scripts/demo.sh build/dist/bin/ldptool

test: build
	ctest --preset release -j $(JOBS)

sanitize: build/sanitize/build.ninja
	cmake --build --preset sanitize
	ctest --preset sanitize -j $(JOBS)

thread: build/thread/build.ninja
	cmake --build --preset thread
	build/thread/bin/thread_tests

memory: build/memory/build.ninja
	cmake --build --preset memory
	scripts/fuzz.sh replay build/memory

bench: build
	scripts/bench_aims.py build/release/bin
	bench/capture.sh build/release/bin/ldptool 20

bench-tables: build
	scripts/bench.sh build/release/bin

# Not watching how often a block was reached keeps the corpus of the fast one small, and four times as many executions.
fuzz-fast: export FUZZ_OPTIONS := -use_counters=0
fuzz fuzz-fast: %: build/%/build.ninja
	cmake --build --preset $@
	scripts/fuzz.sh $(FUZZ_SECONDS) build/$@

fuzz-keep: build/fuzz/build.ninja
	cmake --build --preset fuzz
	scripts/fuzz.sh keep build/fuzz

format format-check:
	@scripts/setup.sh clang
	scripts/format.sh $@

docs: build/dist/build.ninja
	@scripts/setup.sh docs
	cmake --preset dist
	cmake --build --preset dist --target docs

model-doc: dist
	build/dist/bin/ldptool types --json | scripts/model_doc.py docs/model.md

ring-doc: build
	scripts/ring_doc.py build/release/bin docs/ring-trace.md

forward:
	scripts/forward.py include/Ldp/Fwd.h

deb:
	@scripts/setup.sh tool deb
	scripts/deb.sh build/deb

abi: build
	@scripts/setup.sh tests deb
	scripts/abi.sh build/release/lib/libLdp.so.0

install: dist
	cmake --install build/dist --prefix $(PREFIX) --strip
