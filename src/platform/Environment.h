#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// Environment variables, name to value, names compared byte for byte.
using Environment = std::map<std::string, std::string>;

/// The driver's own environment, as it was when the program asked first.
const Environment& OwnEnvironment();

/// The value of the variable with this name, as the system compares names; null when there is none. Not copied.
[[nodiscard]] const std::string* FindVariable(const Environment& environment, std::string_view name);

/// The value of a variable of the driver's own environment.
std::optional<std::string> EnvironmentVariable(std::string_view name);

/// The driver's own environment with `changes` laid over it: a name that is the same to the system stands once.
[[nodiscard]] Environment WithChanges(const Environment& changes);

/// An environment in the form in which children are started with it: made once, shared by any number of starts.
class EnvironmentBlock {
public:
    /// A complete environment: nothing is added to it.
    explicit EnvironmentBlock(const Environment& variables);

    /// "NAME=VALUE" strings, in the order of the names.
    [[nodiscard]] const std::vector<std::string>& Entries() const noexcept { return entries_; }

private:
    std::vector<std::string> entries_;
};

/// The block of the driver's own environment.
const EnvironmentBlock& OwnEnvironmentBlock();

} // namespace Orvanta
