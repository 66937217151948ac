#include "report/AnalyzerType.h"

#include "report/Exceptions.h"
#include "support/ErrorOf.h"

#include <gtest/gtest.h>

#include <string>

namespace OrvlogConverter {
namespace {

using enum AnalyzerType;

struct CodeCase {
    std::string_view code;
    std::uint32_t number;
    AnalyzerType analyzer;
};

TEST(AnalyzerType, FollowsTheNumberOfTheCode) {
    const CodeCase cases[] = {
        {"V001", 1, Fail},
        {"V003", 3, Fail},
        {"V004", 4, Bits64},
        {"V005", 5, Fail},
        {"V99", 99, Fail},
        {"V100", 100, Bits64},
        {"V499", 499, Bits64},
        {"V0501", 501, GeneralAnalysis},
        {"V799", 799, GeneralAnalysis},
        {"V800", 800, Optimization},
        {"V999", 999, Optimization},
        {"V1000", 1000, GeneralAnalysis},
        {"V2000", 2000, CustomerSpecific},
        {"V2499", 2499, CustomerSpecific},
        {"V2500", 2500, Misra},
        {"V2999", 2999, Misra},
        {"V3000", 3000, GeneralAnalysis},
        {"V3499", 3499, GeneralAnalysis},
        {"V3500", 3500, Autosar},
        {"V4000", 4000, Unknown},
        {"V4999", 4999, Unknown},
        {"V5000", 5000, Owasp},
        {"V6999", 6999, GeneralAnalysis},
        {"V7000", 7000, Unknown},
        {"V000", 0, Unknown},
        {"External", 0, GeneralAnalysis},
        {"external", 0, Unknown},
        {"v501", 0, Unknown},
        {"V501a", 0, Unknown},
        {"V 501", 0, Unknown},
        {"V-501", 0, Unknown},
        {"V", 0, Unknown},
        {"", 0, Unknown},
        {"Help:", 0, Unknown},
        {"V4294967297", 0, Unknown},
    };
    for (const CodeCase& row : cases) {
        EXPECT_EQ(CodeNumber(row.code), row.number) << row.code;
        EXPECT_EQ(ClassifyCode(row.code), row.analyzer) << row.code;
    }
}

struct SpecificationCase {
    std::string_view text;
    std::vector<AnalyzerLevels> analyzers;
};

TEST(AnalyzerSpecification, ListsAnalyzersWithTheirLevels) {
    const SpecificationCase cases[] = {
        {"all", {}},
        {"ALL", {}},
        {"GA", {{GeneralAnalysis}}},
        {"GA:2", {{GeneralAnalysis, {2}}}},
        {"GA:1,2;64:1", {{GeneralAnalysis, {1, 2}}, {Bits64, {1}}}},
        {"GA:1+64:1", {{GeneralAnalysis, {1}}, {Bits64, {1}}}},
        {"FAIL;OP;CS;MISRA:0", {{Fail}, {Optimization}, {CustomerSpecific}, {Misra, {0}}}},
        {"OWASP:7+AUTOSAR:-1", {{Owasp, {7}}, {Autosar, {-1}}}},
    };
    for (const SpecificationCase& row : cases) {
        EXPECT_EQ(ParseAnalyzerSpecification(row.text), row.analyzers) << row.text;
    }
}

struct SpecificationFault {
    std::string_view text;
    std::string_view message;
};

TEST(AnalyzerSpecification, IsRejectedWithItsFault) {
    const SpecificationFault cases[] = {
        {"", "Wrong analyzer name: "},
        {"All", "Wrong analyzer name: All"},
        {"ga", "Wrong analyzer name: ga"},
        {"GA;", "Wrong analyzer name: "},
        {"GA:1;XX:2", "Wrong analyzer name: XX"},
        {"GA:", "Wrong analyzers format: GA:"},
        {"GA:x", "Wrong analyzers format: GA:x"},
        {"GA:1,", "Wrong analyzers format: GA:1,"},
        {"GA:1:2", "Wrong analyzers format: GA:1:2"},
        {"64+GA:9999999999", "Wrong analyzers format: 64+GA:9999999999"},
    };
    for (const SpecificationFault& row : cases) {
        EXPECT_EQ(Orvanta::ErrorOf<ConfigException>([&] { static_cast<void>(ParseAnalyzerSpecification(row.text)); }),
                  row.message);
    }
}

TEST(LevelTable, PassesWhatTheSpecificationNames) {
    const LevelTable open;
    const LevelTable table(ParseAnalyzerSpecification("GA:2;64;OP:0,4,9"));
    for (std::uint32_t level = 0; level < 6; ++level) {
        EXPECT_TRUE(open.Passes("V501", level));
        const bool hasNoLevel = level == 0 || level > 3;
        EXPECT_EQ(table.Passes("V501", level), hasNoLevel || level == 2);
        EXPECT_TRUE(table.Passes("V101", level));
        EXPECT_EQ(table.Passes("V801", level), hasNoLevel);
        EXPECT_EQ(table.Passes("V3501", level), hasNoLevel);
        EXPECT_TRUE(table.Passes("V4000", level));
    }
}

} // namespace
} // namespace OrvlogConverter
