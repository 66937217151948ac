#include "bundled/MergedFindings.h"

#include "bundled/FieldText.h"
#include "bundled/FileAlias.h"
#include "platform/Files.h"
#include "report/MessageLine.h"

#include <cstdint>
#include <exception>
#include <unordered_set>

namespace Orvanta {

namespace {

using OrvlogConverter::ReportMessage;

constexpr std::string_view Kind = "orvanta-cppcheck-merged 1";

} // namespace

void WriteMergedFindings(const std::string& path, std::span<const ReportMessage> findings) {
    std::string text;
    AppendField(text, Kind);
    AppendNumber(text, findings.size());
    for (const ReportMessage& finding : findings) {
        // Most units have few of them: the place stands in front, so that the others need not be taken apart.
        AppendField(text, OrvlogConverter::FirstPosition(finding).file);
        OrvlogConverter::AppendMessageLine(text, finding, OrvlogConverter::LineFormat::Json);
        AppendField(text, "");
    }
    // In one step: units read it, and a half of it would look like fewer findings.
    AtomicFile file(path);
    file.Append(text);
    file.Commit();
}

std::vector<ReportMessage> ReadMergedFindings(const std::string& path, std::span<const MarkedFile> files) {
    std::unordered_set<std::uint64_t> keys;
    for (const MarkedFile& file : files) {
        // A fault in a system header is nobody's business here, whichever unit meets it.
        if (!file.isSystem) {
            keys.insert(FileKey(file.path));
        }
    }
    FieldReader reader(path, Kind);
    std::vector<ReportMessage> findings;
    for (std::uint64_t left = reader.NextNumber(); left > 0; --left) {
        const bool isWanted = keys.contains(FileKey(reader.Next()));
        const std::string_view line = reader.Next();
        if (isWanted) {
            try {
                // Whatever is wrong with a line, the file is damaged: its place tells the user more than the fault in
                // it.
                findings.push_back(OrvlogConverter::ReadMessageLine(line));
            } catch (const std::exception&) {
                reader.Fail();
            }
        }
    }
    reader.ExpectEnd();
    return findings;
}

} // namespace Orvanta
