# One command each; what it does stands in the script of that name under tools/.
.PHONY: demo test test-windows test-slurm package package-windows check format bench fuzz kill-test fault-test \
    own-findings coverage hard

demo: ## Build, analyze a real project and show its first findings
	@tools/demo

test: ## Build and run every test
	@tools/install-packages build test
	@tools/test dev

test-windows: ## Cross-build for Windows and run the tests under Wine
	@tools/install-packages build test windows
	@tools/test windows

test-slurm: ## Run the recipes for Slurm in one that is started for them on this machine
	@tools/install-packages build slurm
	@tools/slurm-test

package: ## Build for users and put what they need into a .deb and a .tar.gz
	@tools/install-packages build package
	@tools/package

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

fault-test: ## Let every call of the system fail once, in every way to run the programs
	@tools/install-packages build test
	@tools/fault-test

own-findings: ## Analyze our own sources; what is found is mended, or accepted with a reason
	@tools/install-packages build test
	@tools/own-findings

coverage: ## Run the native tests and show which lines none of them reaches
	@tools/coverage

hard: ## The long runs: all tests under the sanitizers, two minutes of fuzzing a target, 700 kills, every fault
	@tools/hard

bench: ## Measure what a run costs, each figure beside its yardstick: one table
	@tools/install-packages build bench
	@tools/bench
