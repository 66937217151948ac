#include "report/MessageLine.h"

#include "report/DocumentationLink.h"
#include "report/Exceptions.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace OrvlogConverter {
namespace {

MessagePosition At(std::string file, std::uint32_t line, const std::string& text = {}) {
    return {std::move(file), line, text, text + text, text, 0, 0, 0};
}

TEST(MessageLine, GivesBackInBothFormsWhatItHolds) {
    const ReportMessage messages[] = {
        {"V501", "plain", "", {At("/p/a.c", 1)}, 0, 1, false},
        {"External", "\t'\"\\ \x01 {} [x]", "A,B", {At(R"(C:\a "b"\c#=.c)", 2147483647, "\t\"x\\\"")}, 7, 3, true},
        {"V1", "{\"code\":\"V2\"}", "X", {At("a.c", 3, "<#~<#~"), At("a.c", 3), At("a.c", 40)}, 0, 2, false},
        {"", "", "", {At("", 0)}, 0, 0, false},
        {"V2", "\xC3\xA9\xE2\x82\xAC", "", {At("/\xC3\xA4/\xF0\x9F\x98\x80.c", 5, "\xC2\xA0")}, 0, 1, false},
    };
    for (const LineFormat format : {LineFormat::Json, LineFormat::Raw}) {
        for (const ReportMessage& message : messages) {
            std::string line;
            AppendMessageLine(line, message, format);
            EXPECT_EQ(ReadMessageLine(line), message) << line;
            EXPECT_EQ(line.find_first_of("\r\n"), std::string::npos) << line;
        }
    }
}

TEST(MessageLine, IsOneReadableLineWhateverTheTextHolds) {
    const std::string nasty = "a<#~>b\r\nc\xFF\xC3<<#~>#~>\n\xE9";
    const ReportMessage message = {nasty, nasty, nasty, {At(nasty, 1, nasty), At(nasty, 2)}, 3, 1, true};
    for (const LineFormat format : {LineFormat::Json, LineFormat::Raw}) {
        std::string line;
        AppendMessageLine(line, message, format);
        EXPECT_EQ(line.find_first_of("\r\n"), std::string::npos) << line;
        const ReportMessage read = ReadMessageLine(line);
        EXPECT_EQ(read.cwe, 3U);
        EXPECT_EQ(read.positions.size(), 2U);
        std::string again;
        AppendMessageLine(again, read, format);
        EXPECT_EQ(again, line);
    }
}

TEST(MessageLine, IsJsonOnlyBetweenBraces) {
    for (const std::string_view line : {"", "{", "}", "{} ", " {}", "x.c:3:7: warning: text"}) {
        EXPECT_THROW(static_cast<void>(ReadMessageLine(line)), ParseException) << line;
    }
    EXPECT_THROW(static_cast<void>(ReadMessageLine("{}")), nlohmann::json::out_of_range);
}

TEST(MessageLine, HoldsTheDocumentationLink) {
    std::string line;
    AppendMessageLine(line, DocumentationLinkMessage(), LineFormat::Raw);
    EXPECT_EQ(line,
              "Zelm64-EM<#~>full<#~>0<#~><#~>error<#~>Help:<#~>The documentation for all analyzer warnings is "
              "available here: https://docs.orvanta.example/en/docs/warnings/.<#~>false<#~>0<#~><#~><#~><#~><#~>");
}

} // namespace
} // namespace OrvlogConverter
