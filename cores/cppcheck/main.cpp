#include "cppcheck/CoreOptions.h"
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
    const Orvanta::UnitSettings unit = Orvanta::ReadUnitSettings(Orvanta::ReadSettingsFile(options.settingsPath),
                                                                 options.settingsPath, currentDirectory);
    switch (options.task) {
    case Orvanta::CoreTask::ListDependencies:
        Orvanta::WriteToStandardOutput(Orvanta::DependencyLines(unit, currentDirectory));
        break;
    case Orvanta::CoreTask::Analyze:
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
