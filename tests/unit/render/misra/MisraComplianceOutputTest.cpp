#include "render/misra/MisraComplianceOutput.h"

#include "report/Exceptions.h"
#include "support/TestFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace OrvlogConverter {
namespace {

using Orvanta::TestFolder;
using testing::HasSubstr;

ReportMessage Finding(std::string code, std::string sastId, bool isMarked = false) {
    ReportMessage message;
    message.code = std::move(code);
    message.sastId = std::move(sastId);
    message.falseAlarm = isMarked;
    return message;
}

class MisraComplianceReport : public testing::Test {
protected:
    /// What is written of the findings.
    std::string Write(const std::vector<ReportMessage>& findings) {
        MisraComplianceOutput output(folder_ / "r.txt", settings_);
        for (const ReportMessage& finding : findings) {
            output.Write(finding);
        }
        output.End();
        return folder_.Read("r.txt");
    }

    /// The same without its lines that speak of no finding.
    std::string WriteShort(const std::vector<ReportMessage>& findings) {
        std::istringstream lines(Write(findings));
        std::string text;
        for (std::string line; std::getline(lines, line);) {
            if (!line.ends_with("          0                0  Compliant")) {
                text += line + "\n";
            }
        }
        return text;
    }

    void Plan(const std::string& text) {
        settings_.plan = ReadMisraCategoryPlan(folder_.Write("plan", text), settings_.editions);
    }

    void Checked(const std::string& text) {
        const auto checked = std::make_shared<MisraChecked>();
        checked->ReadFile(folder_.Write("checked", text));
        settings_.checked = checked;
    }

    TestFolder folder_;
    MisraSettings settings_;
};

TEST_F(MisraComplianceReport, CountsViolationsAndDeviationsByGuideline) {
    Plan("# agreed on\n\nMISRA-C-8.13 = required\nMISRA-C-15.5=Disapplied # why\nMISRA-C-2.3 = Advisory\r\n");
    settings_.marks = MisraMarks::Deviations;
    EXPECT_EQ(WriteShort({
                  Finding("V2567", "MISRA-C-8.13"),
                  Finding("V2567", "MISRA C:2012 Rule 8.13"),
                  Finding("V2500", "MISRA-C-8.2", true),
                  Finding("V2501", "MISRA-C-15.5"),
                  Finding("V2502", ""),
                  Finding("V501", ""),
                  Finding("V2503", "MISRA-C-10.1", true),
                  Finding("V2503", "MISRA-C-99.1"),
                  Finding("V2503", "MISRA-seven"),
              }),
              "MISRA compliance\n"
              "\n"
              "MISRA C:2023\n"
              "Guideline                  Category               Violations       Deviations  State\n"
              "MISRA-C-8.2                Required                        0                1  Deviations\n"
              "MISRA-C-8.13               Required (Advisory)             2                0  Violations\n"
              "MISRA-C-10.1               Required                        0                1  Deviations\n"
              "MISRA-C-15.5               Disapplied (Advisory)           1                0  Disapplied\n"
              "MISRA-C-99.1               Unknown                         1                0  No such guideline\n"
              "\n"
              "Diagnostics of no known guideline\n"
              "Guideline                  Category               Violations       Deviations  State\n"
              "V2502                      Unknown                         1                0  No such guideline\n"
              "\n"
              "Identifiers that name no guideline\n"
              "MISRA-seven: 1 finding\n"
              "\n"
              "Required: 2 violations, 2 deviations\n"
              "Disapplied: 1 violation, 0 deviations\n"
              "Unknown: 2 violations, 0 deviations\n"
              "No list says which guidelines were checked: those without findings are taken for checked.\n"
              "Not compliant: 1 mandatory or required guideline violated, 3 identifiers of no known guideline\n");
}

TEST_F(MisraComplianceReport, JudgesByTheMostBindingGuidelines) {
    struct Case {
        const char* sastId;
        bool isMarked;
        MisraMarks marks;
        const char* line;
        bool isCompliant;
    };

    const Case cases[] = {
        {"MISRA-C-8.13", false, MisraMarks::Deviations, "1                0  Violations\n", true}, // advisory
        {"MISRA-C-8.2", true, MisraMarks::Deviations, "0                1  Deviations\n", true},
        {"MISRA-C-8.2", true, MisraMarks::FalsePositives, "0                1  Compliant\n", true},
        {"MISRA-C-8.2", false, MisraMarks::Deviations, "1                0  Violations\n", false},
        {"MISRA-C-9.1", true, MisraMarks::Deviations, "0                1  Violations\n", false}, // mandatory
        {"MISRA-C-9.1", true, MisraMarks::FalsePositives, "0                1  Compliant\n", true},
        {"MISRA-CPP-1-0-2", false, MisraMarks::Deviations, "1                0  Violations\n", false}, // document
        {"MISRA-C-99.9", true, MisraMarks::Deviations, "0                1  No such guideline\n", false},
    };
    for (const Case& row : cases) {
        settings_.marks = row.marks;
        const std::string text = Write({Finding("V2500", row.sastId, row.isMarked)});
        EXPECT_THAT(text, HasSubstr(row.line)) << row.sastId;
        EXPECT_EQ(text.ends_with("\nCompliant\n"), row.isCompliant) << row.sastId << text;
    }
}

TEST_F(MisraComplianceReport, NamesWhatWasNotChecked) {
    settings_.editions.Choose(MisraEditionNamed("C:2012"));
    Checked("MISRA-C-8.2, Dir 4.6\n# more\nMISRA-C-8.13\n");
    const std::string text = Write({});
    EXPECT_THAT(
        text, HasSubstr("MISRA-C-DIR-4.6            Advisory                        0                0  Compliant\n"));
    EXPECT_THAT(
        text,
        HasSubstr("MISRA-C-9.1                Mandatory                       0                0  Not checked\n"));
    EXPECT_TRUE(text.ends_with("\nNot compliant: 119 mandatory or required guidelines not checked\n")) << text;

    std::string all;
    for (const auto& [guideline, category] : MisraEditionNamed("C:2012").categories) {
        all += category == MisraCategory::Advisory ? "" : guideline.Name() + "\n";
    }
    Checked(all);
    EXPECT_TRUE(Write({}).ends_with("\n\nCompliant\n"));
}

TEST_F(MisraComplianceReport, IsNoVerdictWhenNothingWasChecked) {
    settings_.editions.Choose(MisraEditionNamed("C:2023"));
    EXPECT_THROW(Write({Finding("V501", "")}), ConfigException);
    EXPECT_EQ(folder_.Read("r.txt"), "MISRA compliance\n\nNothing was checked\n");
}

TEST(MisraChecked, OfReportsIsWhatAllOfThemTell) {
    const auto names = [](std::initializer_list<const char*> members) {
        MisraChecked checked;
        for (const char* member : members) {
            checked.AddReport(member);
        }
        std::string text;
        for (const MisraGuideline& guideline : checked.Guidelines()) {
            text += guideline.Name() + " ";
        }
        return checked.IsKnown() ? text : "unknown";
    };
    const char* const both = R"({"analysis-mode": 36, "guidelines": ["MISRA-C-8.1", "MISRA-C-8.2"]})";
    EXPECT_EQ(names({both}), "MISRA-C-8.1 MISRA-C-8.2 ");
    EXPECT_EQ(names({both, R"({"guidelines": ["MISRA-C-8.2"]})"}), "MISRA-C-8.2 ");
    EXPECT_EQ(names({both, R"({"analysis-mode": 4})"}), "unknown");
    EXPECT_EQ(names({both, ""}), "unknown");
    EXPECT_EQ(names({}), "unknown");
    EXPECT_THROW(names({"[1]"}), ParseException);
}

TEST(MisraCategoryPlan, IsRejectedWithItsFault) {
    const TestFolder folder;
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"\nMISRA-C-8.13\n", ", line 2: \"MISRA-C-8.13\", expected a guideline, \"=\" and its category"},
        {"V501 = Required", ", line 1: \"V501 = Required\", expected a guideline, \"=\" and its category"},
        {"MISRA-C-8.13 = Never",
         ", line 1: wrong category \"Never\", expected Mandatory, Required, Advisory or Disapplied"},
        {"MISRA-C-9.1 = Required", ", line 1: MISRA-C-9.1 is Mandatory and can't become Required"},
        {"MISRA-C-8.2 = Disapplied", ", line 1: MISRA-C-8.2 is Required and can't become Disapplied"},
        {"MISRA-CPP-1-0-2 = Disapplied", ", line 1: MISRA-CPP-1-0-2 is Document and can't become Disapplied"},
        {"#\nMISRA-C-99.1 = Required", ", line 2: MISRA C:2023 has no guideline \"MISRA-C-99.1\""},
        {"V2500=Disapplied\nMISRA-C-8.2=Required\nV2500=Advisory", ", line 3: V2500 stands twice"},
    };
    for (const auto& [text, fault] : cases) {
        const std::string path = folder.Write("plan", text);
        try {
            static_cast<void>(ReadMisraCategoryPlan(path, {}));
            ADD_FAILURE() << text << " was taken";
        } catch (const ConfigException& error) {
            EXPECT_EQ(error.what(), path + std::string(fault));
        }
    }
    EXPECT_THROW(static_cast<void>(ReadMisraCategoryPlan(folder / "none", {})), FilesystemException);
}

} // namespace
} // namespace OrvlogConverter
