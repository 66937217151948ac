# One command each; what it does stands in the script of that name under tools/.
.PHONY: demo test test-windows package-windows check format bench

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

bench: ## Build the benchmarks and run them
	@tools/install-packages build bench
	@tools/bench
