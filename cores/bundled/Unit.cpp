#include "bundled/Unit.h"

#include "bundled/AnalyzerInformation.h"
#include "bundled/CppcheckDump.h"
#include "bundled/CppcheckRun.h"
#include "bundled/Engine.h"
#include "bundled/FunctionNames.h"
#include "bundled/MarkedText.h"
#include "bundled/MemberCalls.h"
#include "bundled/MergedFindings.h"
#include "bundled/Misra.h"
#include "bundled/ReportWriter.h"
#include "bundled/ReturnedPointers.h"
#include "bundled/SystemTextCutter.h"
#include "bundled/TallyLines.h"
#include "bundled/Targets.h"
#include "bundled/TypeChecks.h"
#include "bundled/UnitInformation.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Fingerprint.h"
#include "report/MessageLine.h"

#include <iterator>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvanta {

namespace {

using OrvlogConverter::ReportMessage;

using Engines = std::vector<std::unique_ptr<Engine>>;

// Stands for all that the findings of a unit depend on.
Fingerprint FingerprintOfAnalysis(const UnitSettings& unit, const Engines& engines, const UnitText& text) {
    FingerprintBuilder builder;
    for (const std::unique_ptr<Engine>& engine : engines) {
        // Without the text's path, which is another one in each run.
        for (const std::string& word : engine->CommandFor(unit)) {
            builder.Add(word);
        }
    }
    // What the choice leaves out is not collected.
    builder.Add(std::string{static_cast<char>(unit.choice.groups), unit.choice.all ? 'a' : ' '});
    for (const auto& [check, rule] : unit.choice.rules.byCheck) {
        builder.Add(check).Add(std::to_string(rule.level) + (unit.choice.rules.SwitchesOff(check) ? "-" : "+"));
    }
    // Cppcheck alone sees no more than the cut text: what changes in system headers is nothing to it.
    const bool isCppcheckAlone = engines.size() == 1 && engines.front()->Kind() == EngineKind::Cppcheck;
    return builder.Add(isCppcheckAlone ? text.cut.text : text.preprocessed).Value();
}

/// What is told of a unit, and what was said on the way to it.
struct UnitFindings {
    std::vector<ReportMessage> messages;
    UnitWords words;
};

// What collecting has found in the unit; nullopt when it has not, or in another text.
std::optional<UnitFindings> CollectedFindings(const UnitSettings& unit, const Engines& engines, const UnitText& text) {
    if (unit.stage != IntermodularStage::Performing || !PathExists(unit.informationPath)) {
        return std::nullopt;
    }
    const UnitInformation information = ReadUnitInformation(unit.informationPath);
    // The source may have changed between the two stages, or an engine's options.
    if (information.analysis != FingerprintOfAnalysis(unit, engines, text)) {
        return std::nullopt;
    }
    UnitFindings collected;
    for (const std::string& line : information.findings) {
        collected.messages.push_back(OrvlogConverter::ReadMessageLine(line));
    }
    collected.words.tallies = information.tallies;
    return collected;
}

// What the end of the run tells of what the settings ask for.
std::string SettingsTallies(const UnitSettings& unit, const Engines& engines) {
    struct GroupWord {
        unsigned bit;
        std::string_view word;
    };

    constexpr GroupWord WithoutChecks[] = {{16, "CS"}, {64, "AUTOSAR"}, {128, "OWASP"}};
    std::string tallies;
    for (const GroupWord& group : WithoutChecks) {
        if ((unit.choice.groups & group.bit) != 0) {
            AppendTally(tallies, "No engine of the bundled core has checks of the group " + std::string(group.word),
                        "");
        }
    }
    if (!TargetOf(unit) && !unit.platform.empty()) {
        AppendTally(tallies, "Platforms that the bundled core does not know, and takes for this machine",
                    unit.platform);
    }
    if (!unit.choice.Has(CheckGroup::Misra)) {
        return tallies;
    }
    if (engines.front()->Kind() != EngineKind::Cppcheck) {
        AppendTally(tallies, "The rules of MISRA are not judged: that takes Cppcheck", "");
    } else if (unit.language == UnitLanguage::Cpp) {
        AppendTally(tallies, "Files of C++, by which no rule of MISRA is judged", unit.sourcePath);
    } else {
        AppendTally(tallies, "Rules of MISRA C:2012 that were judged, and no others: " + JudgedMisraRules(), "");
    }
    return tallies;
}

/// Takes what the engines say of a unit, one after the other.
class ResultCollector {
public:
    ResultCollector(const UnitSettings& unit, const Engines& engines) : unit_(unit) {
        words_.tallies = SettingsTallies(unit, engines);
    }

    void Add(const Engine& engine, EngineResult result) {
        words_.otherText += result.otherText;
        if (result.notLookedAt.empty()) {
            hasLooked_ = true;
            std::move(result.findings.begin(), result.findings.end(), std::back_inserter(findings_));
            return;
        }
        const std::string name(engine.Name());
        reasons_ += (reasons_.empty() ? "" : "\n") + name + " can't read this unit: " + result.notLookedAt;
        AppendTally(words_.tallies, "Files that " + name + " can't read", unit_.sourcePath + ": " + result.notLookedAt);
    }

    // \throws ZelmException when no engine has looked at the unit
    [[nodiscard]] UnitFindings Report(const CutText& cut) {
        // Before anything is written: what the unit gave before stays where it is when it can't be analyzed.
        if (!hasLooked_) {
            throw ZelmException(reasons_);
        }
        ReportedFindings reported =
            MakeReportMessages(findings_, {cut.files, cut.systemMacros, cut.text, unit_.choice});
        for (const ReportMessage& message : reported.hidden) {
            const OrvlogConverter::MessagePosition& place = message.positions.front();
            AppendTally(words_.tallies, "Findings hidden by marks in the sources",
                        place.file + ":" + std::to_string(place.line) + " " +
                            message.message.substr(0, message.message.find("] ") + 1));
        }
        return {std::move(reported.messages), std::move(words_)};
    }

private:
    const UnitSettings& unit_;
    std::vector<Finding> findings_;
    UnitWords words_;
    std::string reasons_;
    bool hasLooked_ = false;
};

// The same for every task, so that a fingerprint of one compares with that of another.
UnitText ReadUnitText(const UnitSettings& unit, const std::string& currentDirectory) {
    UnitText text;
    text.preprocessed = ReadWholeFile(unit.preprocessedPath);
    BlankTypeChecks(text.preprocessed);
    text.cut = CutSystemText(text.preprocessed, unit.sourcePath, currentDirectory);
    text.currentDirectory = currentDirectory;
    return text;
}

// What Cppcheck tells for its whole-program step, and what it leaves out of it.
void AddFacts(UnitInformation& information, const CppcheckCollection& collection) {
    information.facts = ReadAnalyzerInformation(collection.analyzerInformation);
    // Another version of Cppcheck may leave none: then functions are what one header declares.
    if (collection.dump.empty()) {
        return;
    }
    const CppcheckDump dump(collection.dump);
    std::vector<FactGroup> more = ReturnFacts(dump);
    more.push_back(MemberCallFacts(dump));
    for (FactGroup& group : more) {
        if (!group.facts.empty()) {
            information.facts.push_back(std::move(group));
        }
    }
    information.functions = NameFunctions(dump, information.facts);
}

} // namespace

UnitWords AnalyzeUnit(const UnitSettings& unit, const std::string& currentDirectory) {
    const Engines engines = EnginesFor(unit);
    const UnitText text = ReadUnitText(unit, currentDirectory);
    std::optional<UnitFindings> findings = CollectedFindings(unit, engines, text);
    if (!findings) {
        ResultCollector results(unit, engines);
        for (const std::unique_ptr<Engine>& engine : engines) {
            results.Add(*engine, engine->Analyze(unit, text));
        }
        findings = results.Report(text.cut);
    }
    // What the linking finds are faults, whichever unit they are told for.
    if (unit.stage == IntermodularStage::Performing && unit.choice.Has(CheckGroup::General)) {
        AddFindings(findings->messages, ReadMergedFindings(unit.mergedPath, text.cut.files));
    }
    std::string lines;
    for (const ReportMessage& message : findings->messages) {
        OrvlogConverter::AppendMessageLine(lines, message, unit.outputFormat);
        lines += '\n';
    }
    // At the very end, and in one piece.
    OutputFile(unit.outputPath, OutputFile::Mode::Replace).Append(lines);
    return std::move(findings->words);
}

UnitWords CollectFacts(const UnitSettings& unit, const std::string& currentDirectory) {
    const Engines engines = EnginesFor(unit);
    const UnitText text = ReadUnitText(unit, currentDirectory);
    ResultCollector results(unit, engines);
    UnitInformation information;
    for (const std::unique_ptr<Engine>& engine : engines) {
        // Of both, Cppcheck alone tells what concerns other units.
        if (engine->Kind() == EngineKind::Cppcheck && ReasonNotToRun(unit, text.cut.text).empty()) {
            CppcheckCollection collection = CollectWithCppcheck(unit, text.cut.text);
            std::string reason = ReasonNotRead(collection.output.findings, text.cut.files);
            AddFacts(information, collection);
            results.Add(*engine, {std::move(collection.output.findings), std::move(collection.output.otherText),
                                  std::move(reason)});
        } else {
            results.Add(*engine, engine->Analyze(unit, text));
        }
    }
    UnitFindings findings = results.Report(text.cut);
    information.files = FilesOfFacts(information.facts, text.cut.files);
    information.analysis = FingerprintOfAnalysis(unit, engines, text);
    for (const ReportMessage& message : findings.messages) {
        OrvlogConverter::AppendMessageLine(information.findings.emplace_back(), message,
                                           OrvlogConverter::LineFormat::Json);
    }
    information.tallies = std::move(findings.words.tallies);
    WriteUnitInformation(unit.informationPath, information);
    return {"", std::move(findings.words.otherText)};
}

std::string DependencyLines(const UnitSettings& unit, const std::string& currentDirectory) {
    std::string lines;
    for (const std::string& path :
         ListDependencies(ReadWholeFile(unit.preprocessedPath), unit.sourcePath, currentDirectory)) {
        // The form in which the driver looks for these lines among others.
        lines += "<}include{>" + path + "\n";
    }
    return lines;
}

} // namespace Orvanta
