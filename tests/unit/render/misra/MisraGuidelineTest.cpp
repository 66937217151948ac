#include "render/misra/MisraGuideline.h"

#include "render/misra/MisraEdition.h"
#include "report/ReportMessage.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace OrvlogConverter {
namespace {

TEST(MisraGuideline, IsReadInEveryUsualSpelling) {
    const std::pair<const char*, const char*> rows[] = {
        {"MISRA-C-7.5", "MISRA-C-7.5"},
        {"MISRA C:2012 Rule 8.13", "MISRA-C-8.13"},
        {"misra-c2012-17.7", "MISRA-C-17.7"},
        {"misra_c_2023_rule_17.7", "MISRA-C-17.7"},
        {"Rule 8.13", "MISRA-C-8.13"},
        {"Dir 4.6", "MISRA-C-DIR-4.6"},
        {"MISRA-C-DIR-4.6", "MISRA-C-DIR-4.6"},
        {"D4.6", "MISRA-C-DIR-4.6"},
        {"MISRA C:2023 Directive 4.6", "MISRA-C-DIR-4.6"},
        {"MISRA-CPP-7-5-4", "MISRA-CPP-7-5-4"},
        {"MISRA C++:2008 Rule 7-5-4", "MISRA-CPP-7-5-4"},
        {"misra-cpp2008-7.5.4", "MISRA-CPP-7-5-4"},
        {"MISRA-CPP-2023-6.4.1", "MISRA-CPP-2023-6.4.1"},
        {"MISRA C++:2023 Rule 6.4.1", "MISRA-CPP-2023-6.4.1"},
        {"MISRA C++:2023 Dir 0.3.1", "MISRA-CPP-2023-0.3.1"},
        {"MISRA-CPP-6.4.1", "MISRA-CPP-2023-6.4.1"},
        {"V2501", "V2501"},
    };
    for (const auto& [spelling, name] : rows) {
        const auto guideline = ParseMisraGuideline(spelling);
        ASSERT_TRUE(guideline) << spelling;
        EXPECT_EQ(guideline->Name(), name) << spelling;
        EXPECT_EQ(ParseMisraGuideline(name), guideline) << "what reports write is read";
    }
    for (const char* text :
         {"", "8.13", "CWE-8.13", "V501", "MISRA", "MISRA-C", "MISRA-C-8", "MISRA-C-8.13.1", "MISRA-C-8.13x",
          "MISRA-C-99999999999.1", "MISRA-CPP-7-5", "MISRA-CPP-7.5-4", "D4.6.1.1"}) {
        EXPECT_FALSE(ParseMisraGuideline(text)) << text;
    }
}

TEST(MisraGuideline, OfAMessageComeFromItsIdentifiersThenFromItsCode) {
    const auto names = [](const char* code, const char* sastId) {
        ReportMessage message;
        message.code = code;
        message.sastId = sastId;
        const MisraNames found = MisraNamesOf(message);
        std::string text;
        std::for_each(found.guidelines.begin(), found.guidelines.end(),
                      [&](const MisraGuideline& guideline) { text += guideline.Name() + " "; });
        std::for_each(found.unreadable.begin(), found.unreadable.end(),
                      [&](const std::string& name) { text += "?" + name + " "; });
        return text;
    };
    EXPECT_EQ(names("V2501", "MISRA-C-7.1"), "MISRA-C-7.1 ");
    EXPECT_EQ(names("V2501", ""), "V2501 ");
    EXPECT_EQ(names("V501", "MISRA C:2012 Rule 8.1; MISRA-CPP-5-0-1,MISRA-C-8.1 MISRA-C-DIR-4.6"),
              "MISRA-C-8.1 MISRA-CPP-5-0-1 MISRA-C-DIR-4.6 ");
    EXPECT_EQ(names("V2501", "CERT-X, MISRA-C-eight"), "?MISRA-C-eight ");
    EXPECT_EQ(names("V501", "CERT-X"), "");
}

TEST(MisraEdition, EachIsWholeAndKnowsItsCategories) {
    std::string sizes;
    for (const MisraEdition& edition : AllMisraEditions()) {
        sizes += std::string(edition.name) + " " + std::to_string(edition.categories.size()) + "\n";
    }
    EXPECT_EQ(sizes, "MISRA C:2012 159\nMISRA C:2012+AMD2 175\nMISRA C:2023 221\nMISRA C:2025 223\n"
                     "MISRA C++:2008 228\nMISRA C++:2023 179\n");
    const auto category = [](const char* edition, const char* name) {
        return std::string(NameOf(MisraEditionNamed(edition).CategoryOf(*ParseMisraGuideline(name))));
    };
    EXPECT_EQ(category("C:2012", "MISRA-C-13.6"), "Mandatory");
    EXPECT_EQ(category("misra c:2023", "MISRA-C-13.6"), "Required");
    EXPECT_EQ(category("C:2012", "Dir 4.14"), "Unknown");
    EXPECT_EQ(category("C:2023", "Dir 4.14"), "Required");
    EXPECT_EQ(category("C++:2008", "MISRA-CPP-1-0-2"), "Document");
}

} // namespace
} // namespace OrvlogConverter
