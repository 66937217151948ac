#include "bundled/FileAlias.h"
#include "bundled/MergedFindings.h"
#include "bundled/UnitInformation.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "support/TestFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>

namespace Orvanta {
namespace {

using OrvlogConverter::ReportMessage;
using testing::ElementsAre;

// Every cut of the file, and more than the file, is refused by its name.
void ExpectOnlyTheWholeIsRead(const TestFolder& folder, const std::function<void(const std::string&)>& read) {
    const std::string whole = folder.Read("file");
    const auto refusal = [&](const std::string& text) -> std::string {
        try {
            read(folder.Write("damaged", text));
        } catch (const ZelmException& error) {
            return error.what();
        }
        return "";
    };
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_THAT(refusal(whole.substr(0, size)), testing::StartsWith((folder / "damaged") + ": is damaged")) << size;
    }
    EXPECT_NE(refusal(whole + "x"), "");
    EXPECT_EQ(refusal(whole), "");
    EXPECT_THROW(read(folder / "missing"), ZelmException);
}

TEST(UnitInformationFile, ComesBackAsItWasWritten) {
    const TestFolder folder;
    const std::string source = "/p/new\nline \"\303\244\".c";
    const MarkedFile files[] = {
        {source, false, true},
        {"/p/a.h", false, true},
        {"/p/b.h", false, true},
    };
    const FactGroup group = {
        "Null pointer", "", {"<u file=\"" + AliasOf(source) + "\"/>", "<u file=\"" + AliasOf("/p/b.h") + "\"/>"}};
    const FactGroup other = {"ctu", "k", {"<c/>"}};
    UnitInformation unit;
    unit.facts = {group, other};
    unit.files = FilesOfFacts(unit.facts, files);
    unit.functions = {{"f1.h:2:3", "S::set(int*)", "f2.cpp:4:5"}, {"f1.h:6:7", "get", ""}};
    unit.analysis = {7, ~std::uint64_t{0}};
    unit.findings = {"{}", ""};
    unit.tallies = "<}tally{>a\tb\n";
    EXPECT_THAT(unit.files, ElementsAre(source, "/p/b.h"));

    WriteUnitInformation(folder / "file", unit);
    EXPECT_EQ(ReadUnitInformation(folder / "file"), unit);
    ExpectOnlyTheWholeIsRead(folder, [](const std::string& path) { static_cast<void>(ReadUnitInformation(path)); });
}

TEST(MergedFile, GivesAUnitTheFindingsOfItsOwnFiles) {
    const TestFolder folder;
    std::vector<ReportMessage> findings(3);
    for (std::size_t i = 0; i < findings.size(); ++i) {
        findings[i].code = "External";
        findings[i].message = std::to_string(i);
        findings[i].positions.resize(1);
        findings[i].positions[0].line = 3;
    }
    findings[0].positions[0].file = "/p/new\nline.h";
    findings[1].positions[0].file = "/p/other.c";
    findings[2].positions[0].file = "/opt/system.h";
    WriteMergedFindings(folder / "file", findings);
    const MarkedFile files[] = {
        {"/p/u.c", false, true},
        {"/p/new\nline.h", false, true},
        {"/opt/system.h", true, true},
    };
    EXPECT_THAT(ReadMergedFindings(folder / "file", files), ElementsAre(findings[0]));
    ExpectOnlyTheWholeIsRead(folder,
                             [&](const std::string& path) { static_cast<void>(ReadMergedFindings(path, files)); });
}

} // namespace
} // namespace Orvanta
