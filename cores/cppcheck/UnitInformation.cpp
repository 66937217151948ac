#include "cppcheck/UnitInformation.h"

#include "cppcheck/FieldText.h"
#include "cppcheck/FileAlias.h"
#include "platform/Files.h"

#include <cstdint>
#include <unordered_set>
#include <utility>

namespace Orvanta {

namespace {

constexpr std::string_view Kind = "orvanta-cppcheck-unit 1";

} // namespace

UnitInformation MakeUnitInformation(std::vector<FactGroup> facts, std::span<const MarkedFile> files) {
    std::unordered_set<std::uint64_t> keys;
    for (const FactGroup& group : facts) {
        for (const std::string& fact : group.facts) {
            for (const std::string_view name : FilesOfFact(fact)) {
                if (const auto file = ReadAlias(name)) {
                    keys.insert(file->key);
                }
            }
        }
    }
    UnitInformation unit;
    for (const MarkedFile& file : files) {
        if (keys.contains(FileKey(file.path))) {
            unit.files.push_back(file.path);
        }
    }
    unit.facts = std::move(facts);
    return unit;
}

void WriteUnitInformation(const std::string& path, const UnitInformation& unit) {
    std::string text;
    AppendField(text, Kind);
    AppendCount(text, unit.files.size());
    for (const std::string& file : unit.files) {
        AppendField(text, file);
    }
    AppendCount(text, unit.facts.size());
    for (const FactGroup& group : unit.facts) {
        AppendField(text, group.check);
        AppendField(text, group.kind);
        AppendCount(text, group.facts.size());
        for (const std::string& fact : group.facts) {
            AppendField(text, fact);
        }
    }
    OutputFile(path, OutputFile::Mode::Replace).Append(text);
}

UnitInformation ReadUnitInformation(const std::string& path) {
    FieldReader reader(path, Kind);
    UnitInformation unit;
    for (std::size_t left = reader.NextCount(); left > 0; --left) {
        unit.files.emplace_back(reader.Next());
    }
    for (std::size_t left = reader.NextCount(); left > 0; --left) {
        FactGroup group;
        group.check = reader.Next();
        group.kind = reader.Next();
        for (std::size_t factsLeft = reader.NextCount(); factsLeft > 0; --factsLeft) {
            group.facts.emplace_back(reader.Next());
        }
        unit.facts.push_back(std::move(group));
    }
    reader.ExpectEnd();
    return unit;
}

} // namespace Orvanta
