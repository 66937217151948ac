#include "compilers/Compiler.h"

#include <utility>

namespace Orvanta {

Compiler::Compiler(CompilerType type, std::string_view name, std::span<const std::string_view> introducers,
                   FlagTable flags)
    : type_(type), name_(name), introducers_(introducers), flags_(std::move(flags)) {}

bool Compiler::MatchLongestPrefixFlag(std::string_view argument, std::string_view& introducer) const {
    introducer = {};
    for (const std::string_view candidate : introducers_) {
        if (candidate.size() > introducer.size() && argument.starts_with(candidate)) {
            introducer = candidate;
        }
    }
    return !introducer.empty();
}

void Compiler::FinishParse(std::span<const std::string> /*arguments*/, ParsedCommand& /*command*/) const {}

std::optional<InputKind> Compiler::KindOfAllInputs(std::span<const std::string> /*arguments*/) const {
    return std::nullopt;
}

const Compiler& Compiler::ModelOfHandedOn() const {
    return *this;
}

} // namespace Orvanta
