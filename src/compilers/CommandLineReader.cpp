#include "compilers/CommandLineReader.h"

#include "compilers/ArgumentWalker.h"
#include "platform/Paths.h"

#include <optional>

namespace Orvanta {

namespace {

// Finds out what an invocation does and to which files.
class OutlineVisitor {
public:
    explicit OutlineVisitor(std::vector<SourceArgument>& sources) : sources_(sources) {}

    void Flag(const FlagUse& use) {
        effects_ |= Bit(use.match.effect);
        printsInformation_ = printsInformation_ || use.match.kind == FlagKind::NoCompilation;
        links_ = links_ || use.match.kind == FlagKind::LinkerPart;
    }

    void Input(const InputFile& input) {
        inputs_ |= Bit(input.kind);
        if (input.kind == InputKind::MissingResponseFile && !missingResponseFile_) {
            missingResponseFile_ = input.index;
        }
        if (IsSource(input.kind)) {
            sources_.push_back({input.index, input.offset});
        }
    }

    [[nodiscard]] std::optional<std::size_t> MissingResponseFile() const { return missingResponseFile_; }

    // Why nothing is compiled; empty when something is.
    [[nodiscard]] std::string_view Reason() const {
        if (printsInformation_ || (inputs_ == 0 && Has(FlagEffect::PrintsWithoutInput))) {
            return "prints information only";
        }
        if (!Has(FlagEffect::Compiles)) {
            if (Has(FlagEffect::PreprocessesOnly)) {
                return "preprocessing only";
            }
            if (Has(FlagEffect::ListsDependencies)) {
                return "dependencies only";
            }
        }
        if (Has(FlagEffect::MakesPrecompiledHeader)) {
            return "precompiled header";
        }
        return sources_.empty() ? ReasonOfInputs() : std::string_view();
    }

private:
    static constexpr unsigned Bit(FlagEffect effect) { return 1U << static_cast<unsigned>(effect); }

    static constexpr unsigned Bit(InputKind kind) { return 1U << static_cast<unsigned>(kind); }

    [[nodiscard]] bool Has(FlagEffect effect) const { return (effects_ & Bit(effect)) != 0; }

    [[nodiscard]] bool Has(InputKind kind) const { return (inputs_ & Bit(kind)) != 0; }

    [[nodiscard]] std::string_view ReasonOfInputs() const {
        if (Has(InputKind::StandardInput)) {
            return "reads standard input";
        }
        if (Has(InputKind::Header)) {
            return "precompiled header";
        }
        if (Has(InputKind::Assembly)) {
            return "assembly";
        }
        if (Has(InputKind::OtherLanguage) || (Has(InputKind::LinkInput) && Has(FlagEffect::Compiles))) {
            return "no C or C++ source";
        }
        return Has(InputKind::LinkInput) || links_ ? "link only" : "no input";
    }

    std::vector<SourceArgument>& sources_;
    std::optional<std::size_t> missingResponseFile_;
    unsigned effects_ = 0; // one bit for each effect met
    unsigned inputs_ = 0;  // one bit for each kind of input met
    bool printsInformation_ = false;
    bool links_ = false; // a part for the linker was met
};

// Fills a ParsedCommand for one source of the invocation.
class CommandVisitor {
public:
    CommandVisitor(ParsedCommand& command, SourceArgument source) : command_(command), source_(source) {}

    void Flag(const FlagUse& use);
    void Input(const InputFile& input);

    // What the compiler takes the source for.
    [[nodiscard]] InputKind KindOfSource() const { return kindOfSource_; }

private:
    void RecordStandard(const FlagMatch& match);
    void RecordCharSign(FlagEffect effect);
    static void AddFolders(const FlagUse& use, std::vector<std::string>& folders);
    void Keep(const FlagUse& use);

    ParsedCommand& command_;
    SourceArgument source_;
    InputKind kindOfSource_ = InputKind::LinkInput;
};

void CommandVisitor::Flag(const FlagUse& use) {
    RecordStandard(use.match);
    RecordCharSign(use.match.effect);
    switch (use.match.kind) {
    case FlagKind::LinkerPart:
    case FlagKind::Drop:
    case FlagKind::DropWithValue:
    case FlagKind::NoCompilation:
        return;
    case FlagKind::Output:
        if (use.route == FlagRoute::Direct) {
            command_.outputFile = use.value;
        }
        return;
    case FlagKind::Language:
        // In the preprocessing command the source stands last, so that a later language would be its own.
        if (use.index < source_.index) {
            Keep(use);
        }
        return;
    case FlagKind::UserInclude:
        AddFolders(use, command_.userIncludes);
        break;
    case FlagKind::SystemInclude:
        AddFolders(use, command_.systemIncludes);
        break;
    case FlagKind::Define:
        command_.defines.emplace_back(use.value);
        break;
    case FlagKind::ForcedInclude:
        command_.forcedIncludes.emplace_back(use.value);
        break;
    case FlagKind::Target32:
        command_.platformWord = "linux32";
        break;
    case FlagKind::Target64:
        command_.platformWord = "linux64";
        break;
    case FlagKind::Keep:
    case FlagKind::KeepWithValue:
    case FlagKind::Undefine:
    case FlagKind::SourceOfLanguage:
    case FlagKind::Preprocessor:
    case FlagKind::MainFileName:
    case FlagKind::StandardAnsi:
    case FlagKind::StandardC90:
    case FlagKind::StandardC99:
    case FlagKind::StandardC11:
    case FlagKind::StandardC17:
    case FlagKind::StandardC2x:
    case FlagKind::StandardCpp98:
    case FlagKind::StandardCpp03:
    case FlagKind::StandardCpp11:
    case FlagKind::StandardCpp14:
    case FlagKind::StandardCpp17:
    case FlagKind::StandardCpp20:
        break;
    }
    Keep(use);
}

void CommandVisitor::Input(const InputFile& input) {
    if (input.index != source_.index) {
        return;
    }
    kindOfSource_ = input.kind;
    if (input.isStated) {
        const bool isC = input.kind == InputKind::C || input.kind == InputKind::PreprocessedC;
        command_.language = isC ? Language::C : Language::Cpp;
    }
}

void CommandVisitor::RecordStandard(const FlagMatch& match) {
    if (match.effect == FlagEffect::UnknownStandard) {
        command_.cStandard.reset();
        command_.cppStandard.reset();
    }
    if (!IsStandard(match.kind)) {
        return;
    }
    if (match.kind < FlagKind::StandardCpp98) {
        command_.cStandard = match.kind;
    }
    if (match.kind == FlagKind::StandardAnsi || match.kind >= FlagKind::StandardCpp98) {
        command_.cppStandard = match.kind;
    }
}

void CommandVisitor::RecordCharSign(FlagEffect effect) {
    if (effect == FlagEffect::SignedChar || effect == FlagEffect::UnsignedChar) {
        command_.unsignedChar = effect == FlagEffect::UnsignedChar;
    }
}

void CommandVisitor::AddFolders(const FlagUse& use, std::vector<std::string>& folders) {
    std::string_view rest = use.value;
    while (use.match.isList && rest.find(',') != std::string_view::npos) {
        folders.emplace_back(rest.substr(0, rest.find(',')));
        rest.remove_prefix(rest.find(',') + 1);
    }
    folders.emplace_back(rest);
}

void CommandVisitor::Keep(const FlagUse& use) {
    std::string listed(use.handedOnBy);
    for (std::size_t i = 0; i < use.wordCount; ++i) {
        switch (use.route) {
        case FlagRoute::Listed:
            listed.append(1, ',').append(use.words[i]);
            continue;
        case FlagRoute::Prefixed:
            command_.keptArguments.push_back(std::string(use.handedOnBy).append(use.words[i]));
            continue;
        case FlagRoute::Paired:
            command_.keptArguments.emplace_back(use.handedOnBy);
            break;
        case FlagRoute::Direct:
            break;
        }
        command_.keptArguments.emplace_back(use.words[i]);
    }
    if (use.route == FlagRoute::Listed) {
        command_.keptArguments.push_back(std::move(listed));
    }
}

// The text of a file that is preprocessed already has a language, too.
void StateLanguageOfPreprocessed(InputKind kind, std::string_view driver, ParsedCommand& command) {
    if (IsPreprocessed(kind) && !command.language) {
        const bool isCppDriver = FileNameOf(driver).find("++") != std::string_view::npos;
        command.language = kind == InputKind::PreprocessedC && !isCppDriver ? Language::C : Language::Cpp;
    }
}

} // namespace

InvocationOutline OutlineInvocation(const Compiler& model, std::span<const std::string> arguments) {
    InvocationOutline outline;
    OutlineVisitor visitor(outline.sources);
    ArgumentWalker<OutlineVisitor>(model, arguments, visitor).Walk();
    outline.missingResponseFile = visitor.MissingResponseFile();
    outline.reason = visitor.Reason();
    if (!outline.reason.empty()) {
        outline.sources.clear();
    }
    return outline;
}

ParsedCommand ReadCommandLine(const Compiler& model, std::span<const std::string> arguments, SourceArgument source) {
    ParsedCommand command;
    command.compilerType = model.Type();
    command.compilerPath = arguments.front();
    command.sourceFile = arguments[source.index].substr(source.offset);
    command.unsignedChar = model.IsPlainCharUnsigned();
    command.keptArguments.reserve(arguments.size());
    CommandVisitor visitor(command, source);
    ArgumentWalker<CommandVisitor>(model, arguments, visitor).Walk();
    StateLanguageOfPreprocessed(visitor.KindOfSource(), arguments.front(), command);
    model.StateKindOfSource(visitor.KindOfSource(), command);
    model.FinishParse(arguments, command);
    return command;
}

} // namespace Orvanta
