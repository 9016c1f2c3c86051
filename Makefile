# Two commands on a fresh Debian 12 machine:
#   make run    installs what is missing, builds and starts Varnoth (on a
#               machine without a display: the example analysis in batch)
#   make test   installs what is missing, builds and runs every test
BUILD ?= build
JOBS ?= $(shell nproc)

.PHONY: deps build run test unit bench sanitize fuzz batch shots shots-x11 format clean

deps:
	@scripts/install-deps.sh

build: deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release
	cmake --build $(BUILD) -j $(JOBS)

# Without a display (no DISPLAY or WAYLAND_DISPLAY) the batch runner takes
# the example data through the whole road and says what it wrote where.
run: build
	@scripts/run.sh $(BUILD)

batch: build
	$(BUILD)/varnoth-batch

# Every test: the suite, the suite again under the sanitizers, and each
# fuzz target for FUZZ_SECONDS (when clang is there).
test: unit sanitize
	@if command -v clang++ >/dev/null; then $(MAKE) --no-print-directory fuzz; \
	else echo "clang++ missing: fuzz targets skipped"; fi

# The test suite alone.
unit: build
	cd $(BUILD) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)

bench: build
	$(BUILD)/bench/varnoth_bench
	$(BUILD)/varnoth_gui_bench

# Pictures of the windows after a scripted analysis, drawn offscreen;
# with X11=1 also the road on a real display (see shots-x11).
shots: build
	QT_QPA_PLATFORM=offscreen $(BUILD)/varnoth-shots shots
	@if [ "$(X11)" = "1" ]; then scripts/shots-x11.sh $(BUILD) shots-x11; fi

# The road of one analysis on a real X display with a window manager
# (Xvfb, openbox, xdotool, installed when missing), driven by keys and
# clicks: pictures of the whole 1280 x 1024 screen in shots-x11/.
shots-x11: build
	scripts/shots-x11.sh $(BUILD) shots-x11

# The whole test suite under AddressSanitizer and UndefinedBehaviorSanitizer.
sanitize: deps
	cmake -S . -B build-sanitize -DCMAKE_BUILD_TYPE=Debug -DVARNOTH_SANITIZE=ON -DVARNOTH_BENCH=OFF
	cmake --build build-sanitize -j $(JOBS)
	cd build-sanitize && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)

# Each reader's libFuzzer target for FUZZ_SECONDS, built with clang,
# AddressSanitizer and UndefinedBehaviorSanitizer in build-fuzz/.
FUZZ_SECONDS ?= 30
fuzz: deps
	cmake -S . -B build-fuzz -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	  -DVARNOTH_FUZZ=ON -DVARNOTH_GUI=OFF -DVARNOTH_TESTS=OFF -DVARNOTH_BENCH=OFF
	cmake --build build-fuzz -j $(JOBS) --target fuzz_all
	scripts/run-fuzz.sh build-fuzz $(FUZZ_SECONDS)

format:
	find src tests bench -name '*.cpp' -o -name '*.h' | xargs clang-format -i

clean:
	rm -rf $(BUILD) build-sanitize build-fuzz
