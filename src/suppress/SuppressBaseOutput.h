#pragma once

#include "report/IOutput.h"
#include "suppress/SuppressBase.h"

#include <cstddef>
#include <string>

namespace OrvlogConverter {

/// Adds messages to a base, and writes it in `End`. The documentation link is no message for a base.
class SuppressBaseOutput : public IOutput {
public:
    /// `base` is what `path` holds, or a new one.
    SuppressBaseOutput(std::string path, SuppressBase base);

    /// \throws ConfigException for a base that is outdated
    void Begin() override;
    /// True when the base did not hold the message yet.
    bool Write(const ReportMessage& message) override;
    /// \throws FilesystemException
    void End() override;

    /// The entries that the base did not have before.
    [[nodiscard]] std::size_t AddedCount() const noexcept { return added_; }

private:
    std::string path_;
    SuppressBase base_;
    std::size_t added_ = 0;
};

} // namespace OrvlogConverter
