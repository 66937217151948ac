#pragma once

#include "report/IOutput.h"
#include "report/WholeFile.h"

#include <string>

namespace OrvlogConverter {

/// What the forms share: a file, or standard output, that takes one text for each message about the code, one before
/// them and one behind. The memory it needs does not grow with the messages.
class FormOutput : public IOutput {
public:
    /// \throws FilesystemException
    explicit FormOutput(const std::string& path) : file_(path) {}

    void Begin() override;
    bool Write(const ReportMessage& message) override;
    void End() override;

protected:
    virtual void AppendHead(std::string& text) = 0;
    virtual void AppendFinding(std::string& text, const ReportMessage& message) = 0;
    virtual void AppendTail(std::string& text) = 0;

private:
    WholeFile file_;
    std::string text_; // kept for its memory
};

} // namespace OrvlogConverter
