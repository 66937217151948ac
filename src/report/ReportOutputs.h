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
    /// Always true; nothing is on disk before the next commit.
    bool Write(const ReportMessage& message) override;
    /// Puts what was written since the last commit into the report, and the closing brackets behind it.
    void Commit() override;
    /// Commits what is left, and makes the report final.
    /// \throws FilesystemException
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
    /// Always true; nothing is on disk before the next commit.
    bool Write(const ReportMessage& message) override;
    /// Puts the lines written since the last commit at the report's end.
    void Commit() override;
    /// Commits what is left, and makes the report final.
    /// \throws FilesystemException
    void End() override;

private:
    ReportFile file_;
    LineFormat format_;
    std::string line_; // kept for its memory
};

/// Raw lines.
class RawOutput : public LineOutput {
public:
    /// Replaces what is at `path` by an empty report.
    /// \throws FilesystemException
    explicit RawOutput(const std::string& path) : LineOutput(path, LineFormat::Raw) {}
};

/// Lines on standard output, a whole commit at a time, among the messages unless those go to standard error. An output
/// that can't take them stops the run.
class ConsoleOutput : public ReportOutput {
public:
    /// Writes nothing yet.
    explicit ConsoleOutput(LineFormat format);

    /// Always true; nothing is shown before the next commit.
    bool Write(const ReportMessage& message) override;
    /// Writes the lines in one piece.
    /// \throws FileException when standard output can't take them
    void Commit() override;
    /// Writes what is left.
    void End() override;

private:
    LineFormat format_;
    std::string text_;
};

} // namespace OrvlogConverter
