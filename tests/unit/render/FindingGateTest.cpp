#include "render/FindingGate.h"

#include "report/DocumentationLink.h"
#include "report/Exceptions.h"

#include <gtest/gtest.h>

namespace OrvlogConverter {
namespace {

struct GateCase {
    const char* specification;
    const char* code;
    std::uint32_t level;
    bool isMatch;
};

TEST(FindingGate, MatchesAnalyzersAndLevels) {
    const GateCase cases[] = {
        {"all", "V501", 3, true},   {"ALL", "V9000", 0, true},     {"all", "V008", 1, true},
        {"all", "Help:", 0, false}, {"all", "V014", 1, false},     {"GA", "V501", 3, true},
        {"GA", "V501", 0, false},   {"GA:1", "V501", 1, true},     {"GA:1", "V501", 2, false},
        {"GA:1", "V112", 1, false}, {"GA:1+64", "V112", 3, true},  {"GA", "External", 1, true},
        {"GA", "V9000", 1, false},  {"FAIL;GA", "V008", 1, false}, {"FAIL", "V005", 1, true},
    };
    for (const GateCase& row : cases) {
        ReportMessage message;
        message.code = row.code;
        message.level = row.level;
        EXPECT_EQ(FindingGate(row.specification).Matches(message), row.isMatch) << row.specification << " " << row.code;
    }
    EXPECT_THROW(FindingGate("GA;x"), ConfigException);
}

} // namespace
} // namespace OrvlogConverter
