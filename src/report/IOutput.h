#pragma once

// The chain through which findings pass.
//
// A stage takes a message, and hands it, or another, or none, to the next. Stages know nothing of what stands before or
// behind them, so that a run, the converter and the filter of finished reports each string together their own chain
// from the same parts. A stage does not own the next: chains live on the stack of whoever builds them, last stage
// first.
//
// Messages go by reference and one at a time. Why not a list of them: reports are larger than memory, and a chain that
// sees each message once needs no more of it for a million findings than for one.

#include "report/ReportMessage.h"

namespace OrvlogConverter {

/// A stage that takes messages: `Begin` once before the first, `End` once after the last. One thread at a time.
class IOutput {
public:
    /// Before the first message.
    virtual void Begin() {}

    /// True when the message was taken.
    virtual bool Write(const ReportMessage& message) = 0;

    /// After the last message: what is held back goes out now.
    virtual void End() {}

    virtual ~IOutput() = default;
};

/// A stage that drops messages and hands the others on to the next one, which it does not own and which may be null.
class IFilter : public IOutput {
public:
    explicit IFilter(IOutput* next) : next_(next) {}

    void Begin() override;
    /// False for a message that is dropped; else what the next stage says.
    bool Write(const ReportMessage& message) override;
    void End() override;
    /// Whether the message goes on.
    virtual bool Accept(const ReportMessage& message) = 0;

protected:
    IOutput* next_;
};

/// A stage that rewrites messages and hands them on to the next one, which it does not own and which may be null.
class ITransform : public IOutput {
public:
    explicit ITransform(IOutput* next) : next_(next) {}

    void Begin() override;
    bool Write(const ReportMessage& message) override;
    void End() override;
    /// The message in its new form. Asked once for each.
    [[nodiscard]] virtual ReportMessage Transform(ReportMessage message) = 0;

protected:
    IOutput* next_;
};

} // namespace OrvlogConverter
