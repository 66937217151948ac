# One command each; what it does stands in the script of that name under tools/.
.PHONY: demo test test-windows check format bench

demo: ## Build, analyze a real project and show its first findings
	@tools/demo

test: ## Build and run every test
	@tools/install-packages build test
	@tools/test dev

test-windows:
	@echo "make test-windows: the Windows home comes with a later version" >&2; exit 1

check: ## Formatting, clang-tidy, and the checks of the repository itself
	@tools/install-packages build test check
	@tools/check

format: ## Format every C++ file in place
	@tools/install-packages check
	@tools/format

bench: ## Build the benchmarks and run them
	@tools/install-packages build bench
	@tools/bench
