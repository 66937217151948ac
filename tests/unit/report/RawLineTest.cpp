#include "report/RawLine.h"

#include "report/Exceptions.h"
#include "support/ErrorOf.h"

#include <gtest/gtest.h>

namespace OrvlogConverter {
namespace {

MessagePosition At(std::string file, std::uint32_t line) {
    return {std::move(file), line, "p", "c", "n", 0, 0, 0};
}

// Only the first position of a message has line texts.
MessagePosition FurtherAt(std::string file, std::uint32_t line) {
    return {std::move(file), line, "", "", "", 0, 0, 0};
}

std::string Written(const ReportMessage& message) {
    std::string line;
    AppendRawLine(line, message);
    return line;
}

struct RawCase {
    ReportMessage message;
    std::string_view line; // behind the tag and the mode
};

TEST(RawLine, HoldsFourteenFields) {
    const std::vector<MessagePosition> oneFile = {At("a.c", 12), At("a.c", 40), At("A.C", 41)};
    const std::vector<MessagePosition> otherFile = {At("a.c", 1), At("b.c", 2)};
    const ReportMessage full = {"V501", "text", "X", oneFile, 476, 2, true};
    const ReportMessage twoFiles = {"V1", "", "", otherFile, 0, 0, false};
    const ReportMessage noCwe = {"V1", "", "A,B", {At("a.c", 1)}, 0, 1, false};
    const ReportMessage nowhere = {"V1", "", "", {}, 5, 3, false};
    const ReportMessage nasty = {"V1", "a<#~>b\r\n<#~", "<#~>", {At("x\ny", 1)}, 0, 1, false};
    const RawCase cases[] = {
        {full, "12<#~>a.c<#~>error<#~>V501<#~>text<#~>true<#~>2<#~>p<#~>c<#~>n<#~>12, 40, 41<#~>CWE-476,X"},
        {twoFiles, "1<#~>a.c<#~>error<#~>V1<#~><#~>false<#~>0<#~>p<#~>c<#~>n<#~><#~>"},
        {noCwe, "1<#~>a.c<#~>error<#~>V1<#~><#~>false<#~>1<#~>p<#~>c<#~>n<#~>1<#~>A,B"},
        {nowhere, "0<#~><#~>error<#~>V1<#~><#~>false<#~>3<#~><#~><#~><#~><#~>CWE-5"},
        {nasty, "1<#~>x y<#~>error<#~>V1<#~>a<# ~>b  <#~<#~>false<#~>1<#~>p<#~>c<#~>n<#~>1<#~><# ~>"},
    };
    for (const RawCase& row : cases) {
        EXPECT_EQ(Written(row.message), "Zelm64-EM<#~>full<#~>" + std::string(row.line));
    }
}

struct TailCase {
    std::string_view tail; // of the line, from the field of the false alarm on
    ReportMessage message;
};

TEST(RawLine, IsReadIntoOneMessage) {
    const ReportMessage one = {"V1", "m", "", {At("a.c", 3)}, 0, 2, false};
    ReportMessage several = one;
    several.positions.push_back(FurtherAt("a.c", 40));
    several.positions.push_back(FurtherAt("a.c", 41));
    ReportMessage falseAlarm = one;
    falseAlarm.falseAlarm = true;
    const TailCase cases[] = {
        {"false<#~>2<#~>p<#~>c<#~>n<#~>3", one},
        {"false<#~>2<#~>p<#~>c<#~>n<#~><#~>", one},
        {"true<#~>2<#~>p<#~>c<#~>n<#~>3<#~>", falseAlarm},
        {"True<#~>2<#~>p<#~>c<#~>n<#~>3<#~>", one},
        {"false<#~> 2 <#~>p<#~>c<#~>n<#~>3, 40,41<#~>", several},
    };
    for (const TailCase& row : cases) {
        const std::string line = "Zelm64-EM<#~>any<#~>3<#~>a.c<#~>any<#~>V1<#~>m<#~>" + std::string(row.tail);
        EXPECT_EQ(ReadRawLine(line), row.message) << row.tail;
    }
}

struct StandardsCase {
    std::string_view field;
    std::uint32_t cwe;
    std::string_view sastId;
};

TEST(RawLine, NamesTheCweBeforeTheFurtherStandard) {
    const StandardsCase cases[] = {
        {"", 0, ""},
        {"CWE-476,X", 476, "X"},
        {"CWE-476", 476, ""},
        {"A,B", 0, "A,B"},
        {"CWE-1,A,CWE-2", 1, "A,CWE-2"},
        {"CWE-x", 0, "CWE-x"},
        {"X,CWE-476", 476, "X"},
    };
    for (const StandardsCase& row : cases) {
        const ReportMessage message =
            ReadRawLine("Zelm64-EM<#~>full<#~>3<#~>a.c<#~>error<#~>V1<#~>m<#~>false<#~>2<#~>p<#~>c<#~>n<#~>3<#~>" +
                        std::string(row.field));
        EXPECT_EQ(message.cwe, row.cwe) << row.field;
        EXPECT_EQ(message.sastId, row.sastId) << row.field;
    }
}

std::string WithSeparators(std::string_view fields) {
    std::string line;
    for (const char character : fields) {
        line += character == '|' ? "<#~>" : std::string(1, character);
    }
    return line;
}

struct RawFaultCase {
    std::string_view fields; // with "|" for the separator
    std::string_view error;
};

TEST(RawLine, IsRejectedWithItsFault) {
    const RawFaultCase cases[] = {
        {"", "error parsing old format message"},
        {"text", "error parsing old format message"},
        {"Zelm64-EM|f|1|a|e|V1|m|false|1|||", "error parsing old format message"},
        {"Zelm64-EM|f|1|a|e|V1|m|false|1||||1||", "error parsing old format message"},
        {"Zelm64-EN|f|1|a|e|V1|m|false|1||||1|", "error parsing old format message"},
        {" Zelm64-EM|f|1|a|e|V1|m|false|1||||1|", "error parsing old format message"},
        {"Zelm64-EM|f||a|e|V1|m|false|1||||1|", "invalid stoi argument"},
        {"Zelm64-EM|f|1x|a|e|V1|m|false|1||||1|", "invalid stoi argument"},
        {"Zelm64-EM|f|1|a|e|V1|m|false|high||||1|", "invalid stoi argument"},
        {"Zelm64-EM|f|1|a|e|V1|m|false|1||||1, x|", "invalid stoi argument"},
        {"Zelm64-EM|f|4294967296|a|e|V1|m|false|1||||1|", "stoi argument out of range"},
        {"Zelm64-EM|f|1|a|e|V1|m|false|-1||||1|", "stoi argument out of range"},
    };
    for (const RawFaultCase& row : cases) {
        EXPECT_EQ(Orvanta::ErrorOf<ParseException>([&] { static_cast<void>(ReadRawLine(WithSeparators(row.fields))); }),
                  row.error)
            << row.fields;
    }
}

} // namespace
} // namespace OrvlogConverter
