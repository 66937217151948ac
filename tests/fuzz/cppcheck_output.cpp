#include "FuzzInput.h"
#include "bundled/AnalyzerInformation.h"
#include "bundled/CppcheckOutput.h"
#include "platform/Exceptions.h"

#include <string>

using namespace Orvanta;

namespace {

void ReadAsFindings(std::string_view text) {
    try {
        const CppcheckOutput output = ReadCppcheckOutput(text);
        Require(output.findings.size() <= text.size() && output.otherText.size() <= text.size() + 1);
    } catch (const ZelmException&) {
        // Not by the template.
    }
}

void ReadAsFacts(std::string_view text) {
    try {
        std::string written = "<analyzerinfo>";
        const std::vector<FactGroup> facts = ReadAnalyzerInformation(text);
        for (const FactGroup& group : facts) {
            AppendFactGroup(written, group);
            for (const std::string& fact : group.facts) {
                Require(FilesOfFact(fact).size() <= fact.size());
            }
        }
        // What Cppcheck never writes need not come back as it was, nor at all.
        (void)ReadAnalyzerInformation(written + "</analyzerinfo>");
    } catch (const ZelmException&) {
        // Cut short.
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ReadAsFindings(FuzzText(data, size));
    ReadAsFacts(FuzzText(data, size));
    return 0;
}
