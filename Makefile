# The front door. Every target does the set-up that it needs itself; see docs/building.md.
SHELL := /bin/bash
.SHELLFLAGS := -eu -o pipefail -c
.DEFAULT_GOAL := help
.PHONY: help setup build demo test bench fuzz dll clean

JOBS ?= $(shell nproc)
TARGET ?= xml
SECONDS ?= 60
# ZOKA_NO_WINE=1 leaves out everything that runs under Wine.
ZOKA_NO_WINE ?=
export ZOKA_NO_WINE
WINE_GROUP := $(if $(filter 1,$(ZOKA_NO_WINE)),,wine)
BUILD = cmake --preset $(1) >build/configure-$(1).log || { cat build/configure-$(1).log; exit 1; }; \
	cmake --build --preset $(1) -j $(JOBS)

help: ## list the targets
	@echo "ZOKA: make TARGET"
	@awk -F ':.*## ' '/^[a-z]+:.*## / { printf "  %-8s %s\n", $$1, $$2 }' Makefile

setup: ## install what is missing on this Debian machine (as root or through sudo)
	@tools/setup/setup.sh build $(WINE_GROUP)

build: setup ## build everything: native and for Windows
	@$(call BUILD,linux)
	@$(call BUILD,windows)

demo: setup ## show the DLL at work in the stand-in editor; leaves pictures in build/demo
	@$(call BUILD,windows)
	@tools/demo/run.sh

test: setup ## build and run every test: native, with sanitizers, on Windows, in windows
	@tools/setup/setup.sh bench
	@tools/check/test.sh

WINDOW_BENCHES := bench_window bench_project_window bench_panel bench_behavior_panel bench_wizard_dialog
bench: ## build and run the benchmarks, our figures beside others'
	@tools/setup/setup.sh build bench $(WINE_GROUP)
	@$(call BUILD,bench) --target bench/all
ifneq (1,$(ZOKA_NO_WINE))
	@$(call BUILD,windows) --target zoka $(WINDOW_BENCHES)
endif
	@failed=0; \
	for program in build/bench/bench/bench_*; do [ ! -x "$$program" ] || "$$program" || failed=1; done; \
	if [ "$(ZOKA_NO_WINE)" = 1 ]; then \
		echo "$(WINDOW_BENCHES): left out, because ZOKA_NO_WINE=1"; exit $$failed; \
	fi; \
	for program in $(WINDOW_BENCHES); do \
		tools/run/onecpu.sh 0 tools/run/display.sh tools/run/wine.sh build/windows/wine \
			build/windows/bench/win/$$program.exe 'build\windows\plugin\zoka.dll' || failed=1; \
	done; exit $$failed

fuzz: ## fuzz one reader (fuzz/TARGET.cpp): make fuzz TARGET=xml SECONDS=60
	@tools/setup/setup.sh build fuzz
	@$(call BUILD,fuzz) --target fuzz/all
	@tools/check/fuzz.sh $(TARGET) $(SECONDS)

dll: setup ## build the plug-in alone: build/zoka.dll, its symbols in build/zoka.debug
	@$(call BUILD,windows) --target zoka
	@cp build/windows/plugin/zoka.dll build/windows/plugin/zoka.debug build/
	@ls -l build/zoka.dll

clean: ## remove all that was built (what set-up fetched stays)
	@find build -mindepth 1 -maxdepth 1 ! -name libs -exec rm -rf {} +
