#pragma once

#include "report/JsonMessageScanner.h"
#include "report/ReportMessage.h"

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

namespace OrvlogConverter {

/// How a whole report is written.
enum class ReportForm {
    JsonDocument, ///< one object whose "warnings" holds the messages
    JsonLines,
    RawLines,
};

/// Takes the parts of a report in their order. What it is handed lasts until it returns.
struct ReportReceiver {
    /// A message, with the text that it was read from: a line with its end, or the object of a document. A byte order
    /// mark in front of it is no part of it.
    std::function<void(const ReportMessage& message, std::string_view text)> takeMessage;
    /// A member of a document beside "warnings": its key and its value as JSON. May be empty.
    std::function<void(const std::string& key, const std::string& value)> takeMember = {};
};

/// Reads a report: one JSON document when its name ends in ".json", else a message a line, in any of the line forms
/// side by side. The name "-" is standard input, whose form shows in how it begins. Lines are read as a stream; of a
/// document, one message is held at a time.
class ReportReader {
public:
    /// \throws FilesystemException when it can't be opened
    explicit ReportReader(std::string path);
    ~ReportReader();
    ReportReader(const ReportReader&) = delete;
    ReportReader& operator=(const ReportReader&) = delete;

    /// \throws ParseException: the path, the line or entry (from 1), and what is wrong with it. What `receiver` throws
    /// passes through.
    void Read(const ReportReceiver& receiver);

private:
    /// Opens the report.
    void Open();
    /// One JSON document, cut into messages and other members as it is parsed.
    void ReadDocument(const ReportReceiver& receiver);
    void ReadLines(const ReportReceiver& receiver);
    /// Puts a line of any form into `message_`.
    void ReadLine(std::string_view line);
    /// The next line with its end, which lasts until the next call; false at the end of the report.
    [[nodiscard]] bool NextLine(std::string_view& line);

    std::string path_;
    std::unique_ptr<std::istream> input_;
    bool isDocument_;
    std::string buffer_;
    std::size_t begin_ = 0; // of what was not yet handed on
    ReportMessage message_; // kept for its memory
    JsonMessageScanner scanner_;
};

/// Whether the name is that of a JSON document: it ends in ".json", and in ".JSON" where names don't regard case.
[[nodiscard]] bool IsJsonDocumentName(std::string_view path);

/// What a report looks like from its name and its first bytes.
struct ReportLook {
    ReportForm form = ReportForm::JsonLines;
    bool hasMark = false; ///< it begins with a byte order mark
};

/// Looks at a report before it is read. One without lines counts as JSON lines, as does one that is no regular file and
/// could be read only once.
[[nodiscard]] ReportLook LookAtReport(const std::string& path);

} // namespace OrvlogConverter
