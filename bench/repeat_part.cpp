// repeat_part PART COUNT FOLDER: writes the parts of COUNT shards into FOLDER, each with as many units as the recorded
// PART has, which end as those did and each of which has a finding of its own. So what merging a very large run costs
// can be measured without the run.

#include "shards/PartReader.h"
#include "shards/PartWriter.h"

#include <cstdint>
#include <cstdio>
#include <exception>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace Orvanta;

OrvlogConverter::ReportMessage FindingOf(const PartUnit& unit) {
    OrvlogConverter::MessagePosition position;
    position.file = unit.source;
    position.line = static_cast<std::uint32_t>(unit.number % 5000 + 1);
    return {"V501", "Of unit " + std::to_string(unit.number) + ": there are identical sub-expressions.",
            "",     {position},
            571,    1,
            false};
}

void WritePart(const std::string& recorded, const std::string& path, const Shard& shard) {
    PartReader reader(recorded);
    const std::size_t count = reader.Units().size();
    PartHead head = reader.Head();
    head.shard = shard;
    head.allUnits = head.invocations = count * shard.count;
    const auto nameOf = [&reader, &shard](std::size_t unit) {
        PartUnit named = reader.Units()[unit];
        named.number = unit * shard.count + shard.number - 1;
        named.invocation = named.number + 1;
        named.source += "." + std::to_string(shard.number) + ".c";
        return named;
    };
    const std::vector<SkippedInvocation> skipped;
    PartWriter writer(path, head, count, nameOf, skipped);
    writer.Commit();
    for (std::size_t unit = 0; unit < count; ++unit) {
        writer.Write(FindingOf(nameOf(unit)));
        writer.UnitCommitted(unit, reader.Next().result);
    }
    writer.End();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fputs("usage: repeat_part PART COUNT FOLDER\n", stderr);
        return 1;
    }
    try {
        Shard shard;
        shard.count = static_cast<std::uint32_t>(std::stoul(argv[2]));
        for (; shard.number <= shard.count; ++shard.number) {
            WritePart(argv[1], std::string(argv[3]) + "/" + std::to_string(shard.number) + ".orvpart", shard);
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "repeat_part: %s\n", error.what());
        return 1;
    }
    return 0;
}
