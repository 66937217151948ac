#pragma once

#include "report/IOutput.h"
#include "report/ReportReader.h"
#include "report/WholeFile.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace OrvlogConverter {

/// A report made from others, which takes its place in `End`, when it is whole.
class FinishedReport : public IOutput {
public:
    /// A report of the look that is asked for: with a mark, the mark is the first that stands in it.
    /// \throws FilesystemException
    FinishedReport(const std::string& path, ReportLook look);

    /// The same without a mark.
    FinishedReport(const std::string& path, ReportForm form) : FinishedReport(path, ReportLook{form, false}) {}

    /// Always true.
    bool Write(const ReportMessage& message) override;

    /// Writes a message as the text that it was read from, in a report of this one's kind (lines, or a document): what
    /// the record has no room for stays. Invalid UTF-8 in JSON is replaced by U+FFFD.
    void Copy(std::string_view text);

    /// Puts the report in its place.
    /// \throws FilesystemException
    void End() override;

    /// Adds a member of a JSON document beside its messages. Nothing in the other forms.
    void AddMember(const std::string& key, std::string_view value);

    /// The messages written so far.
    [[nodiscard]] std::size_t Count() const noexcept { return count_; }

private:
    [[nodiscard]] bool IsDocument() const noexcept { return form_ == ReportForm::JsonDocument; }

    void OpenArray();
    void BeginMessage();

    WholeFile file_;
    ReportForm form_;
    std::size_t count_ = 0;
    bool isArrayOpen_ = false;
    std::string membersBefore_; // of the array of messages
    std::string membersBehind_;
    std::string line_; // kept for its memory
};

} // namespace OrvlogConverter
