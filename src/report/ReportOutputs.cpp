#include "report/ReportOutputs.h"

#include "platform/Console.h"
#include "report/JsonMessage.h"

namespace OrvlogConverter {

namespace {

// Every message opens a line of its own, so that an empty report has no empty line.
ReportFrame JsonFrame(const std::string& checked) {
    const std::string member = checked.empty() ? "" : "\"checked\": " + checked + ", ";
    return {"{\"version\": 1, " + member + "\"warnings\": [", ",", "\n]}\n"};
}

} // namespace

JsonOutput::JsonOutput(const std::string& path, const std::string& checked) : file_(path, JsonFrame(checked)) {}

bool JsonOutput::Write(const ReportMessage& message) {
    line_ = '\n';
    AppendJsonMessage(line_, message);
    file_.Append(line_);
    return true;
}

void JsonOutput::Commit() {
    file_.Commit();
}

void JsonOutput::End() {
    file_.Commit();
    file_.Close();
}

LineOutput::LineOutput(const std::string& path, LineFormat format) : file_(path, ReportFrame()), format_(format) {}

bool LineOutput::Write(const ReportMessage& message) {
    line_.clear();
    AppendMessageLine(line_, message, format_);
    line_ += '\n';
    file_.Append(line_);
    return true;
}

void LineOutput::Commit() {
    file_.Commit();
}

void LineOutput::End() {
    file_.Commit();
    file_.Close();
}

bool ConsoleOutput::Write(const ReportMessage& message) {
    AppendMessageLine(text_, message, format_);
    text_ += '\n';
    return true;
}

void ConsoleOutput::Commit() {
    Orvanta::WriteToStandardOutput(text_);
    text_.clear();
}

void ConsoleOutput::End() {
    Commit();
}

} // namespace OrvlogConverter
