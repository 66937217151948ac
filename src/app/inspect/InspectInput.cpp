#include "app/inspect/InspectInput.h"

#include "app/InputReading.h"
#include "app/OptionChecks.h"
#include "app/RunSetup.h"
#include "buildinput/CompilationDatabase.h"
#include "buildinput/DatabaseExcerpt.h"
#include "buildinput/InvocationCollector.h"
#include "platform/Console.h"
#include "platform/Files.h"
#include "platform/InputFile.h"
#include "platform/Paths.h"
#include "platform/StopFlag.h"
#include "platform/Text.h"

#include <algorithm>
#include <optional>
#include <span>
#include <sstream>
#include <utility>

namespace Orvanta {

namespace {

// JSON and shells write other characters in several ways.
bool IsWrittenAsItIs(char character) {
    const char lower = ToLowerAscii(character);
    return IsDigit(character) || (lower >= 'a' && lower <= 'z') || character == '.' || character == '_' ||
           character == '-' || character == '+';
}

// The longest part of the name that is written as it is, wherever it stands.
std::string_view SafePart(std::string_view name) {
    std::string_view longest;
    while (!name.empty()) {
        const auto end = std::find_if_not(name.begin(), name.end(), IsWrittenAsItIs);
        const std::string_view part = name.substr(0, static_cast<std::size_t>(end - name.begin()));
        longest = part.size() > longest.size() ? part : longest;
        name.remove_prefix(std::min(part.size() + 1, name.size()));
    }
    return longest;
}

/// Tells where a file may stand. In doubt it may: a needless look costs a moment.
class NameFinder {
public:
    explicit NameFinder(std::string_view fileName) : part_(SafePart(fileName)) {}

    // Of a database's entry, as it stands in the file.
    [[nodiscard]] bool MayStandIn(std::string_view text) const {
        return IsIn(text) || text.find("\\u") != std::string_view::npos || NamesMoreArguments(text);
    }

    [[nodiscard]] bool MayStandIn(std::span<const std::string> words) const {
        return std::any_of(words.begin(), words.end(), [this](const std::string& word) {
            return IsIn(word) || NamesMoreArguments('"' + word + '"');
        });
    }

private:
    [[nodiscard]] bool IsIn(std::string_view text) const {
        return HostPathRules() == PathRules::Windows ? ContainsIgnoringCase(text, part_)
                                                     : text.find(part_) != std::string_view::npos;
    }

    // "@FILE", and the flags by which embedded compilers name such files.
    static bool NamesMoreArguments(std::string_view text) {
        constexpr std::string_view Flags[] = {"--via", "cmd_file", " -f ", "\"-f\"", ".xcl"};
        for (std::size_t at = text.find('@'); at != std::string_view::npos; at = text.find('@', at + 1)) {
            // Others are parts of words, such as the release in a folder's name.
            constexpr std::string_view Before = " \"'-\\t";
            if (at == 0 || Before.find(text[at - 1]) != std::string_view::npos) {
                return true;
            }
        }
        return std::any_of(std::begin(Flags), std::end(Flags),
                           [text](std::string_view flag) { return text.find(flag) != std::string_view::npos; });
    }

    std::string part_;
};

// The entries in which the name may stand; absent when the whole has to be read to tell what is wrong.
std::optional<std::vector<DatabaseEntry>> PickEntriesOf(const std::string& path, const NameFinder& finder) {
    // What a pipe has given can't be read again when the text turns out to be no database.
    if (ExtensionOf(path) != ".json" || KindOf(path) != PathKind::File) {
        return std::nullopt;
    }
    InputStream stream(path);
    std::optional<std::vector<DatabaseEntry>> entries =
        PickEntries(stream, [&finder](std::string_view text) { return finder.MayStandIn(text); });
    EndWhenStopped();
    return entries;
}

void CollectEntries(const std::string& path, const std::vector<DatabaseEntry>& entries, InvocationCollector& collector,
                    std::map<std::size_t, std::size_t>& lines) {
    collector.SetBaseDirectory(std::string(DirectoryOf(AbsolutePath(path))));
    for (const DatabaseEntry& entry : entries) {
        collector.ContinueAt(entry.number);
        lines.emplace(entry.number, entry.line);
        std::istringstream text("[" + entry.text + "]");
        try {
            ParseCompilationDatabase(text, HostCommandStringRules(), collector);
        } catch (const nlohmann::json::exception&) {
            collector.MessageLog().Line(path + ", entry " + std::to_string(entry.number) + ", line " +
                                        std::to_string(entry.line));
            throw;
        }
    }
}

// Before a settings file is read, so that a missing one is told in the same words as by a run.
AnalyzeOptions Validated(AnalyzeOptions options) {
    ValidateAnalyzeOptions(options);
    return options;
}

} // namespace

InspectInput::InspectInput(AnalyzeOptions given)
    : options(Validated(std::move(given))),
      settings(MakeRunSettings(options, [this](const std::string& line) { keyWarnings.push_back(line); })) {}

FileInvocations ReadInvocationsOf(std::string_view fileName, InspectInput& input) {
    const NameFinder finder(fileName);
    CompilerIdentifier identifier(input.settings, input.log, ProcessStopFlag());
    InvocationCollector collector(input.settings, input.registry, identifier, input.log);
    InvocationSieve sieve = {[&finder](std::span<const std::string> words) {
        return finder.MayStandIn(words);
    }};
    collector.TakeBy(sieve);
    FileInvocations found;
    if (input.options.sourceFile) {
        AddSingleFile(input.options, collector);
    } else {
        const std::string path = ExistingInput(input.options);
        if (const auto entries = PickEntriesOf(path, finder)) {
            CollectEntries(path, *entries, collector, found.lines);
        } else {
            ReadBuildInput(path, collector);
        }
    }
    found.commands = collector.Take();
    found.trails = std::move(sieve.trails);
    return found;
}

void WriteDocument(const nlohmann::ordered_json& document) {
    WriteResultToStandardOutput(document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n");
}

} // namespace Orvanta
