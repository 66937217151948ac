#pragma once

#include "e2e/support/Sandbox.h"
#include "history/UnitCosts.h"

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Orvanta {

/// Leaves what an earlier run would have left beside its report: how many seconds each unit of Sandbox::AddUnit took.
inline void LeaveCosts(const Sandbox& sandbox, const std::vector<std::pair<std::string, int>>& secondsBySource) {
    sandbox.Write(".Orvanta/.gitignore", "*\n");
    UnitCosts kept(sandbox.Path(".Orvanta"));
    for (const auto& [source, seconds] : secondsBySource) {
        CompileCommand command;
        command.absoluteDirectory = std::make_shared<const std::string>(sandbox.Path());
        command.arguments = ArgumentList(
            Arguments{sandbox.Path("tools/fake-gcc"), "-std=c17", "-c", sandbox.Path(source), "-o", "unit.o"});
        command.source.index = 3;
        UnitCost cost;
        cost.core.wall = std::chrono::seconds(seconds);
        kept.Record(CostKind::Analysis, CostKeyOf(command), cost);
    }
    kept.Save(secondsBySource.size());
}

} // namespace Orvanta
