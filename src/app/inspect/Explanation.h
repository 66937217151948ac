#pragma once

#include "analysis/UnitPlan.h"
#include "app/inspect/InspectInput.h"
#include "buildinput/BuildInput.h"
#include "buildinput/InvocationTrail.h"
#include "history/UnitHistory.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>

namespace Orvanta {

/// What of an invocation is known beside its units.
struct InvocationFacts {
    const InvocationTrail* trail = nullptr; ///< null when there is none
    std::optional<std::size_t> line;        ///< on which a database's entry begins
};

/// How a unit was read and what a run would do with it, as a document; docs/inspecting.md describes its members.
[[nodiscard]] nlohmann::ordered_json ExplainUnit(const UnitPlan& plan, const InvocationFacts& facts,
                                                 const RunSettings& settings);

/// The same of an invocation that gives no unit.
[[nodiscard]] nlohmann::ordered_json ExplainSkipped(const SkippedInvocation& skipped, const InvocationFacts& facts);

/// What an incremental run would do with a unit, and why.
[[nodiscard]] nlohmann::ordered_json ExplainStanding(const UnitStanding& standing);

/// A whole explanation as lines for people.
[[nodiscard]] std::string ExplanationText(const nlohmann::ordered_json& document);

} // namespace Orvanta
