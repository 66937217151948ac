#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// What a compiler made of a command that preprocesses.
struct Understanding {
    std::string source;
    std::string output;
    std::vector<std::string> includes; ///< system folders among them, in the order of the command
    std::vector<std::string> defines;
    std::string language; ///< "C" or "C++"
    std::string standard; ///< "c99" and so on: the compiler's default when the command names none
    bool isPlainCharUnsigned = false;
};

/// The compiler refuses the command; the text says why.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads a preprocessing command as the compiler of this name does ("armcc", "iccarm7", ...). What that compiler does
/// not know, or finds where it must not stand, it refuses. `program` is the path by which it was called.
/// \throws Refusal
[[nodiscard]] Understanding ReadStrictly(std::string_view compiler, std::string_view program,
                                         const std::vector<std::string>& arguments);

/// The value of __STDC_VERSION__ or __cplusplus for a standard.
[[nodiscard]] std::string VersionOfStandard(std::string_view standard);

} // namespace Orvanta
