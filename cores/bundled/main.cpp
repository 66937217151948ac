#include "bundled/CoreOptions.h"
#include "bundled/Engine.h"
#include "bundled/Linking.h"
#include "bundled/Unit.h"
#include "platform/Console.h"
#include "platform/Exceptions.h"
#include "platform/Paths.h"
#include "platform/ProgramArguments.h"
#include "settings/SettingsFile.h"

#include <exception>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace {

void Tell(const Orvanta::UnitWords& words) {
    std::cerr << words.otherText;
    Orvanta::WriteResultToStandardOutput(words.tallies);
}

void Run(const Orvanta::CoreOptions& options) {
    const std::string currentDirectory = Orvanta::CurrentDirectory();
    // Before any settings are read: this task has none.
    if (options.task == Orvanta::CoreTask::TellVersion) {
        Orvanta::WriteResultToStandardOutput(Orvanta::EngineVersions(currentDirectory) + "\n");
        return;
    }
    const Orvanta::SettingsMap settings = Orvanta::ReadSettingsFile(options.settingsPath);
    // The linking has no unit, so its settings would not do for one.
    if (options.task == Orvanta::CoreTask::Analyze &&
        Orvanta::ReadIntermodularStage(settings, options.settingsPath) == Orvanta::IntermodularStage::Linking) {
        std::cerr << Orvanta::LinkUnits(Orvanta::ReadLinkSettings(settings, options.settingsPath, currentDirectory));
        return;
    }
    const Orvanta::UnitSettings unit = Orvanta::ReadUnitSettings(settings, options.settingsPath, currentDirectory);
    switch (options.task) {
    case Orvanta::CoreTask::TellVersion:
        break;
    case Orvanta::CoreTask::ListDependencies:
        Orvanta::WriteResultToStandardOutput(Orvanta::DependencyLines(unit, currentDirectory));
        break;
    case Orvanta::CoreTask::Analyze:
        if (unit.stage == Orvanta::IntermodularStage::Collecting) {
            Tell(Orvanta::CollectFacts(unit, currentDirectory));
            break;
        }
        // Only an analysis needs it, so its lack is no fault of the settings as such.
        if (unit.outputPath.empty()) {
            throw Orvanta::ZelmException(options.settingsPath + ": the key \"output-file\" is missing or empty");
        }
        Tell(Orvanta::AnalyzeUnit(unit, currentDirectory));
        break;
    }
}

} // namespace

int main(int argc, char** argv) {
    try {
        // In UTF-8, also where `main` gets something else.
        const std::vector<std::string> words = Orvanta::ProgramArguments(argc, argv);
        Run(Orvanta::ReadCoreOptions(std::vector<std::string_view>(words.begin() + 1, words.end())));
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        // One code for all faults: the text says which it was.
        return 1;
    }
}
