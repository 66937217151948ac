#include "cppcheck/CoreOptions.h"
#include "cppcheck/CppcheckRun.h"
#include "cppcheck/Linking.h"
#include "cppcheck/Unit.h"
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

void Run(const Orvanta::CoreOptions& options) {
    const std::string currentDirectory = Orvanta::CurrentDirectory();
    if (options.task == Orvanta::CoreTask::TellVersion) {
        Orvanta::WriteToStandardOutput(Orvanta::CppcheckVersion(currentDirectory) + "\n");
        return;
    }
    const Orvanta::SettingsMap settings = Orvanta::ReadSettingsFile(options.settingsPath);
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
        Orvanta::WriteToStandardOutput(Orvanta::DependencyLines(unit, currentDirectory));
        break;
    case Orvanta::CoreTask::Analyze:
        if (unit.stage == Orvanta::IntermodularStage::Collecting) {
            std::cerr << Orvanta::CollectFacts(unit, currentDirectory);
            break;
        }
        if (unit.outputPath.empty()) {
            throw Orvanta::ZelmException(options.settingsPath + ": the key \"output-file\" is missing or empty");
        }
        std::cerr << Orvanta::AnalyzeUnit(unit, currentDirectory);
        break;
    }
}

} // namespace

int main(int argc, char** argv) {
    try {
        const std::vector<std::string> words = Orvanta::ProgramArguments(argc, argv);
        Run(Orvanta::ReadCoreOptions(std::vector<std::string_view>(words.begin() + 1, words.end())));
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
