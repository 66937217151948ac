#include "app/inspect/ExplainCommand.h"

#include "analysis/CoreLocator.h"
#include "analysis/CoreVersion.h"
#include "analysis/UnitPlanner.h"
#include "app/RunSetup.h"
#include "app/Version.h"
#include "app/inspect/Explanation.h"
#include "history/UnitIdentities.h"
#include "platform/Console.h"
#include "platform/Exceptions.h"
#include "platform/Executable.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/StopFlag.h"
#include "platform/TemporaryFolder.h"
#include "platform/TemporaryPlace.h"

#include <args.hxx>

#include <algorithm>
#include <set>
#include <utility>

namespace Orvanta {

namespace {

using Json = nlohmann::ordered_json;

/// One question about one file.
class FileQuestion {
public:
    FileQuestion(InspectInput& input, const std::string& file)
        : input_(input), given_(file), path_(AbsolutePath(file)) {}

    /// \throws ZelmException when there is nothing to tell
    [[nodiscard]] Json Answer();

private:
    // Whether a path of the build is the file; of a relative name, in any folder when none is in this one.
    [[nodiscard]] bool IsTheFile(const std::string& path) const;
    [[nodiscard]] bool EndsInTheFile(const std::string& path) const;
    // Keeps the units of the file alone.
    void ChooseUnits();
    [[nodiscard]] bool MayHoldTheFile(const SkippedInvocation& skipped) const;
    [[nodiscard]] InvocationFacts FactsOf(std::size_t invocation) const;
    [[nodiscard]] Json Units();
    [[nodiscard]] Json Skipped() const;
    // What earlier runs have kept; null where they have kept nothing, with the reason in `document`.
    [[nodiscard]] std::unique_ptr<UnitHistory> OpenHistory(Json& document);

    InspectInput& input_;
    std::string given_;
    std::string path_;
    FileInvocations found_;
    std::vector<CompileCommand> units_;
    TemporaryFolder temporary_; // of what compilers are asked
};

bool FileQuestion::IsTheFile(const std::string& path) const {
    return ComparablePath(path) == ComparablePath(path_) ||
           (FileNameOf(path).size() == FileNameOf(path_).size() && ResolveLinks(path) == ResolveLinks(path_));
}

bool FileQuestion::EndsInTheFile(const std::string& path) const {
    const std::string end = ComparablePath(NormalizePath(JoinPath("/", given_)));
    const std::string whole = ComparablePath(path);
    return !IsAbsolutePath(given_) && whole.ends_with(end);
}

void FileQuestion::ChooseUnits() {
    const auto choose = [this](bool (FileQuestion::*isWanted)(const std::string&) const) {
        for (const CompileCommand& unit : found_.commands.units) {
            if ((this->*isWanted)(SourcePath(unit))) {
                units_.push_back(unit);
            }
        }
    };
    choose(&FileQuestion::IsTheFile);
    if (units_.empty()) {
        choose(&FileQuestion::EndsInTheFile);
    }
}

InvocationFacts FileQuestion::FactsOf(std::size_t invocation) const {
    InvocationFacts facts;
    const auto trail = std::find_if(found_.trails.begin(), found_.trails.end(),
                                    [invocation](const auto& candidate) { return candidate.invocation == invocation; });
    facts.trail = trail == found_.trails.end() ? nullptr : &*trail;
    if (const auto line = found_.lines.find(invocation); line != found_.lines.end()) {
        facts.line = line->second;
    }
    return facts;
}

// One whose response file is gone may hold any file.
bool FileQuestion::MayHoldTheFile(const SkippedInvocation& skipped) const {
    const InvocationTrail* const trail = FactsOf(skipped.invocation).trail;
    if (trail == nullptr) {
        return false;
    }
    const std::string directory = AbsolutePath(trail->directory);
    return std::any_of(trail->words.begin(), trail->words.end(), [&](const std::string& word) {
        const std::string path = NormalizePath(JoinPath(directory, word));
        return IsTheFile(path) || EndsInTheFile(path) ||
               (skipped.fate == InvocationFate::Unreadable && units_.empty() && word.starts_with('@'));
    });
}

std::unique_ptr<UnitHistory> FileQuestion::OpenHistory(Json& document) {
    const std::string folder = OrvantaFolder(OutputFolderOf(ReportPath(input_.options, input_.settings)));
    if (!LookAt(JoinPath(folder, "depend_info.json")).IsThere()) {
        document["history"] = "none in " + folder;
        return nullptr;
    }
    ResultMakers makers = {"", "", Version};
    try {
        makers.corePath =
            input_.options.corePath ? AbsolutePath(*input_.options.corePath) : LocateCore(ProgramDirectory()).path;
        makers.coreVersion = AskCoreVersion(makers.corePath, temporary_.Path(), ProcessStopFlag()).version;
    } catch (const ZelmException& error) {
        document["history"] = std::string("not compared: ") + error.what();
        return nullptr;
    }
    auto history = std::make_unique<UnitHistory>(folder, units_, IdentifyUnits(units_, input_.settings, makers));
    if (history->Read() != UnitHistory::ReadResult::Read) {
        document["history"] = "can't be read in " + folder;
        return nullptr;
    }
    document["history"] = folder;
    return history;
}

Json FileQuestion::Units() {
    RunPlaces places;
    // The command is to work when it is pasted: its text goes where a run has its own folder.
    places.unitFolder = SystemTemporaryFolder();
    places.temporaryFolder = temporary_.Path();
    UnitPlanner planner(input_.settings, input_.registry, places, input_.log, ProcessStopFlag());
    Json units = Json::array();
    for (std::size_t unit = 0; unit < units_.size(); ++unit) {
        const InvocationFacts facts = FactsOf(units_[unit].invocation);
        try {
            units.push_back(
                ExplainUnit(planner.Plan(units_[unit], unit, IntermodularAnalysisMode::None), facts, input_.settings));
        } catch (const ZelmException& error) {
            units.push_back(
                {{"source", SourcePath(units_[unit])}, {"entry", units_[unit].invocation}, {"fault", error.what()}});
        }
    }
    return units;
}

Json FileQuestion::Skipped() const {
    Json skipped = Json::array();
    for (const SkippedInvocation& invocation : found_.commands.skipped) {
        if (MayHoldTheFile(invocation)) {
            skipped.push_back(ExplainSkipped(invocation, FactsOf(invocation.invocation)));
        }
    }
    return skipped;
}

Json FileQuestion::Answer() {
    found_ = ReadInvocationsOf(FileNameOf(path_), input_);
    ChooseUnits();
    Json document;
    document["file"] = path_;
    document["input"] = input_.options.sourceFile ? "--source-file" : BuildInputOf(input_.options);
    document["units"] = Units();
    document["skipped"] = Skipped();
    document["includedBy"] = Json::array();
    if (const std::unique_ptr<UnitHistory> history = OpenHistory(document)) {
        for (std::size_t unit = 0; unit < units_.size(); ++unit) {
            document["units"][unit]["history"] = ExplainStanding(history->StandingOf(unit));
        }
        if (units_.empty()) {
            document["includedBy"] = history->SourcesMadeOf(path_);
        }
    }
    if (units_.empty() && document["skipped"].empty() && document["includedBy"].empty()) {
        throw ZelmException("Nothing in " + BuildInputOf(input_.options) + " compiles " + path_,
                            "Of a header, an incremental run learns which source files include it: analyze -i, and "
                            "here the same -o");
    }
    return document;
}

} // namespace

void ExplainCommand(args::Subparser& parser) {
    args::Flag asJson(parser, "json", "Write one JSON document instead of lines", {"json"});
    args::Positional<std::string> file(parser, "FILE", "A source file or a header", args::Options::Required);
    AnalyzeOptions options = ParseSharedOptions(parser, InputOptionNames);
    if (asJson) {
        PlaceMessages(MessagePlace::StandardError);
    }
    InspectInput input(std::move(options));
    for (const std::string& warning : input.keyWarnings) {
        PrintLine(warning);
    }
    const Json document = FileQuestion(input, file.Get()).Answer();
    if (asJson) {
        WriteDocument(document);
    } else {
        WriteMessage(ExplanationText(document));
    }
}

} // namespace Orvanta
