#include "app/inspect/DoctorCommand.h"

#include "analysis/CoreLocator.h"
#include "analysis/CoreVersion.h"
#include "analysis/RunOutcome.h"
#include "app/InputReading.h"
#include "app/RunSetup.h"
#include "app/inspect/InspectInput.h"
#include "app/inspect/UnitChecks.h"
#include "buildinput/InvocationCollector.h"
#include "platform/Console.h"
#include "platform/Exceptions.h"
#include "platform/Executable.h"
#include "platform/Files.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"
#include "platform/StopFlag.h"
#include "platform/TemporaryFolder.h"
#include "platform/TemporaryPlace.h"

#include <args.hxx>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <system_error>
#include <utility>

namespace Orvanta {

namespace {

// Preprocessed texts have a few megabytes, and each worker holds one.
constexpr std::uintmax_t LeastRoom = std::uintmax_t{100} << 20U;
constexpr std::size_t ProbeSize = std::size_t{8} << 20U;
constexpr std::chrono::milliseconds SlowProbe{1000};

CollectedCommands ReadAll(InspectInput& input) {
    CompilerIdentifier identifier(input.settings, input.log, ProcessStopFlag());
    InvocationCollector collector(input.settings, input.registry, identifier, input.log);
    if (input.options.sourceFile) {
        AddSingleFile(input.options, collector);
    } else {
        ReadBuildInput(ExistingInput(input.options), collector);
    }
    return collector.Take();
}

void CheckRules(const InspectInput& input, const CollectedCommands& commands, Diagnosis& diagnosis) {
    std::vector<std::string> exclusions = input.options.excludePaths;
    const auto [first, last] = input.settings.userSettings.equal_range("exclude-path");
    std::transform(first, last, std::back_inserter(exclusions), [](const auto& setting) { return setting.second; });
    // Those of the options are among the settings too.
    std::transform(exclusions.begin(), exclusions.end(), exclusions.begin(), PathOrMask);
    std::sort(exclusions.begin(), exclusions.end());
    exclusions.erase(std::unique(exclusions.begin(), exclusions.end()), exclusions.end());
    for (std::string& value : UnusedExclusions(exclusions, commands.units)) {
        diagnosis.Add(Check::UnusedExclusion, std::move(value));
    }
    for (std::string& name : UnmatchedCompilers(input.options.compilers, commands)) {
        diagnosis.Add(Check::UnmatchedCompiler, std::move(name));
    }
    for (const std::string& warning : input.keyWarnings) {
        diagnosis.Add(Check::SettingsKey, warning);
    }
}

void CheckCore(const InspectInput& input, const std::string& folder, Diagnosis& diagnosis) {
    try {
        const CoreLocation core = input.options.corePath ? CoreLocation{AbsolutePath(*input.options.corePath)}
                                                         : LocateCore(ProgramDirectory());
        const CoreAnswer answer = AskCoreVersion(core.path, folder, ProcessStopFlag());
        // As a run judges it: another core may not know the question.
        if (core.origin == CoreLocation::Origin::Bundled && !answer.complaint.empty()) {
            diagnosis.Add(Check::NoCore, answer.complaint);
        }
    } catch (const ZelmException& error) {
        diagnosis.Add(Check::NoCore, error.what());
    }
}

// In the place and the way in which a run writes texts.
void CheckTemporaryFolder(const std::string& folder, Diagnosis& diagnosis) {
    std::error_code failed;
    const std::filesystem::space_info room = std::filesystem::space(NativePath(folder), failed);
    if (!failed && room.available < LeastRoom) {
        diagnosis.Add(Check::TemporaryFolderFull,
                      folder + ": " + std::to_string(room.available >> 20U) + " MB are left");
        return;
    }
    try {
        const std::string text(ProbeSize, '\n');
        const auto begin = std::chrono::steady_clock::now();
        OutputFile(JoinPath(folder, "probe"), OutputFile::Mode::Replace).Append(text);
        static_cast<void>(ReadWholeFile(JoinPath(folder, "probe")));
        const auto taken = std::chrono::steady_clock::now() - begin;
        if (taken > SlowProbe) {
            const auto count = std::chrono::duration_cast<std::chrono::milliseconds>(taken).count();
            diagnosis.Add(Check::TemporaryFolderSlow,
                          folder + ": 8 MB took " + std::to_string(count) + " ms to write and read");
        }
    } catch (const FileException& error) {
        diagnosis.Add(Check::TemporaryFolderFull, error.what());
    }
}

void CheckDatabase(const std::string& path, const std::set<std::string>& folders, Diagnosis& diagnosis) {
    for (std::string& file : BuildFilesNewerThan(path, folders)) {
        diagnosis.Add(Check::StaleDatabase, std::move(file));
    }
    const std::optional<std::string> checkout = CheckoutOf(std::string(DirectoryOf(path)));
    // Two paths may lead to one folder.
    const std::string root = checkout ? ResolveLinks(*checkout) : "";
    const auto isInside = [&checkout, &root](const std::string& folder) {
        return folder.starts_with(*checkout) || ResolveLinks(folder).starts_with(root);
    };
    if (checkout && !folders.empty() && std::none_of(folders.begin(), folders.end(), isInside)) {
        diagnosis.Add(Check::DatabaseElsewhere, *checkout + ": " + *folders.begin());
    }
}

std::string Heading(const CollectedCommands& commands, const Diagnosis& diagnosis) {
    std::string text = std::to_string(commands.units.size()) + " source files, " +
                       std::to_string(commands.skipped.size()) + " skipped commands\n";
    return diagnosis.Text().empty() ? text + "Nothing was found that would go wrong.\n" : text;
}

} // namespace

void DoctorCommand(args::Subparser& parser) {
    args::Flag asJson(parser, "json", "Write one JSON document instead of lines", {"json"});
    AnalyzeOptions options = ParseSharedOptions(parser, InputOptionNames);
    if (asJson) {
        PlaceMessages(MessagePlace::StandardError);
    }
    InspectInput input(std::move(options));
    const CollectedCommands commands = ReadAll(input);
    if (ProcessStopFlag().IsSet()) {
        throw ZelmRcException(InterruptedExitCode);
    }
    Diagnosis diagnosis;
    UnitChecks checks(input.settings, input.registry, diagnosis);
    const std::string path = AbsolutePath(BuildInputOf(input.options));
    checks.ExpectCompilers(ConfiguredCompilersIn(std::string(DirectoryOf(path))));
    checks.LookAt(commands);
    CheckRules(input, commands, diagnosis);
    if (!input.options.sourceFile) {
        CheckDatabase(path, checks.SourceFolders(), diagnosis);
    }
    {
        const TemporaryFolder temporary;
        CheckCore(input, temporary.Path(), diagnosis);
        CheckTemporaryFolder(temporary.Path(), diagnosis);
    }
    if (asJson) {
        WriteDocument({{"input", BuildInputOf(input.options)},
                       {"units", commands.units.size()},
                       {"skipped", commands.skipped.size()},
                       {"findings", diagnosis.Document()}});
    } else {
        WriteMessage(Heading(commands, diagnosis) + diagnosis.Text());
    }
    if (const int code = diagnosis.ExitCode(); code != 0) {
        throw ZelmRcException(code);
    }
}

} // namespace Orvanta
