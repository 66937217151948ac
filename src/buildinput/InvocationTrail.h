#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace Orvanta {

/// A response file that was read for a command.
struct ExpandedFile {
    std::string path;
    std::vector<std::string> words; ///< nested response files not yet put in
};

/// How one invocation was read, step by step: what the collector leaves out of the units. For few invocations only.
struct InvocationTrail {
    std::size_t invocation = 0;        ///< number in the input, from 1
    std::vector<std::string> words;    ///< as the input gives them
    std::string directory;             ///< likewise
    std::vector<std::string> launcher; ///< the words that were taken off before the compiler
    std::vector<std::string> command;  ///< what was left of them, response files not expanded
    std::vector<ExpandedFile> files;   ///< in the order in which they were read
};

/// Which invocations a collector takes, and where it leaves the trail of each that it takes.
struct InvocationSieve {
    /// Whether an invocation with these words, compiler first, is wanted; of the others only the number counts.
    std::function<bool(std::span<const std::string> words)> wants;
    bool onlyWithFiles = false;               ///< of invocations without response files no trail is kept
    std::vector<InvocationTrail> trails = {}; ///< of those that were wanted, in the order of the input
};

} // namespace Orvanta
