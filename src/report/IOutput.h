#pragma once

#include "report/ReportMessage.h"

namespace OrvlogConverter {

/// A stage that takes messages: `Begin` once before the first, `End` once after the last. One thread at a time.
class IOutput {
public:
    virtual void Begin() {}

    /// True when the message was taken.
    virtual bool Write(const ReportMessage& message) = 0;

    virtual void End() {}

    virtual ~IOutput() = default;
};

/// A stage that drops messages and hands the others on to the next one, which it does not own and which may be null.
class IFilter : public IOutput {
public:
    explicit IFilter(IOutput* next) : next_(next) {}

    void Begin() override;
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
    [[nodiscard]] virtual ReportMessage Transform(ReportMessage message) = 0;

protected:
    IOutput* next_;
};

} // namespace OrvlogConverter
