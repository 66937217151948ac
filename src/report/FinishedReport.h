#pragma once

#include "report/IOutput.h"
#include "report/ReportReader.h"
#include "report/WholeFile.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace OrvlogConverter {

/// The message that a report's reader is at, and the text that it was read from.
struct MessageOrigin {
    const ReportMessage* message = nullptr;
    std::string_view text = {};
};

/// A report made from others, which takes its place in `End`, when it is whole.
class FinishedReport : public IOutput {
public:
    /// \throws FilesystemException
    FinishedReport(const std::string& path, ReportForm form);

    /// From now on a message that is the very object read from a report of this report's kind (lines or a document) is
    /// copied as the text it was. `origin` outlives this output.
    void CopyFrom(const MessageOrigin& origin) { origin_ = &origin; }

    bool Write(const ReportMessage& message) override;
    void End() override;

    /// Adds a member of a JSON document beside its messages. Nothing in the other forms.
    void AddMember(const std::string& key, std::string_view value);

    /// The messages written so far.
    [[nodiscard]] std::size_t Count() const noexcept { return count_; }

private:
    [[nodiscard]] bool IsDocument() const noexcept { return form_ == ReportForm::JsonDocument; }

    void OpenArray();
    void AppendText(const ReportMessage& message);

    WholeFile file_;
    ReportForm form_;
    const MessageOrigin* origin_ = nullptr;
    std::size_t count_ = 0;
    bool isArrayOpen_ = false;
    std::string membersBefore_; // of the array of messages
    std::string membersBehind_;
    std::string line_; // kept for its memory
};

} // namespace OrvlogConverter
