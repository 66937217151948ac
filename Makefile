# One command each; what it does stands in the script of that name under tools/.
.PHONY: demo test test-windows package-windows check format bench fuzz kill-test coverage hard

demo: ## Build, analyze a real project and show its first findings
	@tools/demo

test: ## Build and run every test
	@tools/install-packages build test
	@tools/test dev

test-windows: ## Cross-build for Windows and run the tests under Wine
	@tools/install-packages build test windows
	@tools/test windows

package-windows: ## Cross-build for Windows and put what a user needs into a zip
	@tools/install-packages build windows
	@tools/package-windows

check: ## Formatting, clang-tidy, and the checks of the repository itself
	@tools/install-packages build test check
	@tools/check

format: ## Format every C++ file in place
	@tools/install-packages check
	@tools/format

fuzz: ## Run every fuzz target for SECONDS (60 unless given)
	@tools/install-packages build fuzz
	@tools/fuzz $(or $(SECONDS),60)

kill-test: ## Kill and stop runs at random moments, 700 times; SEED=n repeats a run
	@tools/install-packages build test
	@tools/kill-test --rounds 700 $(if $(SEED),--seed $(SEED))

coverage: ## Run the native tests and show which lines none of them reaches
	@tools/coverage

hard: ## The long runs: all tests under the sanitizers, two minutes of fuzzing a target, 700 kills
	@tools/hard

bench: ## Build the benchmarks and run them
	@tools/install-packages build bench
	@tools/bench
