# SPDX-License-Identifier: GPL-3.0-or-later
# The two commands a newcomer needs: `make run` and `make test`.
BUILD_DIR ?= build
JOBS ?= $(shell nproc)

.PHONY: all deps configure build run test bench deb clean

all: build

deps:
	@tools/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DMORVANE_WERROR=ON >/dev/null

build: configure
	@cmake --build $(BUILD_DIR) -j $(JOBS)

run: build
	$(BUILD_DIR)/src/app/morvane

test: build
	cd $(BUILD_DIR) && ctest --output-on-failure -j $(JOBS)

bench: build
	$(BUILD_DIR)/bench/morvane_bench

# The Debian package, in $(BUILD_DIR)/deb.
deb: deps
	@tools/build-deb.sh $(BUILD_DIR)

clean:
	rm -rf $(BUILD_DIR)
