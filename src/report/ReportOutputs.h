#pragma once

#include "report/IOutput.h"
#include "report/MessageLine.h"
#include "report/ReportFile.h"

#include <string>

namespace OrvlogConverter {

/// An output whose messages become part of the report in steps: each `Commit` makes all messages written since the one
/// before readable on disk, or, when it throws, none of them.
class ReportOutput : public IOutput {
public:
    /// \throws FilesystemException
    virtual void Commit() = 0;
};

/// One JSON document: an object whose "warnings" holds the messages. Closed again by every commit.
class JsonOutput : public ReportOutput {
public:
    /// Replaces what is at `path` by a report without messages. `checked` is the value of the member of that name, as
    /// JSON: what was looked at. Empty: there is no such member.
    /// \throws FilesystemException
    explicit JsonOutput(const std::string& path, const std::string& checked = {});
    bool Write(const ReportMessage& message) override;
    void Commit() override;
    void End() override;

private:
    ReportFile file_;
    std::string line_; // kept for its memory
};

/// One message a line, in the JSON or the raw form.
class LineOutput : public ReportOutput {
public:
    /// Replaces what is at `path` by an empty report.
    /// \throws FilesystemException
    LineOutput(const std::string& path, LineFormat format);
    bool Write(const ReportMessage& message) override;
    void Commit() override;
    void End() override;

private:
    ReportFile file_;
    LineFormat format_;
    std::string line_; // kept for its memory
};

/// Raw lines.
class RawOutput : public LineOutput {
public:
    explicit RawOutput(const std::string& path) : LineOutput(path, LineFormat::Raw) {}
};

/// Lines on standard output, a whole commit at a time.
class ConsoleOutput : public ReportOutput {
public:
    explicit ConsoleOutput(LineFormat format) : format_(format) {}

    bool Write(const ReportMessage& message) override;
    void Commit() override;
    void End() override;

private:
    LineFormat format_;
    std::string text_;
};

} // namespace OrvlogConverter
