// Guards against a converter that loses messages, writes over its own input or leaves half a report.

#include "e2e/support/SandboxTest.h"

namespace Orvanta {

namespace {

class ConverterTest : public SandboxTest {
protected:
    ConverterTest() {
        sandbox.Write("r.log", "Zelm64-EM<#~>full<#~>3<#~>|?|/a.c<#~>error<#~>V501<#~>one<#~>false<#~>1<#~><#~>x = a;"
                               "<#~><#~>3<#~>\n"
                               "Zelm64-EM<#~>full<#~>4<#~>|?|/b.c<#~>error<#~>V2567<#~>two<#~>true<#~>2<#~><#~>y<#~>"
                               "<#~>4<#~>MISRA-C-8.13\n");
    }

    RunResult Convert(const Arguments& arguments) const {
        Arguments command{ConverterProgram()};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return RunningDriver(command, sandbox.Path(), sandbox.DriverEnvironment()).Wait();
    }
};

TEST_F(ConverterTest, RendersEveryFormThatIsAskedFor) {
    const RunResult result = Convert({"r.log", "-t", "json", "-t", "raw", "-t", "misra", "-m", "-r", "/p"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(result.output, "Total messages: 2\nFiltered messages: 2\n"); // the second one as a deviation
    const std::string raw = sandbox.Read("r.rawlog");
    const std::size_t secondLine = raw.find('\n') + 1;
    EXPECT_LT(raw.find("Help:"), secondLine);
    EXPECT_EQ(raw.find("Zelm64-EM<#~>full<#~>3<#~>/p/a.c<#~>error<#~>V501<#~>"), secondLine);
    EXPECT_NE(sandbox.Read("r.json").find("\"code\":\"Help:\""), std::string::npos);
    EXPECT_NE(sandbox.Read("r.misra.txt").find("MISRA-C-8.13"), std::string::npos);
}

TEST_F(ConverterTest, FiltersAsItIsTold) {
    const std::pair<Arguments, std::size_t> cases[] = {
        {{}, 1},          {{"-a", "GA:1"}, 1}, {{"-a", "GA:2"}, 0}, {{"-d", "V1,V501"}, 0},
        {{"-w", "x"}, 0}, {{"-w", "xx"}, 1},   {{"-e", "/a."}, 0},
    };
    for (const auto& [options, count] : cases) {
        Arguments arguments = {"r.log", "-t", "json", "-n", "-o", "out.json"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const RunResult result = Convert(arguments);
        EXPECT_EQ(result.exitCode, 0) << result;
        EXPECT_EQ(Report("out.json").size(), count) << result;
        EXPECT_TRUE(result.Says("Filtered messages: " + std::to_string(count) + "\n")) << result;
    }
}

TEST_F(ConverterTest, MergesReportsAndHoldsWhatTheyShareOnce) {
    sandbox.Write("s.log", "c.c:1:1: error: three\n" + sandbox.Read("r.log"));
    const RunResult result = Convert({"r.log", "s.log", "r.log", "-t", "text", "-o", "-", "-r", "/p/"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(result.output, "/p/a.c:3:1: error: one [V501]\nc.c:1:1: error: three [External]\n");
    EXPECT_EQ(result.errors, "Total messages: 7\nFiltered messages: 2\n"); // standard output is the report's

    // What a report says of itself stands once, however often it is converted.
    sandbox.Write("old.json", R"({"version":1,"warnings":[]})");
    for (const char* const report : {"r.log", "1.json", "2.json"}) {
        const std::string next = std::string(report) == "r.log"    ? "1.json"
                                 : std::string(report) == "1.json" ? "2.json"
                                                                   : "3.json";
        EXPECT_EQ(Convert({report, "-t", "json", "-o", next, "-s", "old.json"}).exitCode, 0);
    }
    const std::string last = sandbox.Read("3.json");
    EXPECT_EQ(last.find("Help:"), last.rfind("Help:"));
    EXPECT_EQ(last.find("V014"), last.rfind("V014"));
    EXPECT_EQ(Convert({"3.json", "-t", "json", "-o", "4.json", "-n"}).exitCode, 0);
    EXPECT_EQ(sandbox.Read("4.json").find("Help:"), std::string::npos);
}

TEST_F(ConverterTest, ShowsWhatIsNewAndStopsABuildForIt) {
    sandbox.Write("new.log", "Zelm64-EM<#~>full<#~>33<#~>|?|/a.c<#~>error<#~>V501<#~>one<#~>false<#~>1<#~><#~>x = a;"
                             "<#~><#~>33<#~>\n" // moved
                             "Zelm64-EM<#~>full<#~>4<#~>|?|/b.c<#~>error<#~>V112<#~>size 8<#~>false<#~>2<#~><#~>y<#~>"
                             "<#~>4<#~>\n");
    sandbox.Write("gone.log", sandbox.Read("r.log") + "c.c:1:1: error: three\n");
    const RunResult compared =
        Convert({"new.log", "-t", "text", "-o", "out.txt", "--diff", "gone.log", "--fail-on", "GA"});
    EXPECT_EQ(compared.exitCode, 0) << compared;
    EXPECT_EQ(compared.output, "Total messages: 2\nFiltered messages: 1\nFindings that stop the build: 0\n"
                               "Gone since gone.log: 1\n");
    EXPECT_EQ(sandbox.Read("out.txt"), "|?|/b.c:4:1: warning: size 8 [V112]\n");

    const std::string base = R"({"version":2,"warnings":[{"FileName":"b.c","ErrorCode":"V112","Message":"size _",)"
                             R"("CodePrev":0,"CodeCurrent":121,"CodeNext":0}]})";
    sandbox.Write("base.json", base);
    const std::pair<Arguments, int> gates[] = {
        {{"--fail-on", "all"}, 2},
        {{"--fail-on", "64:2"}, 2},
        {{"--fail-on", "64:1;OP"}, 0},
        {{"--fail-on", "64", "-s", "base.json"}, 0},
        {{"--fail-on", "all", "-s", "base.json"}, 2},
        {{"--fail-on", "all", "-s", "base.json", "--diff", "r.log"}, 0},
        {{"--fail-on", "64", "-s", "base.json", "-t", "sarif", "--keep-suppressed"}, 0},
        {{"--fail-on", "64", "-d", "V112"}, 0},
        {{"--fail-on", "64:x"}, 1},
    };
    for (const auto& [options, exitCode] : gates) {
        Arguments arguments = {"new.log", "-t", "totals"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const RunResult result = Convert(arguments);
        EXPECT_EQ(result.exitCode, exitCode) << result;
    }
    EXPECT_NE(sandbox.Read("new.sarif").find("\"kind\": \"external\""), std::string::npos);
}

TEST_F(ConverterTest, TellsItsFaults) {
    sandbox.Write("bad.log", sandbox.Read("r.log") + "nonsense\n");
    sandbox.Write("r.json", "{\"warnings\":[]}");
    sandbox.Write("out.json", "before");
    const std::pair<Arguments, std::string> cases[] = {
        {{"r.log"}, "Error: Render type is required\n"},
        {{"r.log", "-t", "raw", "-t", "json", "-o", "-"},
         "Error: Standard output takes one form, not 2\nGive a folder with -o, or ask for one form\n"},
        {{"r.log", "-t", "text", "--keep-suppressed"},
         "Error: --keep-suppressed needs a suppression base\nName it with --suppress-file FILE\n"},
        {{"r.log", "-t", "text", "-a", "GA: 1"},
         "Error: Wrong analyzers format: GA: 1\n\" 1\" at character 4 is no level; write analyzers and levels without "
         "blanks, such as GA:1,2;64:1\n"},
        {{"r.log", "-t", "json", "-o", "none/out.json"}, "Error: Couldn't create directory: none\n"},
        {{"bad.log", "-t", "json", "-o", "out.json"}, "Error: bad.log, line 3: error parsing old format message\n"},
        {{"r.json", "-t", "json"}, "Error: The output would replace the report it is made from: r.json\n"},
        {{"r.log", "-t", "json", "-a", "x"}, "Error: Wrong analyzer name: x\n"},
    };
    for (const auto& [arguments, output] : cases) {
        const RunResult result = Convert(arguments);
        EXPECT_EQ(result.exitCode, 1) << result;
        EXPECT_EQ(result.output, output);
    }
    EXPECT_EQ(sandbox.Read("out.json"), "before");

    const RunResult ignored = Convert({"r.log", "-t", "raw", "-o", "x", "-g", "none", "-m"});
    EXPECT_EQ(ignored.exitCode, 0) << ignored;
    for (const char* const flag : {"grp", "misra_deviations"}) {
        EXPECT_TRUE(ignored.Says("The use of the '" + std::string(flag) +
                                 "' flag is valid only for the 'misra' format. Otherwise, it will be ignored.\n"));
    }
    const RunResult unknown = Convert({"r.log", "--unknown"});
    EXPECT_EQ(unknown.exitCode, 1) << unknown;
    EXPECT_TRUE(unknown.Says("Usage: orvlog-converter")) << unknown;
    EXPECT_EQ(Convert({"--help"}).exitCode, 0);
    EXPECT_EQ(Convert({"--version"}).output.find("orvlog-converter "), 0U);
}

} // namespace

} // namespace Orvanta
