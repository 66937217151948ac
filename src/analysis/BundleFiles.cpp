#include "analysis/BundleFiles.h"

#include "analysis/PathScrubber.h"
#include "analysis/ReplayScripts.h"
#include "analysis/TextRewriting.h"
#include "history/UnitIdentities.h"
#include "platform/EnvironmentNames.h"
#include "platform/Files.h"
#include "platform/LineMarker.h"
#include "platform/Paths.h"
#include "platform/Text.h"
#include "report/MessageLine.h"
#include "settings/SettingsFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvanta {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* TextName = "unit.i";

/// Files beside the text that settings name, and their names in a bundle.
constexpr std::pair<const char*, const char*> NamedFiles[] = {
    {"rules-config", "rules.orvconfig"},
    {"intermodular-file", "merged.dfo"},
    {"intermodular-unit-file", "unit.dfo"},
};

const char* StatusWord(AnalyzerStatus status) {
    switch (status) {
    case AnalyzerStatus::PreprocessingFailed:
        return "not preprocessed";
    case AnalyzerStatus::CoreFailed:
        return "core failed";
    case AnalyzerStatus::Failed:
        return "failed";
    case AnalyzerStatus::Analyzed:
    case AnalyzerStatus::Stopped:
    case AnalyzerStatus::Excluded:
    case AnalyzerStatus::CarriedOver:
    case AnalyzerStatus::FromCache:
    case AnalyzerStatus::NotListed:
        break;
    }
    return "analyzed";
}

/// Writes the files of one bundle.
class BundleWriter {
public:
    BundleWriter(const std::string& folder, const BundledUnit& unit, PathScrubber* scrubber)
        : folder_(folder), unit_(unit), scrubber_(scrubber) {}

    // First of all: its line markers tell the scrubber which paths there are.
    void WriteText() const {
        if (!PathExists(unit_.plan.files.preprocessedPath)) {
            return;
        }
        TextRewriting rewriting;
        std::string currentFile = unit_.plan.sourcePath;
        rewriting.fileName = [this, &currentFile](std::string_view name) {
            return FileName(name, currentFile);
        };
        if (scrubber_ != nullptr) {
            rewriting.literal = [this](std::string_view literal) {
                return scrubber_->KnownPaths(literal);
            };
            rewriting.blanksComments = true;
        }
        Write(TextName, RewritePreprocessedText(ReadWholeFile(unit_.plan.files.preprocessedPath), rewriting));
    }

    void WriteSettings() const {
        SettingsMap settings = unit_.plan.settings;
        for (const auto& [key, name] : NamedFiles) {
            const auto entry = settings.find(key);
            if (entry == settings.end()) {
                continue;
            }
            if (IsRegularFile(entry->second)) {
                Write(name, Scrubbed(&PathScrubber::Words, ReadWholeFile(entry->second)));
            }
            entry->second = name;
        }
        for (auto& [key, value] : settings) {
            if (key == "source-file") {
                value = Scrubbed(&PathScrubber::Path, unit_.plan.sourcePath);
            } else if (key == "i-file") {
                value = TextName;
            } else if (key == "output-file") {
                value = ReplayedFindingsName;
            } else {
                value = Scrubbed(&PathScrubber::Words, value);
            }
        }
        SettingsFile(std::move(settings), JoinPath(folder_, "settings"), SettingsFile::Lifetime::Keep);
    }

    // Without the lines of the sources, which a replay doesn't have.
    void WriteFindings() const {
        if (!PathExists(unit_.plan.files.fragmentPath)) {
            return;
        }
        const auto form = unit_.plan.settings.find("new-output-format");
        const bool isRaw = form != unit_.plan.settings.end() && form->second == "no";
        std::string findings;
        const std::string fragment = ReadWholeFile(unit_.plan.files.fragmentPath);
        for (std::string_view rest = fragment; !rest.empty();) {
            const std::string_view line = TakeLine(rest);
            try {
                const OrvlogConverter::ReportMessage message = OrvlogConverter::ReadMessageLine(line);
                const OrvlogConverter::ReportMessage bare = WithoutSources(message);
                if (bare == message) {
                    findings += line; // in the core's own form
                } else {
                    AppendMessageLine(findings, bare,
                                      isRaw ? OrvlogConverter::LineFormat::Raw : OrvlogConverter::LineFormat::Json);
                }
            } catch (const std::exception&) {
                findings += Scrubbed(&PathScrubber::Words, line); // as it is: it may be why the unit has failed
            }
            findings += '\n';
        }
        Write("expected.findings", findings);
    }

    void WriteOutputs() const {
        WriteOutput("compiler", unit_.evidence.compiler.output);
        WriteOutput("core", unit_.evidence.core.output);
    }

    void WriteScripts() const {
        const bool hasText = unit_.result.status != AnalyzerStatus::PreprocessingFailed;
        const ReplayScripts scripts = hasText ? ScriptsOfCore(unit_.evidence.coreFlags)
                                              : ScriptsWithoutText(unit_.evidence.compiler.exitCode.value_or(1));
        Write("replay.sh", scripts.posix);
        Write("replay.cmd", scripts.windows);
    }

    // Last: a folder that has it is whole.
    void WriteRecord(const BundleMakers& makers) const {
        const UnitPlan& plan = unit_.plan;
        const CompilerInfo& compiler = *plan.command->compiler;
        Json record;
        record["format"] = "orvanta replay bundle 1";
        record["source"] = Scrubbed(&PathScrubber::Path, plan.sourcePath);
        record["directory"] = Scrubbed(&PathScrubber::Path, plan.Directory());
        record["status"] = StatusWord(unit_.result.status);
        record["reason"] = Scrubbed(&PathScrubber::Words, unit_.result.reason);
        record["seconds"] = unit_.elapsed.count();
        record["core"] = {{"version", Scrubbed(&PathScrubber::Words, makers.core)},
                          {"exitCode", CodeOf(unit_.evidence.core)}};
        record["compiler"] = {{"path", Scrubbed(&PathScrubber::Path, compiler.path)},
                              {"version", Scrubbed(&PathScrubber::Words, compiler.version)},
                              {"exitCode", CodeOf(unit_.evidence.compiler)}};
        record["program"] = {{"version", makers.program}};
        record["command"] = Json::array();
        for (const std::string& word : plan.preprocessing) {
            record["command"].push_back(Scrubbed(&PathScrubber::Argument, word));
        }
        record["environment"] = EnvironmentSubset();
        // A byte that is no UTF-8 must not cost the bundle.
        Write(BundleRecordName, record.dump(1, ' ', false, Json::error_handler_t::replace) + '\n');
    }

private:
    void Write(const char* name, std::string_view content) const {
        OutputFile(JoinPath(folder_, name), OutputFile::Mode::Replace).Append(content);
    }

    void WriteOutput(const std::string& program, const CapturedOutput& output) const {
        Write((program + ".stdout").c_str(), Scrubbed(&PathScrubber::Words, output.standardOutput));
        Write((program + ".stderr").c_str(), Scrubbed(&PathScrubber::Words, output.standardError));
    }

    [[nodiscard]] std::string Scrubbed(std::string (PathScrubber::*how)(std::string_view),
                                       std::string_view text) const {
        return scrubber_ != nullptr ? (scrubber_->*how)(text) : std::string(text);
    }

    // A replay runs in another folder: its names are absolute, found as a core finds them.
    [[nodiscard]] std::string FileName(std::string_view quotedName, std::string& currentFile) const {
        const std::string name = UnquotedName(quotedName);
        if (NamesNoFile(name)) {
            return scrubber_ != nullptr && name.ends_with("//") ? std::string("//") : std::string(quotedName);
        }
        const std::string path = PathOfName(name, currentFile, unit_.plan.Directory());
        currentFile = path;
        if (scrubber_ == nullptr) {
            return path == name ? std::string(quotedName) : QuotedName(path);
        }
        static_cast<void>(scrubber_->Path(name)); // __FILE__ is written like this
        return QuotedName(scrubber_->Path(path));
    }

    [[nodiscard]] OrvlogConverter::ReportMessage WithoutSources(OrvlogConverter::ReportMessage message) const {
        message.message = Scrubbed(&PathScrubber::KnownPaths, message.message);
        for (OrvlogConverter::MessagePosition& position : message.positions) {
            OrvlogConverter::MessagePosition bare;
            bare.file = Scrubbed(&PathScrubber::Path, position.file);
            bare.line = position.line;
            position = std::move(bare);
        }
        return message;
    }

    static Json CodeOf(const ChildEnd& end) { return end.exitCode ? Json(*end.exitCode) : Json(); }

    // Only what compilers of the family look into: the rest is the user's own business.
    [[nodiscard]] Json EnvironmentSubset() const {
        Json subset = Json::object();
        const std::vector<std::string_view> names = VariablesReadBy(unit_.plan.command->compiler->type);
        for (const std::string& entry : unit_.plan.environment->Entries()) {
            const std::size_t equals = entry.find('=', 1);
            const std::string_view name = std::string_view(entry).substr(0, equals);
            if (equals != std::string::npos && std::any_of(names.begin(), names.end(), [name](std::string_view known) {
                    return IsSameVariable(known, name);
                })) {
                subset[std::string(name)] = Scrubbed(&PathScrubber::Words, entry.substr(equals + 1));
            }
        }
        return subset;
    }

    const std::string& folder_;
    const BundledUnit& unit_;
    PathScrubber* scrubber_;
};

} // namespace

void WriteBundleFiles(const std::string& folder, const BundledUnit& unit, const BundleMakers& makers,
                      PathScrubber* scrubber) {
    const BundleWriter writer(folder, unit, scrubber);
    writer.WriteText();
    writer.WriteSettings();
    writer.WriteFindings();
    writer.WriteOutputs();
    writer.WriteScripts();
    writer.WriteRecord(makers);
}

bool HasUnreadableFinding(const std::string& fragmentPath) {
    if (fragmentPath.empty() || !PathExists(fragmentPath)) {
        return false;
    }
    const std::string fragment = ReadWholeFile(fragmentPath);
    for (std::string_view rest = fragment; !rest.empty();) {
        const std::string_view line = TakeLine(rest);
        try {
            if (!line.empty()) {
                static_cast<void>(OrvlogConverter::ReadMessageLine(line));
            }
        } catch (const std::exception&) {
            return true;
        }
    }
    return false;
}

} // namespace Orvanta
