// Stands in for a compiler under whatever name it is copied to. Beside the copy stand
//   NAME.version   what "--version" prints
//   NAME.calls     gets one line per call: the arguments
//   NAME.script    steps; more may stand in SOURCE.compiler beside a source, for that unit alone
// It understands how GCC's family is asked to preprocess, and how cl's family is.
//
//   version-exit N / version-hang / version-remove-self     what "--version" does
//   version-stderr TEXT / version-show-variable NAME        what else it prints
//   strict COMPILER            reads every command as that compiler does, refuses what it would refuse, and writes
//                              what it has understood into the preprocessed text
//   accept-only SWITCH...      fails for a switch that begins with none of these
//   std-number N / std-number-c++ N / hang-on-probe      what probing for the language standard comes to
//   empty-output               leaves the preprocessed text empty
//   show-variable NAME         writes the variable into the preprocessed text
//   stdout TEXT / stderr TEXT / touch FILE / wait-for FILE / hang / exit N

#include "doubles/Script.h"
#include "doubles/StrictCompiler.h"
#include "platform/Environment.h"
#include "platform/Executable.h"
#include "platform/Files.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"
#include "platform/Process.h"
#include "platform/ProgramArguments.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace Orvanta;

struct Call {
    std::string program; // the path of this copy
    std::vector<std::string> arguments;
    std::string source;
    std::string output;
    std::vector<ScriptLine> script;
    std::optional<Understanding> understanding; // of a strict compiler
};

// "-o OUTPUT", and the source where no flag stands.
void ReadAsGcc(Call& call) {
    for (std::size_t index = 0; index < call.arguments.size(); ++index) {
        if (call.arguments[index] == "-o" && index + 1 < call.arguments.size()) {
            call.output = call.arguments[++index];
        } else if (!call.arguments[index].starts_with('-')) {
            call.source = call.arguments[index];
        }
    }
}

// "/FiOUTPUT", and the source at the end, where a path from the root is no flag.
void ReadAsCl(Call& call) {
    constexpr std::string_view OutputFlag = "/Fi";
    for (const std::string& argument : call.arguments) {
        if (argument.starts_with(OutputFlag)) {
            call.output = argument.substr(OutputFlag.size());
        }
    }
    call.source = call.arguments.back();
}

// "@FILE" stands for the words of a file, one a line, in which a backslash takes the meaning from any character.
std::vector<std::string> WithResponseFiles(const std::vector<std::string>& words) {
    std::vector<std::string> expanded;
    for (const std::string& word : words) {
        if (!word.starts_with('@') || !PathExists(word.substr(1))) {
            expanded.push_back(word);
            continue;
        }
        std::istringstream lines(ReadText(word.substr(1)));
        for (std::string line; std::getline(lines, line);) {
            std::string plain;
            for (std::size_t at = 0; at < line.size(); ++at) {
                at += line[at] == '\\' && at + 1 < line.size() ? 1U : 0U;
                plain += line[at];
            }
            expanded.push_back(plain);
        }
    }
    return expanded;
}

void ReadAsStrict(Call& call, const std::string& compiler) {
    try {
        call.understanding = ReadStrictly(compiler, call.program, call.arguments);
        call.source = call.understanding->source;
        call.output = call.understanding->output;
    } catch (const Refusal& refusal) {
        std::cerr << FileNameOf(call.program) << ": " << refusal.what() << std::endl;
        std::exit(EXIT_FAILURE);
    }
}

Call ReadCall(const std::vector<std::string>& words) {
    Call call;
    call.program = JoinPath(ProgramDirectory(), FileNameOf(words.front()));
    call.arguments = WithResponseFiles({words.begin() + 1, words.end()});
    if (std::find(call.arguments.begin(), call.arguments.end(), "/P") != call.arguments.end()) {
        ReadAsCl(call);
    } else {
        ReadAsGcc(call);
    }
    call.script = ReadScript(call.program + ".script");
    for (ScriptLine& step : ReadScript(call.source + ".compiler")) {
        call.script.push_back(std::move(step));
    }
    return call;
}

bool IsProbe(const Call& call) {
    return call.source.find("__std_test__") != std::string::npos;
}

int PrintVersion(const Call& call) {
    std::cout << ReadText(call.program + ".version") << std::flush;
    for (const ScriptLine& step : call.script) {
        if (step.word == "version-stderr") {
            std::cerr << step.rest << std::endl;
        }
        if (step.word == "version-show-variable") {
            std::cout << EnvironmentVariable(step.rest).value_or("(not set)") << std::endl;
        }
        if (step.word == "version-exit") {
            return std::stoi(step.rest);
        }
        if (step.word == "version-hang") {
            Hang(ProgramDirectory(), "version-query");
        }
        if (step.word == "version-remove-self") {
            RemoveFile(call.program);
        }
    }
    return EXIT_SUCCESS;
}

std::string Joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : "|") + word;
    }
    return text;
}

std::string UnderstandingLines(const Understanding& understanding) {
    return "// language: " + understanding.language + "\n// standard: " + understanding.standard +
           "\n// plain char: " + (understanding.isPlainCharUnsigned ? "unsigned" : "signed") +
           "\n// includes: " + Joined(understanding.includes) + "\n// defines: " + Joined(understanding.defines) + '\n';
}

void RejectUnknownSwitches(const Call& call, const std::string& acceptedSwitches) {
    std::istringstream words(acceptedSwitches);
    const std::vector<std::string> accepted{std::istream_iterator<std::string>(words), {}};
    for (const std::string& argument : call.arguments) {
        const bool isKnown = std::any_of(accepted.begin(), accepted.end(),
                                         [&](const std::string& begin) { return argument.starts_with(begin); });
        if (argument.starts_with('-') && !isKnown) {
            std::cerr << "fake-compiler: unknown switch " << argument << std::endl;
            std::exit(EXIT_FAILURE);
        }
    }
}

// Copies the text of a file, with that of the files that it includes by quoted names in their places.
void WriteText(std::ostream& output, const std::string& path, const std::string& text) {
    constexpr std::string_view Include = "#include \"";
    std::istringstream lines(text);
    std::size_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        if (!line.starts_with(Include)) {
            output << line << '\n';
            continue;
        }
        const std::string name = line.substr(Include.size(), line.rfind('"') - Include.size());
        const std::string header = JoinPath(DirectoryOf(path), name);
        if (!PathExists(header)) {
            std::cerr << "fake-compiler: no such file: " << header << std::endl;
            std::exit(EXIT_FAILURE);
        }
        output << "# 1 \"" << header << "\" 1\n";
        WriteText(output, header, ReadText(header));
        output << "# " << number + 1 << " \"" << path << "\" 2\n";
    }
}

void Preprocess(const Call& call) {
    std::ofstream output(NativePath(call.output), std::ios::binary);
    if (std::any_of(call.script.begin(), call.script.end(),
                    [](const ScriptLine& step) { return step.word == "empty-output"; })) {
        return;
    }
    // The same in every run, as a real compiler's text is.
    std::vector<std::string> shown = call.arguments;
    for (std::string& word : shown) {
        if (word.ends_with(call.output)) {
            word.replace(word.size() - call.output.size(), call.output.size(), "OUTPUT");
        }
    }
    output << "// " << CommandLineText(shown) << "\n# 1 \"" << call.source << "\"\n";
    std::string text = ReadText(call.source);
    if (call.understanding) {
        output << UnderstandingLines(*call.understanding);
        text = IsProbe(call) ? VersionOfStandard(call.understanding->standard) + "\n" : text;
    }
    for (const ScriptLine& step : call.script) {
        const bool isForCpp = step.word == "std-number-c++" && !call.source.ends_with(".c");
        if (IsProbe(call) && (step.word == "std-number" || isForCpp)) {
            text = step.rest + "\n";
        } else if (step.word == "show-variable") {
            output << "// " << step.rest << '=' << EnvironmentVariable(step.rest).value_or("(not set)") << '\n';
        }
    }
    WriteText(output, call.source, text);
    output << std::flush;
    if (!output) {
        std::cerr << "fake-compiler: can't write to " << call.output << std::endl;
        std::exit(EXIT_FAILURE);
    }
}

void PlayLine(const Call& call, const ScriptLine& step) {
    if (step.word == "accept-only") {
        RejectUnknownSwitches(call, step.rest);
    } else if (step.word == "stdout") {
        std::cout << step.rest << std::endl;
    } else if (step.word == "stderr") {
        std::cerr << step.rest << std::endl;
    } else if (step.word == "touch") {
        TouchFile(step.rest);
    } else if (step.word == "wait-for") {
        WaitForFile(step.rest);
    } else if (step.word == "hang-on-probe" && IsProbe(call)) {
        Hang(ProgramDirectory(), "probe");
    } else if (step.word == "hang") {
        Hang(ProgramDirectory(), "compiler-of-" + std::string(FileNameOf(call.source)));
    } else if (step.word == "exit") {
        std::exit(std::stoi(step.rest));
    }
}

} // namespace

int main(int argc, char** argv) {
    Call call = ReadCall(ProgramArguments(argc, argv));
    AppendLine(call.program + ".calls", CommandLineText(call.arguments));
    if (call.arguments.size() == 1 && call.arguments.front() == "--version") {
        return PrintVersion(call);
    }
    for (const ScriptLine& step : call.script) {
        if (step.word == "strict") {
            ReadAsStrict(call, step.rest);
        }
    }
    for (const ScriptLine& step : call.script) {
        PlayLine(call, step);
    }
    if (!PathExists(call.source)) {
        std::cerr << "fake-compiler: no such file: " << call.source << std::endl;
        return EXIT_FAILURE;
    }
    if (!call.output.empty()) {
        Preprocess(call);
    }
    return EXIT_SUCCESS;
}
