// The readers of outside text, each on a text of the kind that a build or a run has many of.

#include "buildinput/CommandStringSplitter.h"
#include "buildinput/ResponseFile.h"
#include "compilers/CommandLineReader.h"
#include "compilers/CompilerRegistry.h"
#include "report/MessageLine.h"
#include "settings/SettingsFile.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

using namespace Orvanta;

constexpr std::string_view Command =
    "/usr/bin/c++ -DPROJECT_VERSION=\\\"4.2.1\\\" -DPROJECT_SHARED -I/home/user/project/build/src/module "
    "-I/home/user/project/src/module -I/home/user/project/include \"-I/home/user/my project/include\" "
    "-isystem /usr/include/library-2.0 -isystem /usr/lib/x86_64-linux-gnu/library-2.0/include -O2 -g -DNDEBUG -fPIC "
    "-fvisibility=hidden -Wall -Wextra -Wno-unused-parameter -std=gnu++17 -o CMakeFiles/module.dir/Source.cpp.o "
    "-c /home/user/project/src/module/Source.cpp";

void CountBytes(benchmark::State& state, std::string_view text) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(text.size()));
}

void SplitCommand(benchmark::State& state, CommandStringRules rules) {
    std::vector<std::string> arguments;
    for (auto iteration : state) {
        SplitCommandString(Command, rules, arguments);
        benchmark::DoNotOptimize(arguments.data());
    }
    CountBytes(state, Command);
}

void SplitResponse(benchmark::State& state) {
    for (auto iteration : state) {
        benchmark::DoNotOptimize(SplitResponseFile(Command, "flags.rsp"));
    }
    CountBytes(state, Command);
}

void OutlineCommand(benchmark::State& state) {
    const CompilerRegistry registry;
    const std::shared_ptr<const Compiler> model = registry.Get(CompilerType::Gcc);
    const std::vector<std::string> arguments = SplitCommandString(Command, CommandStringRules::Posix);
    for (auto iteration : state) {
        benchmark::DoNotOptimize(OutlineInvocation(*model, arguments));
    }
    CountBytes(state, Command);
}

void ReadCommand(benchmark::State& state) {
    const CompilerRegistry registry;
    const std::shared_ptr<const Compiler> model = registry.Get(CompilerType::Gcc);
    const std::vector<std::string> arguments = SplitCommandString(Command, CommandStringRules::Posix);
    const SourceArgument source = OutlineInvocation(*model, arguments).sources.at(0);
    for (auto iteration : state) {
        benchmark::DoNotOptimize(ReadCommandLine(*model, arguments, source));
    }
    CountBytes(state, Command);
}

void ReadSettings(benchmark::State& state) {
    constexpr std::string_view text = "# what the run leaves out\n"
                                      "exclude-path=third_party\n"
                                      "exclude-path=*/generated/*\n"
                                      "analysis-mode=GA;OP;64\n"
                                      "output-file=report.json\n"
                                      "platform=linux64\n";
    for (auto iteration : state) {
        benchmark::DoNotOptimize(ParseSettings(text, "/home/user/project"));
    }
    CountBytes(state, text);
}

void ReadMessage(benchmark::State& state, OrvlogConverter::LineFormat format) {
    OrvlogConverter::ReportMessage message;
    message.code = "V501";
    message.message = "There are identical sub-expressions to the left and to the right of the operator.";
    std::string line;
    OrvlogConverter::AppendMessageLine(line, message, format);
    for (auto iteration : state) {
        benchmark::DoNotOptimize(OrvlogConverter::ReadMessageLine(line));
    }
    CountBytes(state, line);
}

BENCHMARK_CAPTURE(SplitCommand, Posix, CommandStringRules::Posix);
BENCHMARK_CAPTURE(SplitCommand, Windows, CommandStringRules::Windows);
BENCHMARK(SplitResponse);
BENCHMARK(OutlineCommand);
BENCHMARK(ReadCommand);
BENCHMARK(ReadSettings);
BENCHMARK_CAPTURE(ReadMessage, Json, OrvlogConverter::LineFormat::Json);
BENCHMARK_CAPTURE(ReadMessage, Raw, OrvlogConverter::LineFormat::Raw);

} // namespace

BENCHMARK_MAIN();
