// Stands in for a core: records how it was called and plays the script beside the unit's source.
//
//   finding CODE LEVEL LINE TEXT      a finding in the unit's source
//   finding-in FILE CODE LEVEL LINE TEXT
//   raw-line TEXT                     a line of the output file, as it is
//   partial-line                      the first half of a JSON line, without an end
//   no-output-file                    removes the output file
//   stdout TEXT / stderr TEXT
//   touch FILE / wait-for FILE        order events between processes
//   hang                              goes on until it is killed
//   spawn-hanging-child               the same for a child, which then hangs beside this process
//   crash / exit N

#include "doubles/Script.h"
#include "doubles/SiblingProcess.h"
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
    record["preprocessed"] = ReadText(Value(unit, "i-file"));
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
    message["positions"] = {
        {{"file", file}, {"line", std::stoul(line)}}
    };
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

void Play(const Unit& unit, const std::string& program) {
    const std::string script = Value(unit, "source-file") + ".script";
    if (!PathExists(script)) {
        const std::string text = StableText(Value(unit, "i-file"));
        AppendText(unit, FindingLine(unit, Value(unit, "source-file"),
                                     "V501 1 1 Text with hash " + std::to_string(Fnv1a(text))) +
                             '\n');
        return;
    }
    AppendText(unit, "");
    for (const ScriptLine& step : ReadScript(script)) {
        PlayLine(unit, step, program);
    }
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments = ProgramArguments(argc, argv);
    if (arguments.size() == 4 && arguments[1] == "--hang") {
        Hang(arguments[2], arguments[3]);
    }
    Unit unit;
    unit.settingsText = ReadText(SettingsPath(arguments));
    unit.settings = ParseLines(unit.settingsText);
    unit.recordFolder = EnvironmentVariable("FAKE_CORE_RECORD").value_or("");
    Record(unit, arguments);
    Play(unit, JoinPath(ProgramDirectory(), FileNameOf(arguments.front())));
    return EXIT_SUCCESS;
}
