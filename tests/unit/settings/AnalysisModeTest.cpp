#include "settings/AnalysisMode.h"

#include "platform/Exceptions.h"
#include "support/ErrorOf.h"

#include <gtest/gtest.h>

#include <string>

namespace Orvanta {
namespace {

struct ModeCase {
    std::string_view text;
    int mask;
};

TEST(AnalysisMode, IsASetOfGroupsOrANumber) {
    const ModeCase cases[] = {
        {"GA", 4},
        {"GA;OP;64", 13},
        {"GA+MISRA", 36},
        {";;GA++CS;", 20}, // empty pieces are skipped
        {"AUTOSAR;GA;GA", 68},
        {"OWASP", 128},
        {"64", 1}, // the group, not the number
        {"63", 63},
        {"65", 65},
        {"1", 1},
        {"2", 2}, // no group has this bit
        {"255", 255},
        {"all", 255},
        {"ALL", 255},
        {"GA;aLl", 255},
    };
    for (const ModeCase& row : cases) {
        EXPECT_EQ(ParseAnalysisMode(row.text), row.mask) << row.text;
    }
}

struct ModeFaultCase {
    std::string_view text;
    std::string_view error;
};

TEST(AnalysisMode, SaysWhatIsWrong) {
    const ModeFaultCase cases[] = {
        {"", "Diagnostic group name is empty!"},
        {"+;", "Diagnostic group name is empty!"},
        {"0", "Diagnostic group parameter was entered as number and was non-positive."},
        {"-64", "Diagnostic group parameter was entered as number and was non-positive."},
        {"256", "Diagnostic group parameter was entered as number and was greater than 255."},
        {"2147483647", "Diagnostic group parameter was entered as number and was greater than 255."},
        {"2147483648", "Wrong diagnostic group name: '2147483648'"},
        {"ga", "Wrong diagnostic group name: 'ga'"},
        {"GA;65", "Wrong diagnostic group name: '65'"},
        {"all;x", "Wrong diagnostic group name: 'x'"},
        {"GA # comment", "Wrong diagnostic group name: 'GA # comment'"},
        {"GA; OP", "Wrong diagnostic group name: ' OP'"},
    };
    for (const ModeFaultCase& row : cases) {
        EXPECT_EQ(ErrorOf<ZelmException>([&] { static_cast<void>(ParseAnalysisMode(row.text)); }), row.error);
    }
}

} // namespace
} // namespace Orvanta
