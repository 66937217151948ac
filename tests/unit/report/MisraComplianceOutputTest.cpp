#include "report/MisraComplianceOutput.h"

#include "report/Exceptions.h"
#include "report/ReportMessage.h"
#include "support/ErrorOf.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

namespace OrvlogConverter {
namespace {

using Orvanta::TestFolder;
using Deviations = MisraComplianceOutput::Deviations;

ReportMessage Finding(const std::string& code, const std::string& sastId, bool falseAlarm = false) {
    return {code, "m", sastId, {}, 0, 1, falseAlarm};
}

struct GuidelineCase {
    std::string_view name;
    std::string_view shown;
    MisraCategory category;
};

TEST(MisraGuideline, IsKnownByItsNameOrCode) {
    const GuidelineCase cases[] = {
        {"MISRA-C-8.13",    "MISRA-C-8.13",    MisraCategory::Advisory },
        {"misra-c-9.1",     "MISRA-C-9.1",     MisraCategory::Mandatory},
        {"MISRA-C-22.10",   "MISRA-C-22.10",   MisraCategory::Required },
        {"MISRA-C-99.1",    "MISRA-C-99.1",    MisraCategory::Unknown  },
        {"MISRA-C-8.99",    "MISRA-C-8.99",    MisraCategory::Unknown  },
        {"MISRA-C-DIR-4.6", "MISRA-C-DIR-4.6", MisraCategory::Advisory },
        {"MISRA-CPP-5-0-1", "MISRA-CPP-5-0-1", MisraCategory::Required },
        {"MISRA-CPP-5-0-2", "MISRA-CPP-5-0-2", MisraCategory::Advisory },
        {"V2501",           "V2501",           MisraCategory::Unknown  },
    };
    for (const GuidelineCase& row : cases) {
        const std::optional<MisraGuideline> guideline = ParseMisraGuideline(row.name);
        ASSERT_TRUE(guideline.has_value()) << row.name;
        EXPECT_EQ(guideline->Name(), row.shown);
        EXPECT_EQ(guideline->Category(), row.category) << row.name;
    }
    for (const std::string_view none :
         {"V501", "MISRA-C-8", "MISRA-C-8.13.1", "MISRA-C-8.x", "MISRA-CPP-5-0", "AUTOSAR-M5-0-1", ""}) {
        EXPECT_FALSE(ParseMisraGuideline(none).has_value()) << none;
    }
}

TEST(MisraGuideline, ComesFromTheIdentifiersBeforeTheCode) {
    const auto names = [](const ReportMessage& message) {
        std::string all;
        for (const MisraGuideline& guideline : MisraGuidelinesOf(message)) {
            all += guideline.Name() + " ";
        }
        return all;
    };
    EXPECT_EQ(names(Finding("V2501", "MISRA-C-8.13")), "MISRA-C-8.13 ");
    EXPECT_EQ(names(Finding("V2501", "")), "V2501 ");
    EXPECT_EQ(names(Finding("V2501", "AUTOSAR-A1")), "V2501 ");
    EXPECT_EQ(names(Finding("V501", "MISRA-C-8.1, MISRA-CPP-5-0-1,MISRA-C-8.1")), "MISRA-C-8.1 MISRA-CPP-5-0-1 ");
    EXPECT_EQ(names(Finding("V501", "")), "");
}

TEST(MisraComplianceOutput, CountsViolationsAndDeviationsByGuideline) {
    const TestFolder folder;
    const std::string plan =
        folder.Write("plan", "# agreed on\n\nMISRA-C-8.13 = required\nMISRA-C-15.5=Disapplied # why\n"
                             "MISRA-C-2.3 = Advisory\r\n");
    const ReportMessage findings[] = {
        Finding("V2567", "MISRA-C-8.13"),
        Finding("V2567", "MISRA-C-8.13"),
        Finding("V2500", "MISRA-C-8.2", true),
        Finding("V2501", "MISRA-C-15.5"),
        Finding("V2502", ""),
        Finding("V501", ""),
        Finding("V2503", "MISRA-C-10.1", true),
    };
    MisraComplianceOutput output(folder / "all.txt", ReadMisraCategoryPlan(plan), Deviations::Count);
    std::size_t taken = 0;
    for (const ReportMessage& finding : findings) {
        taken += output.Write(finding) ? 1U : 0U;
    }
    output.End();
    EXPECT_EQ(taken, 6U);
    EXPECT_EQ(folder.Read("all.txt"), "MISRA compliance\n"
                                      "\n"
                                      "Guideline           Category               Violations  Deviations  State\n"
                                      "MISRA-C-2.3         Advisory                        0           0  Compliant\n"
                                      "MISRA-C-8.2         Required                        0           1  Deviations\n"
                                      "MISRA-C-8.13        Required (Advisory)             2           0  Violations\n"
                                      "MISRA-C-10.1        Required                        0           1  Deviations\n"
                                      "MISRA-C-15.5        Disapplied (Advisory)           1           0  Disapplied\n"
                                      "V2502               Unknown                         1           0  Violations\n"
                                      "\n"
                                      "Required: 2 violations, 2 deviations\n"
                                      "Disapplied: 1 violations, 0 deviations\n"
                                      "Unknown: 1 violations, 0 deviations\n"
                                      "Not compliant\n");
}

struct VerdictCase {
    const char* sastId;
    bool isMarked;
    Deviations deviations;
    const char* verdict;
};

TEST(MisraComplianceOutput, JudgesByTheMostBindingGuidelines) {
    const TestFolder folder;
    const VerdictCase cases[] = {
        {"MISRA-C-8.13", false, Deviations::Count, "\nCompliant\n"    }, // advisory
        {"MISRA-C-8.2",  true,  Deviations::Count, "\nCompliant\n"    },
        {"MISRA-C-8.2",  true,  Deviations::None,  "\nNot compliant\n"},
        {"MISRA-C-8.2",  false, Deviations::Count, "\nNot compliant\n"},
        {"MISRA-C-9.1",  true,  Deviations::Count, "\nNot compliant\n"}, // mandatory: no deviation
    };
    for (const VerdictCase& row : cases) {
        MisraComplianceOutput output(folder / "r.txt", {}, row.deviations);
        output.Write(Finding("V2500", row.sastId, row.isMarked));
        output.End();
        EXPECT_TRUE(folder.Read("r.txt").ends_with(row.verdict)) << row.sastId << folder.Read("r.txt");
    }
}

TEST(MisraCategoryPlan, IsRejectedWithItsFault) {
    const TestFolder folder;
    const std::string form = ", expected a guideline, \"=\" and its category";
    const std::string words = ", expected Mandatory, Required, Advisory or Disapplied";
    const std::pair<std::string_view, std::string> cases[] = {
        {"\nMISRA-C-8.13\n",                   "line 2: \"MISRA-C-8.13\"" + form                            },
        {"V501 = Required",                    "line 1: \"V501 = Required\"" + form                         },
        {"MISRA-C-8.13 = Never",               "line 1: wrong category \"Never\"" + words                   },
        {"MISRA-C-9.1 = Required",             "line 1: MISRA-C-9.1 is Mandatory and can't become Required" },
        {"MISRA-C-8.2 = Disapplied",           "line 1: MISRA-C-8.2 is Required and can't become Disapplied"},
        {"V2500=Disapplied\n\nV2500=Advisory", "line 3: V2500 stands twice"                                 },
    };
    for (const auto& [text, fault] : cases) {
        const std::string path = folder.Write("plan", text);
        EXPECT_EQ(Orvanta::ErrorOf<ConfigException>([&] { static_cast<void>(ReadMisraCategoryPlan(path)); }),
                  path + ", " + fault);
    }
    EXPECT_THROW(static_cast<void>(ReadMisraCategoryPlan(folder / "none")), FilesystemException);
}

} // namespace
} // namespace OrvlogConverter
