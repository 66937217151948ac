#pragma once

#include "analysis/UnitResult.h"

#include <cstddef>

namespace Orvanta {

/// Hears of each unit in input order, when its findings have gone into the report's chain. One thread at a time.
class CommitListener {
public:
    virtual ~CommitListener() = default;

    /// The unit has ended so; its findings can't be read from the result any more.
    virtual void UnitCommitted(std::size_t unit, const UnitResult& result) = 0;
};

} // namespace Orvanta
