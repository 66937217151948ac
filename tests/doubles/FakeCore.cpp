// Stands in for a core: records how it was called and plays the script beside the unit's source.
//
//   finding CODE LEVEL LINE TEXT      a finding in the unit's source
//   finding-in FILE CODE LEVEL LINE TEXT
//   raw-line TEXT                     a line of the output file, as it is
//   partial-line                      the first half of a JSON line, without an end
//   no-output-file                    removes the output file
//   stdout TEXT / stderr TEXT
//   touch FILE / wait-for FILE        order events between processes
//   append FILE TEXT                  edits a file
//   hang                              goes on until it is killed
//   spawn-hanging-child               the same for a child, which then hangs beside this process
//   crash / exit N
//   listing STEP / first-run STEP     a step of the listing of dependencies, or of the collecting stage; the steps
//                                     without such a word are those of an analysis
//
// It tells its version when FAKE_CORE_VERSION holds one. It lists the files that the line markers of the preprocessed
// text name. In the collecting stage it leaves the unit's source as the unit's information, in the linking stage it
// gathers that of all units (or plays the step in FAKE_CORE_MERGE), and in the performing stage it reports what was
// gathered as one more finding.

#include "doubles/Script.h"
#include "doubles/SiblingProcess.h"
#include "platform/Console.h"
#include "platform/Environment.h"
#include "platform/Executable.h"
#include "platform/Files.h"
#include "platform/Hash.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"
#include "platform/ProgramArguments.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace Orvanta;
using Settings = std::map<std::string, std::string>;

struct Unit {
    std::string settingsText;
    Settings settings;
    std::string recordFolder; // empty: nothing is recorded
};

[[noreturn]] void Fail(const std::string& why) {
    std::cerr << "fake-core: " << why << std::endl;
    std::exit(98);
}

std::string SettingsPath(const std::vector<std::string>& arguments) {
    for (std::size_t index = 0; index + 1 < arguments.size(); ++index) {
        if (arguments[index] == "--cfg") {
            return arguments[index + 1];
        }
    }
    Fail("no --cfg");
}

Settings ParseLines(const std::string& text) {
    Settings settings;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t equals = line.find('=');
        if (equals != std::string::npos) {
            settings.emplace(line.substr(0, equals), line.substr(equals + 1));
        }
    }
    return settings;
}

std::string Value(const Unit& unit, const std::string& key) {
    const auto found = unit.settings.find(key);
    return found == unit.settings.end() ? "" : found->second;
}

/// The preprocessed text without what differs from run to run: line markers, and the fake compiler's own lines.
std::string StableText(const std::string& path) {
    std::string stable;
    std::istringstream lines(ReadText(path));
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with('#') && !line.starts_with("//")) {
            stable += line + '\n';
        }
    }
    return stable;
}

// Renamed into place: a test that waits for a record never reads half of one.
void Record(const Unit& unit, const std::vector<std::string>& arguments) {
    if (unit.recordFolder.empty()) {
        return;
    }
    nlohmann::ordered_json record;
    record["arguments"] = arguments;
    record["directory"] = CurrentDirectory();
    record["settings"] = unit.settingsText;
    record["preprocessed"] = Value(unit, "i-file").empty() ? "" : ReadText(Value(unit, "i-file"));
    const auto now = std::chrono::system_clock::now().time_since_epoch().count();
    const std::string name = std::to_string(now) + '-' + std::to_string(std::random_device()());
    const std::filesystem::path path = NativePath(JoinPath(unit.recordFolder, name + ".json"));
    const std::filesystem::path draft = NativePath(JoinPath(unit.recordFolder, name + ".draft"));
    using Json = nlohmann::ordered_json;
    std::ofstream(draft, std::ios::binary) << record.dump(1, ' ', false, Json::error_handler_t::replace);
    std::filesystem::rename(draft, path);
}

std::string FindingLine(const Unit& unit, const std::string& file, std::string rest) {
    const std::string code = TakeWord(rest);
    const std::string level = TakeWord(rest);
    const std::string line = TakeWord(rest);
    if (Value(unit, "new-output-format") == "no") {
        const char* const gap = "<#~>";
        return std::string("Zelm64-EM") + gap + "full" + gap + line + gap + file + gap + "error" + gap + code + gap +
               rest + gap + "false" + gap + level + gap + "before" + gap + "at" + gap + "after" + gap + line + gap;
    }
    nlohmann::ordered_json message;
    message["falseAlarm"] = false;
    message["level"] = std::stoul(level);
    message["code"] = code;
    message["message"] = rest;
    message["positions"] = {{{"file", file}, {"line", std::stoul(line)}}};
    return message.dump();
}

void AppendText(const Unit& unit, const std::string& text) {
    std::ofstream file(NativePath(Value(unit, "output-file")), std::ios::binary | std::ios::app);
    if (!(file << text << std::flush)) {
        Fail("can't write to " + Value(unit, "output-file"));
    }
}

std::string UnitName(const Unit& unit) {
    return std::string(FileNameOf(Value(unit, "source-file")));
}

void SpawnHangingChild(const Unit& unit, const std::string& program) {
    const std::string key = "child-of-" + UnitName(unit);
    StartSibling({program, "--hang", unit.recordFolder, key});
    WaitForFile(JoinPath(unit.recordFolder, key + ".hangs"));
}

bool PlayOutputLine(const Unit& unit, const ScriptLine& step) {
    if (step.word == "finding") {
        AppendText(unit, FindingLine(unit, Value(unit, "source-file"), step.rest) + '\n');
    } else if (step.word == "finding-in") {
        std::string rest = step.rest;
        const std::string file = TakeWord(rest);
        AppendText(unit, FindingLine(unit, file, rest) + '\n');
    } else if (step.word == "raw-line") {
        AppendText(unit, step.rest + '\n');
    } else if (step.word == "partial-line") {
        AppendText(unit, R"({"falseAlarm":false,"level":1,"code":"V5)");
    } else if (step.word == "no-output-file") {
        RemoveFile(Value(unit, "output-file"));
    } else {
        return false;
    }
    return true;
}

void PlayLine(const Unit& unit, const ScriptLine& step, const std::string& program) {
    if (PlayOutputLine(unit, step)) {
        return;
    }
    if (step.word == "stdout") {
        std::cout << step.rest << std::endl;
    } else if (step.word == "stderr") {
        std::cerr << step.rest << std::endl;
    } else if (step.word == "touch") {
        TouchFile(step.rest);
    } else if (step.word == "append") {
        std::string text = step.rest;
        const std::string file = TakeWord(text);
        AppendLine(file, text);
    } else if (step.word == "wait-for") {
        WaitForFile(step.rest);
    } else if (step.word == "hang") {
        Hang(unit.recordFolder, "core-of-" + UnitName(unit));
    } else if (step.word == "spawn-hanging-child") {
        SpawnHangingChild(unit, program);
    } else if (step.word == "crash") {
        std::abort();
    } else if (step.word == "exit") {
        std::exit(std::stoi(step.rest));
    } else {
        Fail("unknown step: " + step.word);
    }
}

// The steps of the unit's script that begin with `prefix`, a word and a blank, without it; those without such a word
// for an empty prefix.
std::vector<ScriptLine> StepsOf(const Unit& unit, std::string_view prefix) {
    std::vector<ScriptLine> steps;
    for (ScriptLine& step : ReadScript(Value(unit, "source-file") + ".script")) {
        const bool hasPrefix = step.word == "listing" || step.word == "first-run";
        if (hasPrefix && step.word == prefix) {
            std::string rest = step.rest;
            std::string word = TakeWord(rest);
            steps.push_back({std::move(word), std::move(rest)});
        } else if (!hasPrefix && prefix.empty()) {
            steps.push_back(std::move(step));
        }
    }
    return steps;
}

void PlayAll(const Unit& unit, std::string_view prefix, const std::string& program) {
    for (const ScriptLine& step : StepsOf(unit, prefix)) {
        PlayLine(unit, step, program);
    }
}

void ListDependencies(const Unit& unit) {
    std::set<std::string> listed;
    std::istringstream lines(ReadText(Value(unit, "i-file")));
    for (std::string line; std::getline(lines, line);) {
        const std::size_t begin = line.find(" \"");
        const std::size_t end = line.rfind('"');
        if (!line.starts_with("# ") || begin == std::string::npos || end <= begin + 2 || line[begin + 2] == '<') {
            continue;
        }
        const std::string path = line.substr(begin + 2, end - begin - 2);
        if (!path.ends_with("//") && listed.insert(path).second) {
            WriteMessage("<}include{>" + path + "\r\n"); // as it is, on every system
        }
    }
}

void Merge(const Unit& unit, const std::string& program) {
    std::istringstream step(EnvironmentVariable("FAKE_CORE_MERGE").value_or(""));
    std::string word;
    std::string rest;
    if (step >> word && (std::getline(step >> std::ws, rest) || true)) {
        PlayLine(unit, {word, rest}, program);
    }
    std::istringstream list(ReadText(Value(unit, "intermodular-unit-list")));
    std::ofstream merged(NativePath(Value(unit, "intermodular-file")), std::ios::binary);
    for (std::string path; std::getline(list, path);) {
        merged << ReadText(path);
    }
}

void PlayStage(const Unit& unit) {
    const std::string stage = Value(unit, "intermodular");
    if (stage == "first-run") {
        std::ofstream(NativePath(Value(unit, "intermodular-unit-file")), std::ios::binary) << UnitName(unit) << ' ';
    } else if (stage == "second-run") {
        AppendText(unit, FindingLine(unit, Value(unit, "source-file"),
                                     "V1071 2 1 Linked: " + ReadText(Value(unit, "intermodular-file"))) +
                             '\n');
    }
}

void Play(const Unit& unit, const std::string& program) {
    PlayStage(unit);
    if (Value(unit, "intermodular") == "first-run") {
        PlayAll(unit, "first-run", program);
        return;
    }
    const std::string script = Value(unit, "source-file") + ".script";
    if (!PathExists(script)) {
        const std::string text = StableText(Value(unit, "i-file"));
        AppendText(unit, FindingLine(unit, Value(unit, "source-file"),
                                     "V501 1 1 Text with hash " + std::to_string(Fnv1a(text))) +
                             '\n');
        return;
    }
    AppendText(unit, "");
    PlayAll(unit, "", program);
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments = ProgramArguments(argc, argv);
    if (const auto version = EnvironmentVariable("FAKE_CORE_VERSION"); version && arguments.back() == "--version") {
        std::cout << *version << std::endl;
        return 0;
    }
    if (arguments.size() == 4 && arguments[1] == "--hang") {
        Hang(arguments[2], arguments[3]);
    }
    Unit unit;
    unit.settingsText = ReadText(SettingsPath(arguments));
    unit.settings = ParseLines(unit.settingsText);
    unit.recordFolder = EnvironmentVariable("FAKE_CORE_RECORD").value_or("");
    Record(unit, arguments);
    const std::string program = JoinPath(ProgramDirectory(), FileNameOf(arguments.front()));
    if (arguments.back() == "--skip-analysis") {
        PlayAll(unit, "listing", program);
        ListDependencies(unit);
    } else if (Value(unit, "intermodular") == "merge-info") {
        Merge(unit, program);
    } else {
        Play(unit, program);
    }
    return EXIT_SUCCESS;
}
