#pragma once

#include "report/IOutput.h"
#include "report/WholeFile.h"

#include <string>

namespace OrvlogConverter {

/// What the forms share: a file, or standard output, that takes one text for each message about the code, one before
/// them and one behind. The memory it needs does not grow with the messages.
class FormOutput : public IOutput {
public:
    /// Opens the file; what stands at `path` stays until `End`. "-" is standard output.
    /// \throws FilesystemException
    explicit FormOutput(const std::string& path) : file_(path) {}

    /// Writes what stands before the findings.
    /// \throws FilesystemException
    void Begin() override;
    /// False for a message that is not about the code, which is left out.
    /// \throws FilesystemException
    bool Write(const ReportMessage& message) override;
    /// Writes what stands behind the findings and puts the file in its place.
    /// \throws FilesystemException
    void End() override;

protected:
    /// What opens the form. Each of the three gets an empty `text`, and may leave it so.
    virtual void AppendHead(std::string& text) = 0;
    /// What the form says of one finding. Called in the order of the report, for messages about the code only.
    virtual void AppendFinding(std::string& text, const ReportMessage& message) = 0;
    /// What closes the form; called once, also when there were no findings.
    virtual void AppendTail(std::string& text) = 0;

private:
    WholeFile file_;
    std::string text_; // kept for its memory
};

} // namespace OrvlogConverter
