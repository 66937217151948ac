#pragma once

#include "analysis/UnitResult.h"

#include <cstddef>

namespace Orvanta {

/// Hears of the units of a pass as workers take them up and have done with them. Any thread may call it.
class UnitEvents {
public:
    virtual ~UnitEvents() = default;
    /// A worker begins with the unit.
    virtual void UnitBegins(std::size_t unit) = 0;
    /// The same worker has ended it; its result goes to the receiver next.
    virtual void UnitEnds(std::size_t unit, const UnitResult& result) = 0;
};

} // namespace Orvanta
