# Thin, over the presets of CMakePresets.json.
.PHONY: demo demo-linux test bench fuzz setup clean

demo: setup ## build for Windows and run a job of every family under Wine
	@scripts/demo windows

demo-linux: setup ## the same, natively
	@scripts/demo linux

test: setup ## the tests of every preset, under the sanitizers and under Wine
	@scripts/test

bench: ## measure against other libraries, draw docs/performance.svg and fill in docs/performance.md
	@scripts/bench

fuzz: setup ## each fuzz target for MINUTES, 1 unless given
	@scripts/fuzz $$((60 * $(or $(MINUTES),1)))

setup:
	@scripts/setup

clean:
	rm -rf build
