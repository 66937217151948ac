// What explain and verify say of real compilers, by other ways to the same answer.

#include "e2e/support/SandboxTest.h"

#include <nlohmann/json.hpp>

#include <string>

namespace Orvanta {

namespace {

using InspectRealTest = SandboxTest;

TEST_F(InspectRealTest, LineOfExplainWorksWhenPasted) {
    sandbox.Write("a b's/it's.c", "NAME VALUE FROM_SHELL\n");
    sandbox.AddEntry(
        {{"gcc", "-DNAME=\"$HOME\"", "-DVALUE='`x`' \\", "-c", "it's.c"}, sandbox.Path("a b's"), {{"CPATH", "a $b"}}});
    sandbox.WriteDatabase();
    const RunResult explained = sandbox.Run({"explain", "--json", "it's.c"});
    ASSERT_EQ(explained.exitCode, 0) << explained;
    const nlohmann::json unit = nlohmann::json::parse(explained.output)["units"].at(0);
    const std::string line = unit["preprocessing"]["line"].get<std::string>();
    EXPECT_NE(line.find("CPATH='a $b'"), std::string::npos) << line;
    const RunResult pasted = RunningDriver({"/bin/sh", "-c", line}, "/", sandbox.DriverEnvironment()).Wait();
    EXPECT_EQ(pasted.exitCode, 0) << line << pasted;
    const std::string text = sandbox.Read("temporary/1_it's.c.Orvanta.i");
    EXPECT_NE(text.find("\"$HOME\" '`x`' \\ FROM_SHELL"), std::string::npos) << text;
}

} // namespace

} // namespace Orvanta
