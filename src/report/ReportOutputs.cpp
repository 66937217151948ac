#include "report/ReportOutputs.h"

#include "platform/Console.h"
#include "platform/StopFlag.h"
#include "report/JsonMessage.h"
#include "report/WriteFailure.h"

#include <utility>

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

ConsoleOutput::ConsoleOutput(LineFormat format) : format_(format) {
    if (Orvanta::PlaceOfMessages() == Orvanta::MessagePlace::StandardOutput) {
        Orvanta::PlaceMessages(Orvanta::MessagePlace::AmongFindings);
    }
}

// Whoever waits for findings has gone, or has no room: to find more of them is of no use.
void ConsoleOutput::Commit() {
    const std::string text = std::exchange(text_, {});
    try {
        NamingFile("standard output", [&text] { Orvanta::WriteResultToStandardOutput(text); });
    } catch (const FilesystemException& error) {
        if (!Orvanta::ProcessStopFlag().Set()) {
            Orvanta::WriteToStandardError(std::string("Error: ") + error.what() + '\n');
        }
        throw;
    }
}

void ConsoleOutput::End() {
    Commit();
}

} // namespace OrvlogConverter
