# One command for each thing a developer does; CI runs the same ones.
#
# All share one build folder and the program's objects. Tests and benchmarks are switched on there by the first command
# that needs them, for good; each command builds its own part alone.

JOBS := $(shell nproc)
SOURCES = $$(find src tests benchmarks fuzz tools packaging -name '*.cpp' -o -name '*.h')
PREFIX = /usr/local
BUILD = cmake --build build -j $(JOBS) --target

.PHONY: build run install uninstall pictures test mutants kills power-cuts soak sanitize bench fuzz format lint

build: build/build.ninja
	$(BUILD) quillmere

build/build.ninja: CMakePresets.json
	cmake --preset release

run:
	tools/setup run
	$(MAKE) build
	tools/demo

# PREFIX is an absolute path; with DESTDIR everything is put below that folder, as for a package.
install: build
	$(if $(filter /%,$(PREFIX)),,$(error PREFIX must be an absolute path, not "$(PREFIX)"))
	$(BUILD) packaging/all
	DESTDIR="$(DESTDIR)" cmake --install build --strip --prefix "$(PREFIX)"

uninstall:
	DESTDIR="$(DESTDIR)" tools/uninstall

pictures:
	tools/setup build
	cmake --preset release -DQUILLMERE_TESTS=ON
	$(BUILD) popup_pictures control_pictures quick_look_pictures crop_canvas_pictures inbox_detail_pictures inbox_pictures \
	  editor_pictures settings_pictures shell_pictures
	tools/pictures

test:
	tools/setup test
	cmake --preset release -DQUILLMERE_TESTS=ON
	$(BUILD) quillmere packaging/all tests/all detect-windows window-states
	tools/test -j $(JOBS)

# SEED chooses the mutants, COUNT how many, ONLY a single one by its number.
mutants:
	tools/setup test
	cmake --preset release -DQUILLMERE_TESTS=ON
	$(BUILD) tests/all
	tools/mutants -j $(JOBS) $(if $(SEED),--seed $(SEED)) $(if $(COUNT),--count $(COUNT)) $(if $(ONLY),--only $(ONLY))

bench:
	tools/setup bench
	cmake --preset release -DQUILLMERE_BENCHMARKS=ON
	$(BUILD) quillmere benchmarks/all measure-text
	@for bench in build/*_bench; do echo "== $$bench"; $$bench || exit 1; done
	tests/journeys/latency.py
	benchmarks/login_bench.py

fuzz:
	cmake --preset fuzz
	cmake --build build/fuzz -j $(JOBS)
	tools/fuzz

# The program is killed, or loses the power of its disks, so many times; with SEED what a former campaign played.
kills power-cuts: COUNT = 2000
kills power-cuts:
	tools/setup test
	cmake --preset release -DQUILLMERE_TESTS=ON
	$(BUILD) crash_burst
	/usr/bin/python3 -B tests/crashes/$(subst -,_,$@).py $(COUNT) $(SEED)

# In memory, where there is some: what is looked for grows in the program, not on the disk.
soak: CAPTURES = 100000
soak:
	tools/setup test
	cmake --preset release -DQUILLMERE_TESTS=ON
	$(BUILD) soak
	TMPDIR=$$(test -w /dev/shm && echo /dev/shm || echo /tmp) build/soak $(CAPTURES)

sanitize:
	tools/setup test
	tools/sanitize

format:
	clang-format -i $(SOURCES)

lint:
	mkdir -p build
	clang-format --dry-run -Werror $(SOURCES)
	tools/lint
