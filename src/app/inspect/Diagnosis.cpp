#include "app/inspect/Diagnosis.h"

#include "platform/Table.h"

#include <string_view>
#include <utility>

namespace Orvanta {

namespace {

constexpr std::size_t MostPlaces = 3;

enum class Severity { Error, Warning, Note };

struct CheckRow {
    Check check;
    Severity severity;
    std::string_view name; // for programs; it stays as it is
    std::string_view text;
    std::string_view cure;
};

// An error is what makes units fail or a run be in vain, a warning what makes its result another than is expected. A
// note does no harm by itself.
// clang-format off
constexpr CheckRow Checks[] = {
    {Check::WrongDatabase, Severity::Error, "wrong-database", "none of the source files of the input is there",
     "it belongs to another place: make it where the build is, or name another one with -f"},
    {Check::MissingSource, Severity::Error, "missing-source", "source files are missing",
     "build first, where they are generated; else make the database anew"},
    {Check::CompilerUnusable, Severity::Error, "compiler-unusable", "compilers can't be started",
     "install them, or put their folder on PATH"},
    {Check::Unreadable, Severity::Error, "unreadable", "commands can't be read",
     "response files: build again, and keep them; cut arguments: trace again with -s 65536 and -v"},
    {Check::MissingForcedInclude, Severity::Error, "missing-forced-include", "headers that flags include are missing",
     "build first: they are generated"},
    {Check::MissingNamedFile, Severity::Error, "missing-file", "files that flags name are missing", "build first"},
    {Check::NothingLeft, Severity::Error, "nothing-left", "no source file is left to analyze",
     "look at the exclusions, and at what is skipped"},
    {Check::NoCore, Severity::Error, "no-core", "the core can't work", "install it, or name one with --orvanta-path"},
    {Check::TemporaryFolderFull, Severity::Error, "temporary-full", "the folder for temporary files is full",
     "make room, or set TMPDIR (on Windows TMP)"},
    {Check::UnknownCompiler, Severity::Warning, "unknown-compiler", "commands are skipped for their compiler",
     "name it with -C, or a launcher with launcher= in a settings file; one that hangs has to answer --version"},
    {Check::SkippedLauncher, Severity::Warning, "ccache", "commands are skipped because they go through ccache",
     "use --ignore-ccache"},
    {Check::WrongCompiler, Severity::Warning, "wrong-compiler",
     "compilers are others than those that the build was configured with",
     "put the right one first on PATH, or configure the build again"},
    {Check::InSystemFolder, Severity::Warning, "in-system-folder",
     "source files are left out because they lie in a system folder of their own command",
     "use --analyze-specified-system-paths, or -I in place of -isystem"},
    {Check::ConflictingEntries, Severity::Warning, "conflicting-entries",
     "source files are compiled twice, with other flags", "each is analyzed: leave one out with -f, or an exclusion"},
    {Check::LanguageBehindSource, Severity::Warning, "language-behind-source",
     "flags for the language stand behind the source, for which they then don't count",
     "put them in front of it"},
    {Check::MissingPrecompiled, Severity::Warning, "missing-precompiled",
     "precompiled headers are missing: their headers are read in place of them", "build first"},
    {Check::StalePrecompiled, Severity::Warning, "stale-precompiled",
     "precompiled headers are older than their headers", "build again: the build is behind its sources"},
    {Check::StaleDatabase, Severity::Warning, "stale-database", "build files are newer than the database",
     "make it anew"},
    {Check::DatabaseElsewhere, Severity::Warning, "database-elsewhere",
     "no source file lies in the checkout that holds the database", "name the database of this project with -f"},
    {Check::UnusedExclusion, Severity::Warning, "unused-exclusion", "exclusions leave nothing out",
     "look at their spelling; relative ones count from the current folder, in a settings file from its own"},
    {Check::UnmatchedCompiler, Severity::Warning, "unmatched-compiler", "names of compilers match no command",
     "look at their spelling"},
    {Check::SettingsKey, Severity::Warning, "settings-key", "keys of the settings file mean nothing",
     "look at their spelling"},
    {Check::TemporaryFolderSlow, Severity::Warning, "temporary-slow", "the folder for temporary files is slow",
     "set TMPDIR (on Windows TMP) to a folder on a local disk"},
    {Check::DuplicateEntries, Severity::Note, "duplicate-entries",
     "source files are compiled twice, with the same flags", "findings are reported once; time is lost"},
    {Check::SeveralStandards, Severity::Note, "several-standards", "commands name several language standards",
     "the last one counts"},
    {Check::MissingFolder, Severity::Note, "missing-folder", "include folders are missing",
     "build first where the build fills them; else they do no harm"},
    {Check::DeletedSource, Severity::Note, "deleted-source", "traced sources are gone, as those of a configure step",
     "nothing, unless they are yours"},
};

// clang-format on

const CheckRow& RowOf(Check check) {
    return *FindRow(Checks, &CheckRow::check, check);
}

std::string_view NameOf(Severity severity) {
    switch (severity) {
    case Severity::Error:
        return "error";
    case Severity::Warning:
        return "warning";
    case Severity::Note:
        return "note";
    }
    return "";
}

} // namespace

void Diagnosis::Add(Check check, std::string place) {
    Finding& finding = findings_[check];
    if (++finding.count <= MostPlaces) {
        finding.places.push_back(std::move(place));
    }
}

void Diagnosis::Add(Check check, const std::string& thing, std::size_t entry) {
    Add(check, "entry " + std::to_string(entry) + ": " + thing);
}

int Diagnosis::ExitCode() const {
    constexpr int WarningCode = 2;
    int code = 0;
    for (const auto& [check, finding] : findings_) {
        const Severity severity = RowOf(check).severity;
        if (severity == Severity::Error) {
            return 1;
        }
        code = severity == Severity::Warning ? WarningCode : code;
    }
    return code;
}

std::string Diagnosis::Text() const {
    std::string text;
    for (const auto& [check, finding] : findings_) {
        const CheckRow& row = RowOf(check);
        text.append(NameOf(row.severity)).append(": ").append(row.text);
        text += finding.count > 1 ? " (" + std::to_string(finding.count) + ")\n" : "\n";
        for (const std::string& place : finding.places) {
            text += "  " + place + "\n";
        }
        if (finding.count > finding.places.size()) {
            text += "  and " + std::to_string(finding.count - finding.places.size()) + " more\n";
        }
        text.append("  cure: ").append(row.cure).append("\n");
    }
    return text;
}

nlohmann::ordered_json Diagnosis::Document() const {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const auto& [check, finding] : findings_) {
        const CheckRow& row = RowOf(check);
        list.push_back({{"severity", NameOf(row.severity)},
                        {"check", row.name},
                        {"count", finding.count},
                        {"text", row.text},
                        {"cure", row.cure},
                        {"places", finding.places}});
    }
    return list;
}

} // namespace Orvanta
