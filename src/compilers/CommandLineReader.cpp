#include "compilers/CommandLineReader.h"

#include "compilers/ArgumentWalker.h"
#include "platform/Paths.h"

#include <algorithm>
#include <optional>

namespace Orvanta {

namespace {

// Finds out what an invocation does and to which files.
class OutlineVisitor {
public:
    explicit OutlineVisitor(InvocationOutline& outline) : outline_(outline) {}

    // Of several flags that name a folder the last counts.
    void Flag(const FlagUse& use) {
        const FlagRow& row = *use.match.row;
        effects_.Add(row.effect);
        printsInformation_ = printsInformation_ || row.kind == FlagKind::NoCompilation;
        links_ = links_ || row.kind == FlagKind::LinkerPart;
        if (row.effect == FlagEffect::NamesDirectory) {
            outline_.directory = use.value;
        }
    }

    // Kinds are gathered as bits: the reason asks which of them there were, and not how often.
    void Input(const InputFile& input) {
        inputs_ |= Bit(input.kind);
        if (input.kind == InputKind::MissingResponseFile && !outline_.missingResponseFile) {
            outline_.missingResponseFile = input.index;
        }
        if (IsSource(input.kind)) {
            outline_.sources.push_back({input.index, input.offset});
        }
        if (input.mayBeValue) {
            outline_.openWords.push_back(input.index);
        }
    }

    [[nodiscard]] bool MakesObjects() const { return Has(FlagEffect::StopsBeforeLinking); }

    // Why nothing is compiled; empty when something is.
    [[nodiscard]] std::string_view Reason() const {
        // The order matters. What only prints does so whatever else is asked for, and a stage that a flag names decides
        // before the inputs do.
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
        return outline_.sources.empty() ? ReasonOfInputs() : std::string_view();
    }

private:
    // One bit each of an unsigned, which has room for more kinds than there are.
    static constexpr unsigned Bit(InputKind kind) { return 1U << static_cast<unsigned>(kind); }

    [[nodiscard]] bool Has(FlagEffect effect) const { return effects_.Has(effect); }

    [[nodiscard]] bool Has(InputKind kind) const { return (inputs_ & Bit(kind)) != 0; }

    // Only commands without any source come here. The kind that says most comes first: files for the linker, which
    // stand beside many others, come last.
    [[nodiscard]] std::string_view ReasonOfInputs() const {
        if (Has(InputKind::StandardInput)) {
            return "reads standard input";
        }
        if (Has(InputKind::NullDevice)) {
            return "a test of flags";
        }
        if (Has(InputKind::Header)) {
            return "precompiled header";
        }
        if (Has(InputKind::Assembly)) {
            return "assembly";
        }
        if (Has(InputKind::OtherLanguage) || (Has(InputKind::LinkInput) && Has(FlagEffect::StopsBeforeLinking))) {
            return "no C or C++ source";
        }
        return Has(InputKind::LinkInput) || links_ ? "link only" : "no input";
    }

    InvocationOutline& outline_;
    FlagEffects effects_;
    unsigned inputs_ = 0; // one bit for each kind of input met
    bool printsInformation_ = false;
    bool links_ = false; // a part for the linker was met
};

// A list of a ParsedCommand and the flags whose values it takes.
struct ValueList {
    bool (*takes)(const FlagRow& row);
    std::vector<std::string> ParsedCommand::*list;
};

// The lists differ in nothing but the flags that they take.
constexpr ValueList ValueLists[] = {
    {[](const FlagRow& row) { return row.kind == FlagKind::UserInclude; }, &ParsedCommand::userIncludes},
    {[](const FlagRow& row) { return row.kind == FlagKind::SystemInclude; }, &ParsedCommand::systemIncludes},
    {[](const FlagRow& row) { return row.kind == FlagKind::Define; }, &ParsedCommand::defines},
    {[](const FlagRow& row) { return row.kind == FlagKind::ForcedInclude; }, &ParsedCommand::forcedIncludes},
    {[](const FlagRow& row) { return row.file == FlagFile::Read; }, &ParsedCommand::filesRead},
    {[](const FlagRow& row) { return row.file == FlagFile::ReadAsSpecs; }, &ParsedCommand::specFiles},
    {[](const FlagRow& row) { return row.effect == FlagEffect::NamesSearchPrefix; }, &ParsedCommand::searchPrefixes},
};

// Fills a ParsedCommand for one source of the invocation.
class CommandVisitor {
public:
    CommandVisitor(ParsedCommand& command, std::size_t source) : command_(command), source_(source) {}

    void Flag(const FlagUse& use);
    void Input(const InputFile& input);

    // What the compiler takes the source for.
    [[nodiscard]] InputKind KindOfSource() const { return kindOfSource_; }

private:
    // These take from one flag what it says, and leave all other fields alone.
    void RecordStandard(const FlagRow& row);
    void RecordCharSign(FlagEffect effect);
    void RecordValue(const FlagUse& use);
    // Appends the value, or each of several with commas between them.
    static void AddValues(const FlagUse& use, std::vector<std::string>& list);
    // Appends the flag to the kept arguments, in the form in which it stood.
    void Keep(const FlagUse& use);

    ParsedCommand& command_;
    std::size_t source_; // the argument that names it
    InputKind kindOfSource_ = InputKind::LinkInput;
};

void CommandVisitor::Flag(const FlagUse& use) {
    const FlagRow& row = *use.match.row;
    command_.effects.Add(row.effect);
    RecordStandard(row);
    RecordCharSign(row.effect);
    RecordValue(use);
    const std::size_t before = command_.keptArguments.size();
    if (StaysForPreprocessing(use, source_)) {
        Keep(use);
    }
    // With the place of its words, so that they can be taken out again.
    if (row.effect == FlagEffect::NamesPrecompiled) {
        command_.precompiled = {std::string(use.value), before, command_.keptArguments.size() - before};
    }
}

void CommandVisitor::Input(const InputFile& input) {
    // The other sources of the command are units of their own.
    if (input.index != source_) {
        return;
    }
    kindOfSource_ = input.kind;
    if (input.isStated) {
        const bool isC = input.kind == InputKind::C || input.kind == InputKind::PreprocessedC;
        command_.language = isC ? Language::C : Language::Cpp;
    }
}

void CommandVisitor::RecordStandard(const FlagRow& row) {
    if (row.effect == FlagEffect::UnknownStandard) {
        command_.cStandard.reset();
        command_.cppStandard.reset();
    }
    if (!IsStandard(row.kind)) {
        return;
    }
    // The numbers of C's standards lie below those of C++.
    if (row.kind < FlagKind::StandardCpp98) {
        command_.cStandard = row.kind;
    }
    if (row.kind == FlagKind::StandardAnsi || row.kind >= FlagKind::StandardCpp98) {
        command_.cppStandard = row.kind;
    }
}

// The last flag counts. Where a family decides otherwise, the flags that don't count have no such effect in its table.
void CommandVisitor::RecordCharSign(FlagEffect effect) {
    if (effect == FlagEffect::SignedChar || effect == FlagEffect::UnsignedChar) {
        command_.unsignedChar = effect == FlagEffect::UnsignedChar;
    }
}

void CommandVisitor::RecordValue(const FlagUse& use) {
    const FlagRow& row = *use.match.row;
    if (row.kind == FlagKind::Target32 || row.kind == FlagKind::Target64) {
        command_.targetBits = row.kind == FlagKind::Target32 ? TargetBits::Bits32 : TargetBits::Bits64;
    } else if (row.kind == FlagKind::Output && use.route == FlagRoute::Direct) {
        command_.outputFile = use.value;
    } else if (row.effect == FlagEffect::NamesTarget) {
        command_.targetTriple = use.value;
    } else {
        for (const ValueList& list : ValueLists) {
            if (list.takes(row)) {
                AddValues(use, command_.*list.list);
            }
        }
    }
}

void CommandVisitor::AddValues(const FlagUse& use, std::vector<std::string>& list) {
    std::string_view rest = use.value;
    while (use.match.row->value == FlagValue::List && rest.find(',') != std::string_view::npos) {
        list.emplace_back(rest.substr(0, rest.find(',')));
        rest.remove_prefix(rest.find(',') + 1);
    }
    list.emplace_back(rest);
}

void CommandVisitor::Keep(const FlagUse& use) {
    // A list becomes one argument again. The other routes say the flag that hands on before each word.
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

// Whether the header that the precompiled one was made from is included by force, too, as CMake writes it: "a.hxx.pch"
// and "a.hxx".
bool IsBesideItsHeader(const ParsedCommand& command) {
    return !command.precompiled.path.empty() &&
           std::any_of(command.forcedIncludes.begin(), command.forcedIncludes.end(),
                       [&](const std::string& header) { return command.precompiled.path.starts_with(header); });
}

// The text of a file that is preprocessed already has a language, too.
void StateLanguageOfPreprocessed(InputKind kind, std::string_view driver, ParsedCommand& command) {
    if (IsPreprocessed(kind) && !command.language) {
        // g++ and its like read ".i" as C++, as they do ".c".
        const bool isCppDriver = FileNameOf(driver).find("++") != std::string_view::npos;
        command.language = kind == InputKind::PreprocessedC && !isCppDriver ? Language::C : Language::Cpp;
    }
}

} // namespace

InvocationOutline OutlineInvocation(const Compiler& model, std::span<const std::string> arguments,
                                    std::span<const std::size_t> openValues) {
    InvocationOutline outline;
    OutlineVisitor visitor(outline);
    ArgumentWalker<OutlineVisitor>(model, arguments, visitor, openValues).Walk();
    outline.reason = visitor.Reason();
    outline.makesObjects = visitor.MakesObjects();
    // A command that compiles nothing may name sources all the same: one that only preprocesses does.
    if (!outline.reason.empty()) {
        outline.sources.clear();
    }
    return outline;
}

ParsedCommand ReadCommandLine(const Compiler& model, std::span<const std::string> arguments,
                              const SourceArgument& source) {
    ParsedCommand command;
    command.compilerType = model.Type();
    command.compilerPath = arguments.front();
    command.sourceFile = arguments[source.index].substr(source.offset);
    // What holds without any flag; the flags go over it.
    command.unsignedChar = model.IsPlainCharUnsigned();
    command.keptArguments.reserve(arguments.size());
    CommandVisitor visitor(command, source.index);
    const std::span<const std::size_t> openValues = source.openValues != nullptr
                                                        ? std::span<const std::size_t>(*source.openValues)
                                                        : std::span<const std::size_t>();
    ArgumentWalker<CommandVisitor>(model, arguments, visitor, openValues).Walk();
    // The header gives the same text without the precompiled file, which may be gone or out of date.
    if (IsBesideItsHeader(command)) {
        DropPrecompiled(command);
    }
    // In this order: the family states the kind by the language that is found here, and has the last word.
    StateLanguageOfPreprocessed(visitor.KindOfSource(), arguments.front(), command);
    model.StateKindOfSource(visitor.KindOfSource(), command);
    model.FinishParse(command);
    return command;
}

} // namespace Orvanta
