#include "report/FinishedReport.h"

#include "platform/Text.h"
#include "report/JsonText.h"
#include "report/MessageLine.h"
#include "report/Utf8.h"

#include <utility>

namespace OrvlogConverter {

FinishedReport::FinishedReport(const std::string& path, ReportLook look) : file_(path), form_(look.form) {
    if (look.hasMark) {
        file_.Append(Orvanta::Utf8Mark);
    }
}

bool FinishedReport::Write(const ReportMessage& message) {
    BeginMessage();
    line_.clear();
    AppendMessageLine(line_, message, form_ == ReportForm::RawLines ? LineFormat::Raw : LineFormat::Json);
    if (!IsDocument()) {
        line_ += '\n';
    }
    file_.Append(line_);
    return true;
}

void FinishedReport::Copy(std::string_view text) {
    BeginMessage();
    if (text.starts_with('{') && !IsValidUtf8(text)) {
        line_.clear();
        AppendValidUtf8(line_, text);
        text = line_;
    }
    file_.Append(text);
    if (!IsDocument() && !text.ends_with('\n')) { // the last line of a report
        file_.Append("\n");
    }
}

void FinishedReport::BeginMessage() {
    if (IsDocument()) {
        OpenArray();
        file_.Append(count_ == 0 ? "\n" : ",\n");
    }
    ++count_;
}

void FinishedReport::AddMember(const std::string& key, std::string_view value) {
    std::string& members = isArrayOpen_ ? membersBehind_ : membersBefore_;
    if (isArrayOpen_) {
        members += ", ";
    }
    AppendJsonString(members, key);
    members += ": ";
    members += value;
    if (!isArrayOpen_) {
        members += ", ";
    }
}

void FinishedReport::OpenArray() {
    if (!std::exchange(isArrayOpen_, true)) {
        file_.Append("{" + membersBefore_ + "\"warnings\": [");
    }
}

void FinishedReport::End() {
    if (IsDocument()) {
        OpenArray();
        file_.Append("\n]" + membersBehind_ + "}\n");
    }
    file_.Commit();
}

} // namespace OrvlogConverter
