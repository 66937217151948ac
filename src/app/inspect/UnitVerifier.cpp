#include "app/inspect/UnitVerifier.h"

#include "compilers/Compiler.h"
#include "platform/Files.h"
#include "platform/ScopedFile.h"

#include <algorithm>
#include <utility>

namespace Orvanta {

namespace {

constexpr std::size_t MostCauses = 3;

bool IsTheDriversDoing(const WordNote& note) {
    return note.fate == WordFate::Dropped && !note.isForOutput;
}

// What must not be run again: it writes, or is another unit.
std::size_t CountUnwanted(const std::vector<WordNote>& notes) {
    return static_cast<std::size_t>(std::count_if(notes.begin(), notes.end(), [](const WordNote& note) {
        return note.isForOutput || (note.fate == WordFate::OtherInput && note.meaning == "source");
    }));
}

} // namespace

std::string UnitVerifier::PathOf(const char* ending) {
    return plan_.files.basePath + "." + std::to_string(++runs_) + ending;
}

UnitVerifier::Attempt UnitVerifier::Run(const Arguments& words, const ParsedCommand& parsed, const std::string& path) {
    const ScopedFile text(path);
    UnitPlan plan = plan_;
    plan.preprocessing = words;
    plan.parsed = parsed;
    plan.files.preprocessedPath = path;
    const UnitResult result = UnitRun(plan, context_, progress_).Run(Work::Preprocess{});
    if (result.status != AnalyzerStatus::Analyzed) {
        return {{}, result.reason, result.status == AnalyzerStatus::Stopped};
    }
    return {ComparableText(ReadWholeFile(path))};
}

UnitVerifier::Attempt UnitVerifier::RunOwn(const OwnCommand& command, const std::vector<bool>& left) {
    const std::string path = PathOf(".build.i");
    ParsedCommand parsed = plan_.parsed;
    const std::vector<std::string> added(parsed.keptArguments.end() - static_cast<std::ptrdiff_t>(added_),
                                         parsed.keptArguments.end());
    parsed.keptArguments.clear();
    parsed.precompiled = {}; // what the build's command names is the build's business
    // What asks for the text stands in front: behind the build's words it might stand behind "--".
    Arguments words = plan_.model->BuildPreprocessCommand(parsed, path);
    words.pop_back(); // the source, which has its own place
    if (words.back() == "--") {
        words.pop_back();
    }
    words.insert(words.end(), added.begin(), added.end());
    const std::vector<std::string> own = WithoutParts(command.arguments, command.notes, left);
    words.insert(words.end(), own.begin(), own.end());
    return Run(words, parsed, path);
}

std::optional<UnitVerifier::OwnCommand> UnitVerifier::Unexpanded(const OwnCommand& expanded) const {
    if (trail_ == nullptr || trail_->command.empty() || IsMsvcFamily(plan_.model->Type())) {
        return std::nullopt;
    }
    OwnCommand command = {trail_->command, {}};
    const std::string source(expanded.arguments[plan_.command->source.index]);
    const auto place = std::find(command.arguments.begin() + 1, command.arguments.end(), source);
    if (place == command.arguments.end()) {
        return std::nullopt; // it stands in one of the files
    }
    SourceArgument argument = plan_.command->source;
    argument.index = static_cast<std::size_t>(place - command.arguments.begin());
    argument.openValues = nullptr; // places in the expanded words
    command.notes = NoteWords(*plan_.model, command.arguments, argument);
    return CountUnwanted(command.notes) == CountUnwanted(expanded.notes) ? std::optional(std::move(command))
                                                                         : std::nullopt;
}

bool UnitVerifier::IsSame(const Attempt& left, const Attempt& right) {
    return left.text.has_value() == right.text.has_value() && (!left.text || !left.text->FirstDifference(*right.text));
}

// Takes the flags out from the first on; where that changes the text, the last one taken is a cause. Between two causes
// the number that leaves the text as it is, is searched by halves.
void UnitVerifier::FindCauses(const OwnCommand& command, Attempt text, const Attempt& driver,
                              UnitVerification& verification) {
    std::vector<std::size_t> dropped;
    for (std::size_t place = 0; place < command.notes.size(); ++place) {
        if (IsTheDriversDoing(command.notes[place])) {
            dropped.push_back(place);
        }
    }
    const auto without = [&](std::size_t count) {
        std::vector<bool> left(command.notes.size());
        for (std::size_t place = 0; place < count; ++place) {
            left[dropped[place]] = true;
        }
        return RunOwn(command, left);
    };
    std::size_t taken = 0;
    while (!IsSame(text, driver) && verification.causes.size() < MostCauses && !context_.stop.IsSet()) {
        Attempt changed = without(dropped.size());
        if (taken == dropped.size() || IsSame(text, changed)) {
            verification.causes.emplace_back("none of the flags that are left out");
            return;
        }
        std::size_t low = taken; // leaves the text as it is
        std::size_t high = dropped.size();
        while (high - low > 1) {
            const std::size_t middle = low + (high - low) / 2;
            if (Attempt attempt = without(middle); IsSame(text, attempt)) {
                low = middle;
            } else {
                high = middle;
                changed = std::move(attempt);
            }
        }
        const WordNote& cause = command.notes[dropped[high - 1]];
        std::string words = cause.handedOnBy;
        for (const std::string& word : cause.words) {
            words += (words.empty() ? "" : " ") + word;
        }
        verification.causes.push_back(std::move(words));
        taken = high;
        text = std::move(changed);
    }
}

UnitVerification UnitVerifier::Verify() {
    using Outcome = UnitVerification::Outcome;
    const Attempt driver = Run(plan_.preprocessing, plan_.parsed, plan_.files.preprocessedPath);
    OwnCommand expanded = {plan_.command->arguments.ToVector(), {}};
    expanded.notes = NoteWords(*plan_.model, expanded.arguments, plan_.command->source);
    const std::optional<OwnCommand> unexpanded = Unexpanded(expanded);
    const OwnCommand& own = unexpanded ? *unexpanded : expanded;
    Attempt build = RunOwn(own, std::vector<bool>(own.notes.size()));
    if (driver.isStopped || build.isStopped) {
        return {Outcome::Stopped};
    }
    if (!driver.text && !build.text) {
        return {Outcome::Failed, driver.fault};
    }
    if (IsSame(driver, build)) {
        return {Outcome::Equal};
    }
    UnitVerification verification = {Outcome::Different};
    if (driver.text && build.text) {
        const std::size_t place = *driver.text->FirstDifference(*build.text);
        verification.place = driver.text->OriginOf(place);
        verification.driverLine = driver.text->LineAt(place);
        verification.buildLine = build.text->LineAt(place);
    } else {
        verification.driverLine = driver.fault;
        verification.buildLine = build.fault;
    }
    if (unexpanded) {
        Attempt read = RunOwn(expanded, std::vector<bool>(expanded.notes.size()));
        if (!IsSame(read, build)) {
            verification.causes.push_back("@" + trail_->files.front().path);
        }
        build = std::move(read);
    }
    FindCauses(expanded, std::move(build), driver, verification);
    if (context_.stop.IsSet()) {
        return {Outcome::Stopped};
    }
    return verification;
}

} // namespace Orvanta
