#include "analysis/MemoryDeath.h"

#include "platform/Text.h"

#include <algorithm>
#include <string_view>

namespace Orvanta {

namespace {

// How the end of a process is told: 128 and the signal with which Linux ends the largest one; Windows' codes for no
// memory and no room in the page file.
constexpr int Codes[] = {
    128 + 9,
    static_cast<int>(0xC0000017U),
    static_cast<int>(0xC000012DU),
};

// As compilers, cores and their runtimes put it. The last ones are of programs whose own child was killed.
constexpr std::string_view Words[] = {
    "out of memory",
    "bad_alloc",
    "bad alloc",
    "virtual memory exhausted",
    "memory exhausted",
    "not enough memory",
    "insufficient memory",
    "cannot allocate",
    "can't allocate",
    "out of heap space",
    "killed signal terminated program",
    "terminated by signal 9",
    "ended with code 137",
};

bool Tells(std::string_view output) {
    // The end of it is enough: what is said last is why.
    constexpr std::size_t Longest = std::size_t{64} << 10U;
    output = output.substr(output.size() - std::min(output.size(), Longest));
    return std::any_of(std::begin(Words), std::end(Words),
                       [output](std::string_view words) { return ContainsIgnoringCase(output, words); });
}

} // namespace

bool LooksOutOfMemory(const ProcessReturnCodeException& error) {
    return std::find(std::begin(Codes), std::end(Codes), error.ExitCode()) != std::end(Codes) ||
           Tells(error.Output().standardError) || Tells(error.Output().standardOutput);
}

} // namespace Orvanta
