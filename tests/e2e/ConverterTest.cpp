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
        Arguments command{ORVANTA_CONVERTER};
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
        {{},                1},
        {{"-a", "GA:1"},    1},
        {{"-a", "GA:2"},    0},
        {{"-d", "V1,V501"}, 0},
        {{"-w", "x"},       0},
        {{"-w", "xx"},      1},
        {{"-e", "/a."},     0},
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

TEST_F(ConverterTest, TellsItsFaults) {
    sandbox.Write("bad.log", sandbox.Read("r.log") + "nonsense\n");
    sandbox.Write("r.json", "{\"warnings\":[]}");
    sandbox.Write("out.json", "before");
    const std::pair<Arguments, std::string> cases[] = {
        {{"r.log"},                                      "Error: Render type is required\n"                                      },
        {{"r.log", "-t", "html"},                        "Error: Wrong render type: \"html\", expected one of json, raw, misra\n"},
        {{"r.log", "-t", "json", "-o", "none/out.json"}, "Error: Couldn't create directory: none\n"                              },
        {{"bad.log", "-t", "json", "-o", "out.json"},    "Error: bad.log, line 3: error parsing old format message\n"            },
        {{"r.json", "-t", "json"},                       "Error: The output would replace the report it is made from: r.json\n"  },
        {{"r.log", "-t", "json", "-a", "x"},             "Error: Wrong analyzer name: x\n"                                       },
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
