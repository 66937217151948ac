#pragma once

#include "report/IOutput.h"

#include <memory>
#include <vector>

namespace OrvlogConverter {

/// Gives every message to each of its children, in the order of their addition. Owns them.
class MultipleOutput : public IOutput {
public:
    /// \throws ConfigException "output is nullptr"
    void Add(std::unique_ptr<IOutput> output);

    /// Begins every child, until one throws.
    void Begin() override;
    /// True when a child took the message.
    bool Write(const ReportMessage& message) override;
    /// Ends every child, also behind one that fails. Rethrows the first failure.
    void End() override;

private:
    std::vector<std::unique_ptr<IOutput>> children_;
};

} // namespace OrvlogConverter
