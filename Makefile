# Thin, over the presets of CMakePresets.json.
.PHONY: demo demo-linux test setup clean

demo: setup ## build for Windows and run the main job under Wine
	@scripts/demo windows

demo-linux: setup ## the same, natively
	@scripts/demo linux

test: setup ## the tests of every preset, under the sanitizers and under Wine
	@scripts/test

setup:
	@scripts/setup

clean:
	rm -rf build
