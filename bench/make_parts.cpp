// make_parts FOLDER UNITS PARTS VERSION: the parts of a run that was never made, for merge to read. Each unit has two
// findings of its own and two in headers that a hundred units share; VERSION is that of the program that merges.

#include "history/UnitIdentities.h"
#include "shards/PartWriter.h"

#include <cstdlib>
#include <string>

using namespace Orvanta;

namespace {

constexpr std::size_t UnitsOfHeader = 100;

OrvlogConverter::ReportMessage FindingIn(const std::string& file, std::uint32_t line) {
    OrvlogConverter::ReportMessage message;
    message.code = "V501";
    message.message = "There are identical sub-expressions to the left and to the right of the '==' operator.";
    message.level = 1 + line % 3;
    message.cwe = 571;
    message.positions.push_back({file, line, "    {", "        if (size == size) {", "            return;", 1, 2, 3});
    return message;
}

std::string SourceOf(std::size_t unit) {
    return "/home/user/project/src/module" + std::to_string(unit / 40) + "/Source" + std::to_string(unit) + ".cpp";
}

void WritePart(const std::string& folder, std::size_t units, const Shard& shard, const std::string& version) {
    PartHead head;
    head.shard = shard;
    head.allUnits = head.invocations = units;
    head.makers.ownVersion = version;
    head.makers.resultVersion = ResultVersion;
    const auto numberOf = [&shard](std::size_t unit) {
        return unit * shard.count + shard.number - 1;
    };
    const std::size_t own = (units + shard.count - shard.number) / shard.count;
    PartWriter part(folder + "/part" + std::to_string(shard.number) + std::string(PartExtension), std::move(head), own,
                    [&](std::size_t unit) {
                        return PartUnit{numberOf(unit), numberOf(unit) + 1, SourceOf(numberOf(unit))};
                    },
                    {});
    part.Commit();
    UnitResult result;
    result.cost = {{std::chrono::milliseconds(40), std::chrono::milliseconds(35), 60'000'000},
                   {std::chrono::milliseconds(900), std::chrono::milliseconds(880), 200'000'000},
                   800'000};
    for (std::size_t unit = 0; unit < own; ++unit) {
        const std::string source = SourceOf(numberOf(unit));
        const std::string header =
            "/home/user/project/include/H" + std::to_string(numberOf(unit) / UnitsOfHeader) + ".h";
        for (std::uint32_t line = 1; line <= 2; ++line) {
            part.Write(FindingIn(header, line));
            part.Write(FindingIn(source, line * 17));
        }
        part.UnitCommitted(unit, result);
        part.Commit();
    }
    part.End();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        return 1;
    }
    const std::size_t units = std::strtoull(argv[2], nullptr, 10);
    const auto count = static_cast<std::uint32_t>(std::strtoul(argv[3], nullptr, 10));
    for (std::uint32_t number = 1; number <= count; ++number) {
        WritePart(argv[1], units, {number, count}, argv[4]);
    }
    return 0;
}
