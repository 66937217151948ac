#include "compilers/Compiler.h"

#include <utility>

namespace Orvanta {

Compiler::Compiler(CompilerType type, std::string_view name, std::span<const std::string_view> introducers,
                   FlagTable flags)
    : type_(type), name_(name), introducers_(introducers), flags_(std::move(flags)) {}

bool Compiler::MatchLongestPrefixFlag(std::string_view argument, std::string_view& introducer) const {
    introducer = {};
    // Not the first that fits: "-" is the beginning of "--", too.
    for (const std::string_view candidate : introducers_) {
        if (candidate.size() > introducer.size() && argument.starts_with(candidate)) {
            introducer = candidate;
        }
    }
    return !introducer.empty();
}

void Compiler::FinishParse(ParsedCommand& /*command*/) const {}

// Looks at all arguments beforehand, as the flag may stand behind the sources. Families that have none are spared it.
std::optional<InputKind> Compiler::KindOfAllInputs(std::span<const std::string> arguments) const {
    std::optional<InputKind> kind;
    if (!flags_.StatesLanguage() || arguments.empty()) {
        return kind;
    }
    for (const std::string& argument : arguments.subspan(1)) {
        std::string_view introducer;
        if (!MatchLongestPrefixFlag(argument, introducer)) {
            continue;
        }
        const FlagRow& row = *flags_.Find(std::string_view(argument).substr(introducer.size()), introducer).row;
        if (row.kind == FlagKind::LinkerPart || argument == "--") {
            break; // no flags of the compiler behind them
        }
        if (row.kind != FlagKind::SourceOfLanguage) {
            // Of several flags the last counts.
            const std::optional<InputKind> named = KindNamedBy(row.effect);
            kind = named ? named : kind;
        }
    }
    return kind;
}

InputKind Compiler::KindOfInput(std::string_view path, std::optional<InputKind> ofAll) const {
    const InputKind kind = InputKindByExtension(path);
    // What is no source by its extension stays what it is.
    return ofAll && IsSource(kind) ? *ofAll : kind;
}

void Compiler::StateKindOfSource(InputKind /*kind*/, ParsedCommand& /*command*/) const {}

const Compiler& Compiler::ModelOfHandedOn() const {
    return *this;
}

std::vector<std::string> Compiler::BeginPreprocessCommand(const ParsedCommand& command, std::size_t more) {
    std::vector<std::string> words;
    words.reserve(command.invocationPrefix.size() + 1 + command.keptArguments.size() + more);
    // An assignment leaves the reserved memory as large as it is.
    words = command.invocationPrefix;
    words.push_back(command.compilerPath);
    words.insert(words.end(), command.keptArguments.begin(), command.keptArguments.end());
    return words;
}

std::string Compiler::WithFolder(const std::string& source) {
    return source.starts_with('-') || source.starts_with('@') ? "./" + source : source;
}

} // namespace Orvanta
