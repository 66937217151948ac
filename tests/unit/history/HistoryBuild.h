#pragma once

#include "history/UnitHistory.h"
#include "platform/Environment.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

using Names = std::vector<std::string>;

inline const Names Both = {"a.c", "b.c"};
inline const Names None;

/// A build in a folder of its own, and the history of the runs over it.
class HistoryBuild {
public:
    HistoryBuild() = default;

    /// A build of a.c, which includes shared.h, and b.c, which includes that and own.h, after two runs: a file that is
    /// made just before a run and not known to it is known only to the next.
    explicit HistoryBuild(const Names& units) {
        folder.Write("shared.h", "shared");
        folder.Write("own.h", "own");
        for (const std::string& name : units) {
            AddUnit(name);
        }
        RunAll();
        RunAll();
    }

    void AddUnit(const std::string& name) {
        folder.Write(name, "source of " + name);
        CompileCommand command;
        command.absoluteDirectory = command.workingDirectory = std::make_shared<const std::string>(folder.Path());
        command.environment = std::make_shared<const Environment>();
        command.arguments = ArgumentList(Names{"gcc", name});
        command.source.index = 1;
        commands.push_back(std::move(command));
    }

    [[nodiscard]] std::unique_ptr<UnitHistory> Make() const {
        std::vector<UnitIdentity> identities;
        for (const CompileCommand& command : commands) {
            const std::string source(command.SourceFile());
            FingerprintBuilder arguments;
            for (const std::string& argument : command.arguments.ToVector()) {
                arguments.Add(argument);
            }
            identities.push_back({idPrefix + source, arguments.Value(), arguments.Add(inputs).Value(),
                                  std::make_shared<const Names>(Names{folder / "core"})});
        }
        return std::make_unique<UnitHistory>(folder / ".Orvanta", commands, std::move(identities),
                                             [this](const std::string& line) { told.push_back(line); });
    }

    [[nodiscard]] std::unique_ptr<UnitHistory>
    Read(UnitHistory::ReadResult expected = UnitHistory::ReadResult::Read) const {
        std::unique_ptr<UnitHistory> history = Make();
        EXPECT_EQ(history->Read(), expected);
        return history;
    }

    /// What the core reports for a unit.
    [[nodiscard]] Names DependenciesOf(std::size_t unit) const {
        return unit == 0 ? Names{folder / "shared.h"} : Names{folder / "shared.h", folder / "own.h"};
    }

    void Run(UnitHistory& history, std::size_t unit, std::string_view findings) const {
        history.Watch(unit).Keep(DependenciesOf(unit), findings);
    }

    /// What there is to find in a unit.
    [[nodiscard]] std::string FindingsIn(std::size_t unit) const {
        return "found in " + std::string(commands[unit].SourceFile()) + "\n";
    }

    void RunAll() const {
        const std::unique_ptr<UnitHistory> history = Make();
        static_cast<void>(history->Read());
        for (std::size_t unit = 0; unit < commands.size(); ++unit) {
            Run(*history, unit, FindingsIn(unit));
        }
        history->Save();
    }

    /// The names of the units that the history would not run again.
    [[nodiscard]] Names Unchanged(UnitHistory& history) const {
        Names unchanged;
        for (std::size_t unit = 0; unit < commands.size(); ++unit) {
            if (history.IsUnchanged(unit)) {
                unchanged.emplace_back(commands[unit].SourceFile());
            }
        }
        return unchanged;
    }

    [[nodiscard]] std::set<std::string> KeptFiles() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(NativePath(folder / ".Orvanta"))) {
            names.insert(PathText(entry.path().filename()));
        }
        return names;
    }

    TestFolder folder;
    std::vector<CompileCommand> commands;
    std::string inputs;   // of all units
    std::string idPrefix; // of all units
    mutable Names told;   // what the histories have told the user
};

} // namespace Orvanta
