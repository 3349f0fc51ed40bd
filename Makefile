# Shortcuts for the scripts and presets.
.PHONY: demo demo-linux test bench fuzz mutants package docs lint setup clean

demo: setup ## build for Windows and run a job from every family under Wine
	@scripts/demo windows

demo-linux: setup ## the same, natively
	@scripts/demo linux

test: setup ## run the tests of every preset, including sanitizers and Wine; each benchmark and fuzz target briefly
	@scripts/setup bench
	@scripts/test

bench: setup ## measure against other libraries; update docs/performance.md and its charts
	@scripts/setup bench
	@scripts/bench

fuzz: setup ## run each fuzz target for MINUTES, 1 by default
	@scripts/fuzz $$((60 * $(or $(MINUTES),1)))

mutants: setup ## mutation testing with COUNT mutants, 300 by default
	@scripts/mutants --count $(or $(COUNT),300)

package: setup ## build the release archives of both platforms, and try each out in another folder
	@scripts/package

docs: setup ## build the site of the reference and the guides, build/docs/html/index.html
	@scripts/setup docs
	@scripts/docs

lint: setup ## check formatting, clang-tidy, and warnings of g++ and clang for both systems
	@scripts/setup lint
	@scripts/lint

setup:
	@scripts/setup

clean:
	rm -rf build
