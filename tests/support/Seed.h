#pragma once

#include <cstdlib>
#include <iostream>
#include <random>
#include <string>

namespace Orvanta {

/// A seed for a test of chance, another at every run: printed, and taken from the variable ORVANTA_TEST_SEED where that
/// is set, so that a run that failed can be had again as far as the machine allows.
inline unsigned ChosenSeed() {
    const char* const chosen = std::getenv("ORVANTA_TEST_SEED");
    const unsigned seed = chosen == nullptr ? std::random_device()() : static_cast<unsigned>(std::stoul(chosen));
    std::cout << "ORVANTA_TEST_SEED=" << seed << '\n';
    return seed;
}

} // namespace Orvanta
