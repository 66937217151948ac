#include "report/MessageLine.h"

#include "report/JsonMessage.h"
#include "report/RawLine.h"

namespace OrvlogConverter {

ReportMessage ReadMessageLine(std::string_view line) {
    // Both ends: a raw line may begin with "{", as its fields hold anything.
    const bool isJson = !line.empty() && line.front() == '{' && line.back() == '}';
    return isJson ? ReadJsonMessage(line) : ReadRawLine(line);
}

void AppendMessageLine(std::string& text, const ReportMessage& message, LineFormat format) {
    switch (format) {
    case LineFormat::Json:
        AppendJsonMessage(text, message);
        break;
    case LineFormat::Raw:
        AppendRawLine(text, message);
        break;
    }
}

} // namespace OrvlogConverter
