#pragma once

#include "buildinput/BuildInput.h"

#include <cstddef>
#include <span>
#include <string>

namespace Orvanta {

/// What the end of a run tells its units and invocations by, wherever their names come from.
class ToldInput {
public:
    virtual ~ToldInput() = default;

    [[nodiscard]] virtual std::size_t UnitCount() const noexcept = 0;

    /// Which invocation of the input the unit is of, from 1: units of one stand next to each other.
    [[nodiscard]] virtual std::size_t InvocationOf(std::size_t unit) const = 0;

    /// The path of the unit's source.
    [[nodiscard]] virtual std::string SourceOf(std::size_t unit) const = 0;

    /// The invocations that gave no unit, in input order.
    [[nodiscard]] virtual std::span<const SkippedInvocation> Skipped() const noexcept = 0;
};

/// Names what was read from a build input, which outlives it.
class CollectedInput : public ToldInput {
public:
    explicit CollectedInput(const CollectedCommands& commands) : commands_(commands) {}

    [[nodiscard]] std::size_t UnitCount() const noexcept override { return commands_.units.size(); }

    [[nodiscard]] std::size_t InvocationOf(std::size_t unit) const override { return commands_.units[unit].invocation; }

    [[nodiscard]] std::string SourceOf(std::size_t unit) const override { return SourcePath(commands_.units[unit]); }

    [[nodiscard]] std::span<const SkippedInvocation> Skipped() const noexcept override { return commands_.skipped; }

private:
    const CollectedCommands& commands_;
};

} // namespace Orvanta
