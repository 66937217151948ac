#include "bundled/CppcheckOutput.h"

#include "platform/Exceptions.h"
#include "platform/Text.h"

#include <array>

namespace Orvanta {

namespace {

// Control characters made for setting apart records, groups and fields.
constexpr char FindingMark = '\x1e';
constexpr char LocationMark = '\x1d';
constexpr char FieldMark = '\x1f';

// The first fields of a line, the rest of it being the last one; false when there are too few.
template <std::size_t Count>
bool SplitFields(std::string_view line, std::array<std::string_view, Count>& fields) {
    for (std::size_t i = 0; i + 1 < Count; ++i) {
        const std::size_t end = line.find(FieldMark);
        if (end == std::string_view::npos) {
            return false;
        }
        fields[i] = line.substr(0, end);
        line.remove_prefix(end + 1);
    }
    fields[Count - 1] = line;
    return true;
}

bool ReadNumber(std::string_view text, std::uint32_t& number) {
    return ReadWholeNumber(text, number) == std::errc();
}

[[noreturn]] void FailAt(std::string_view line) {
    throw ZelmException("Cppcheck wrote a line that is not understood: \"" + std::string(line) + "\"");
}

Finding ReadFinding(std::string_view line) {
    Finding finding;
    std::array<std::string_view, 7> fields;
    // All or nothing: a finding with a field in the wrong place would be told at a wrong one.
    if (!SplitFields(line, fields) || !ReadNumber(fields[1], finding.location.line) ||
        !ReadNumber(fields[2], finding.column) || !ReadNumber(fields[5], finding.cwe)) {
        FailAt(line);
    }
    finding.location.file = fields[0];
    finding.severity = fields[3];
    finding.id = fields[4];
    // The last field, so that a message may hold whatever it likes.
    finding.message = Trim(fields[6]);
    return finding;
}

FindingPlace ReadLocation(std::string_view line) {
    FindingPlace location;
    std::array<std::string_view, 2> fields;
    if (!SplitFields(line, fields) || !ReadNumber(fields[1], location.line)) {
        FailAt(line);
    }
    location.file = fields[0];
    return location;
}

} // namespace

std::string CppcheckTemplate() {
    std::string text(1, FindingMark);
    for (const std::string_view field : {"{file}", "{line}", "{column}", "{severity}", "{id}", "{cwe}"}) {
        text.append(field) += FieldMark;
    }
    return text + "{message}";
}

std::string CppcheckLocationTemplate() {
    return LocationMark + std::string("{file}") + FieldMark + "{line}";
}

CppcheckOutput ReadCppcheckOutput(std::string_view text) {
    CppcheckOutput output;
    while (!text.empty()) {
        const std::string_view line = TakeLine(text);
        if (line.starts_with(FindingMark)) {
            output.findings.push_back(ReadFinding(line.substr(1)));
        } else if (line.starts_with(LocationMark) && !output.findings.empty()) {
            output.findings.back().path.push_back(ReadLocation(line.substr(1)));
        } else if (!line.empty()) {
            output.otherText.append(line) += '\n';
        }
    }
    return output;
}

} // namespace Orvanta
