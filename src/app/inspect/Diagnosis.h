#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace Orvanta {

/// What can be wrong before a run. The order is that of the report within one severity.
enum class Check {
    WrongDatabase,
    MissingSource,
    CompilerUnusable,
    Unreadable,
    MissingForcedInclude,
    MissingNamedFile,
    NothingLeft,
    NoCore,
    TemporaryFolderFull,
    UnknownCompiler,
    SkippedLauncher,
    WrongCompiler,
    InSystemFolder,
    ConflictingEntries,
    LanguageBehindSource,
    MissingPrecompiled,
    StalePrecompiled,
    StaleDatabase,
    DatabaseElsewhere,
    UnusedExclusion,
    UnmatchedCompiler,
    SettingsKey,
    TemporaryFolderSlow,
    DuplicateEntries,
    SeveralStandards,
    MissingFolder,
    DeletedSource,
};

/// What was found wrong with a build: by check, how often, and the first places.
class Diagnosis {
public:
    /// `place` is one line that names where, and what.
    void Add(Check check, std::string place);

    /// The same for a thing that is found wrong once for each of its places, such as a folder that many entries name.
    void Add(Check check, const std::string& thing, std::size_t entry);

    [[nodiscard]] bool Has(Check check) const { return findings_.contains(check); }

    /// Takes the findings of a check back, where another one says more.
    void Drop(Check check) { findings_.erase(check); }

    /// 1 with an error, else 2 with a warning, else 0.
    [[nodiscard]] int ExitCode() const;

    /// Lines for people, worst first.
    [[nodiscard]] std::string Text() const;

    /// The findings for another program: `findings`, each with `severity`, `check`, `count`, `text`, `cure`, `places`.
    [[nodiscard]] nlohmann::ordered_json Document() const;

private:
    struct Finding {
        std::size_t count = 0;
        std::vector<std::string> places; // the first few
    };

    std::map<Check, Finding> findings_;
};

} // namespace Orvanta
