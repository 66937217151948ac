#include "bundled/UnitInformation.h"

#include "bundled/FieldText.h"
#include "bundled/FileAlias.h"
#include "platform/Files.h"

#include <cstdint>
#include <unordered_set>
#include <utility>

namespace Orvanta {

namespace {

// Its number is to be raised with each change of the order below.
constexpr std::string_view Kind = "orvanta-cppcheck-unit 3";

// The number of entries goes first, so that no entry has to mark the end.
void AppendList(std::string& text, std::span<const std::string> list) {
    AppendNumber(text, list.size());
    for (const std::string& entry : list) {
        AppendField(text, entry);
    }
}

std::vector<std::string> ReadList(FieldReader& reader) {
    std::vector<std::string> list;
    for (std::uint64_t left = reader.NextNumber(); left > 0; --left) {
        list.emplace_back(reader.Next());
    }
    return list;
}

// A name that is no alias is one of Cppcheck's own, and no file of the unit.
void AddFilesOf(std::string_view fact, std::unordered_set<std::uint64_t>& keys) {
    for (const std::string_view name : FilesOfFact(fact)) {
        if (const auto key = KeyOfAlias(name)) {
            keys.insert(*key);
        }
    }
}

} // namespace

std::vector<std::string> FilesOfFacts(std::span<const FactGroup> facts, std::span<const MarkedFile> files) {
    std::unordered_set<std::uint64_t> keys;
    for (const FactGroup& group : facts) {
        for (const std::string& fact : group.facts) {
            AddFilesOf(fact, keys);
        }
    }
    std::vector<std::string> paths;
    // The paths themselves: an alias alone does not tell where a file lies.
    for (const MarkedFile& file : files) {
        if (keys.contains(FileKey(file.path))) {
            paths.push_back(file.path);
        }
    }
    return paths;
}

void WriteUnitInformation(const std::string& path, const UnitInformation& unit) {
    std::string text;
    AppendField(text, Kind);
    AppendList(text, unit.files);
    AppendNumber(text, unit.facts.size());
    for (const FactGroup& group : unit.facts) {
        AppendField(text, group.check);
        AppendField(text, group.kind);
        AppendList(text, group.facts);
    }
    AppendNumber(text, unit.functions.size());
    for (const NamedFunction& function : unit.functions) {
        AppendField(text, function.place);
        AppendField(text, function.name);
        AppendField(text, function.definition);
    }
    AppendNumber(text, unit.analysis.low);
    AppendNumber(text, unit.analysis.high);
    AppendList(text, unit.findings);
    AppendField(text, unit.tallies);
    OutputFile(path, OutputFile::Mode::Replace).Append(text);
}

UnitInformation ReadUnitInformation(const std::string& path) {
    FieldReader reader(path, Kind);
    UnitInformation unit;
    unit.files = ReadList(reader);
    for (std::uint64_t left = reader.NextNumber(); left > 0; --left) {
        FactGroup group;
        group.check = reader.Next();
        group.kind = reader.Next();
        group.facts = ReadList(reader);
        unit.facts.push_back(std::move(group));
    }
    for (std::uint64_t left = reader.NextNumber(); left > 0; --left) {
        NamedFunction function;
        function.place = reader.Next();
        function.name = reader.Next();
        function.definition = reader.Next();
        unit.functions.push_back(std::move(function));
    }
    unit.analysis.low = reader.NextNumber();
    unit.analysis.high = reader.NextNumber();
    unit.findings = ReadList(reader);
    unit.tallies = reader.Next();
    // A file that was cut short has failed before this; one that holds more is none of ours.
    reader.ExpectEnd();
    return unit;
}

} // namespace Orvanta
