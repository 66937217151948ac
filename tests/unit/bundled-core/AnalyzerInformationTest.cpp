#include "bundled/AnalyzerInformation.h"

#include "platform/Exceptions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvanta {
namespace {

using testing::ElementsAre;

const std::string Call = "<function-call call-id=\"f1.h:3:6\" file=\"f2.c\" call-argexpr=\"a>b\">\n"
                         "  <path file=\"s3.c\" line=\"6\"/>\n</function-call>";
const std::string Usage = "<unsafe-usage my-id=\"f1.h:3:6\" file=\"f2.c\" line=\"4\"/>";
const std::string Information = "<?xml version=\"1.0\"?>\n"
                                "<analyzerinfo hash=\"12\">\n"
                                "  <error id=\"x\" file0=\"unit.c\">\n"
                                "    <location file=\"f9.c\" line=\"12\" info=\"&lt;FileInfo>\"/>\n"
                                "  </error>\n"
                                "  <FileInfo check=\"ctu\">\n" +
                                Call + Usage +
                                "  </FileInfo>\n"
                                "  <FileInfo check=\"Bounds checking\">\n"
                                "    <array-index>\n    " +
                                Usage + "\n" + Usage +
                                "    </array-index>\n"
                                "    <pointer-arith>\n    " +
                                Usage +
                                "    </pointer-arith>\n"
                                "  </FileInfo>\n"
                                "  <FileInfo check=\"CheckUnusedFunctions\">\n"
                                "    <functioncall functionName=\"f\"/>\n"
                                "  </FileInfo>\n"
                                "</analyzerinfo>\n";

TEST(AnalyzerInformation, GivesTheFactsOfEachCheck) {
    const std::vector<FactGroup> groups = ReadAnalyzerInformation(Information);
    EXPECT_THAT(groups, ElementsAre(FactGroup{"ctu", "", {Call, Usage}},
                                    FactGroup{"Bounds checking", "array-index", {Usage, Usage}},
                                    FactGroup{"Bounds checking", "pointer-arith", {Usage}}));
    EXPECT_THAT(FilesOfFact(Call), ElementsAre("f2.c", "s3.c"));

    std::string again;
    for (const FactGroup& group : groups) {
        AppendFactGroup(again, group);
    }
    EXPECT_EQ(ReadAnalyzerInformation(again + "</analyzerinfo>"), groups);
}

TEST(AnalyzerInformation, NoPartOfItPassesForTheWhole) {
    const std::string_view whole = Information;
    for (std::size_t size = 0; size < whole.find("</analyzerinfo>"); ++size) {
        EXPECT_THROW(static_cast<void>(ReadAnalyzerInformation(whole.substr(0, size))), ZelmException) << size;
    }
}

} // namespace
} // namespace Orvanta
