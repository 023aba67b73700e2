# One command for each thing a developer does; CI runs the same ones.

JOBS := $(shell nproc)
SOURCES = $$(find src tests benchmarks fuzz tools -name '*.cpp' -o -name '*.h')

.PHONY: build setup run pictures test bench fuzz format lint

build: build/build.ninja
	cmake --build build -j $(JOBS)

build/build.ninja: CMakePresets.json
	cmake --preset release

setup:
	tools/setup

run: setup
	$(MAKE) build
	tools/demo

pictures: setup
	$(MAKE) build
	tools/pictures

test: setup
	$(MAKE) build
	tools/test -j $(JOBS)

bench: build
	@for bench in build/*_bench; do echo "== $$bench"; $$bench || exit 1; done
	tests/journeys/latency.py

fuzz:
	cmake --preset fuzz
	cmake --build build/fuzz -j $(JOBS)
	tools/fuzz

format:
	clang-format -i $(SOURCES)

lint:
	mkdir -p build
	clang-format --dry-run -Werror $(SOURCES)
	tools/lint
