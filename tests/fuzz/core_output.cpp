#include "FuzzInput.h"
#include "analysis/DependencyLines.h"
#include "analysis/ReportCommitter.h"
#include "report/MessageLine.h"

#include <algorithm>
#include <string>
#include <vector>

using namespace Orvanta;
using namespace OrvlogConverter;

namespace {

/// Holds what a report would hold.
class MemoryOutput : public ReportOutput {
public:
    bool Write(const ReportMessage& message) override {
        std::string line;
        AppendMessageLine(line, message, LineFormat::Json);
        lines.push_back(std::move(line));
        return true;
    }

    void Commit() override {}

    std::vector<std::string> lines;
};

MemoryOutput Commit(const std::string& findings, AnalyzerStatus& status) {
    MemoryOutput output;
    ReportCommitter committer(1, output, [&findings](std::size_t) { return findings; });
    UnitResult result;
    result.status = AnalyzerStatus::CarriedOver;
    committer.Commit(0, std::move(result));
    status = committer.Outcome().statuses.at(0);
    return output;
}

std::string Joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + '\n';
    }
    return text;
}

} // namespace

// What a core prints: its list of files, and its findings. The report made of them gives the same report again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(FuzzText(data, size));
    for (const std::string& path : ReadDependencyLines(text, "/project")) {
        Require(path.find('\n') == std::string::npos);
    }
    AnalyzerStatus status = {};
    const MemoryOutput first = Commit(text, status);
    Require(first.lines.size() <= size && (status == AnalyzerStatus::CarriedOver || status == AnalyzerStatus::Failed));
    const MemoryOutput again = Commit(Joined(first.lines), status);
    Require(status == AnalyzerStatus::CarriedOver && again.lines == first.lines);
    return 0;
}
