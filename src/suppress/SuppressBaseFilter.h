#pragma once

#include "report/IOutput.h"
#include "suppress/SuppressBase.h"

#include <cstddef>

namespace OrvlogConverter {

/// Drops every message that a base holds. A report filtered by an outdated base begins with a notice of that.
class SuppressBaseFilter : public IFilter {
public:
    /// Without a base (null), nothing is dropped. The base outlives the filter.
    SuppressBaseFilter(IOutput* next, const SuppressBase* base) : IFilter(next), base_(base) {}

    void Begin() override;
    bool Accept(const ReportMessage& message) override;

    /// The messages dropped so far.
    [[nodiscard]] std::size_t HiddenCount() const noexcept { return hidden_; }

private:
    const SuppressBase* base_;
    std::size_t hidden_ = 0;
};

} // namespace OrvlogConverter
