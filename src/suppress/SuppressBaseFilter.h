#pragma once

#include "report/IOutput.h"
#include "suppress/SuppressBase.h"

#include <cstddef>

namespace OrvlogConverter {

/// Drops every message that a base holds. A report filtered by an outdated base begins with a notice of that.
class SuppressBaseFilter : public IFilter {
public:
    /// Without a base (null), nothing is dropped. What is dropped goes to `hidden`, which may be null. All outlive the
    /// filter.
    SuppressBaseFilter(IOutput* next, const SuppressBase* base, IOutput* hidden = nullptr)
        : IFilter(next), base_(base), hiddenMessages_(hidden) {}

    /// Sends the notice of an outdated base ahead. It is no message that the base could hide.
    void Begin() override;
    /// False, and counted, for a message that the base holds.
    bool Accept(const ReportMessage& message) override;

    /// The messages dropped so far.
    [[nodiscard]] std::size_t HiddenCount() const noexcept { return hidden_; }

private:
    const SuppressBase* base_;
    IOutput* hiddenMessages_;
    std::size_t hidden_ = 0;
};

} // namespace OrvlogConverter
