# Thin, over the presets of CMakePresets.json.
.PHONY: demo demo-linux test bench fuzz mutants package docs lint setup clean

demo: setup ## build for Windows and run a job of every family under Wine
	@scripts/demo windows

demo-linux: setup ## the same, natively
	@scripts/demo linux

test: setup ## the tests of every preset, under the sanitizers and under Wine; each benchmark and fuzzer for a moment
	@scripts/setup bench
	@scripts/test

bench: setup ## measure against other libraries, draw docs/performance.svg and fill in docs/performance.md
	@scripts/setup bench
	@scripts/bench

fuzz: setup ## each fuzz target for MINUTES, 1 unless given
	@scripts/fuzz $$((60 * $(or $(MINUTES),1)))

mutants: setup ## change src/ in COUNT places, 300 unless given, one at a time: do the tests notice?
	@scripts/mutants --count $(or $(COUNT),300)

package: setup ## the release archives of both platforms, each used once from another folder
	@scripts/package

docs: setup ## the reference and the guides as a site, build/docs/html/index.html
	@scripts/setup docs
	@scripts/docs

lint: setup ## formatting, clang-tidy, and warnings of g++ and clang for both systems
	@scripts/setup lint
	@scripts/lint

setup:
	@scripts/setup

clean:
	rm -rf build
