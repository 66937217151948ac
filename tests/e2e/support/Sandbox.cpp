#include "e2e/support/Sandbox.h"

#include "platform/Files.h"
#include "platform/LockFile.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"
#include "platform/StopFlag.h"
#include "support/HostPath.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <sstream>
#include <thread>

namespace Orvanta {

namespace {

namespace fs = std::filesystem;

constexpr const char* RecordFolder = "records";
constexpr const char* TemporaryFolderName = "temporary";
constexpr auto LongestRun = std::chrono::seconds(90); // less than what a fake hangs for

std::string NewRoot() {
    const testing::TestInfo* const test = testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string(test->test_suite_name()) + '.' + test->name();
    std::replace(name.begin(), name.end(), '/', '-');
    const fs::path root =
        fs::temp_directory_path() / ("orvanta-" + name + '-' + std::to_string(std::random_device()()));
    fs::create_directories(root);
    return PathText(fs::canonical(root));
}

CoreCall ReadCoreCall(const fs::path& path) {
    std::ifstream file(path);
    const nlohmann::json record = nlohmann::json::parse(file);
    CoreCall call;
    call.arguments = record.at("arguments").get<Arguments>();
    call.directory = record.at("directory").get<std::string>();
    call.preprocessed = record.at("preprocessed").get<std::string>();
    std::istringstream lines(record.at("settings").get<std::string>());
    for (std::string line; std::getline(lines, line);) {
        const std::size_t equals = line.find('=');
        call.settings.emplace_back(line.substr(0, equals), equals == std::string::npos ? "" : line.substr(equals + 1));
    }
    return call;
}

std::string TestedProgram(const std::string& built) {
    const char* const folder = std::getenv("ORVANTA_TESTED_BUILD");
    return folder == nullptr ? built : JoinPath(folder, "bin/" + std::string(FileNameOf(built)));
}

} // namespace

std::size_t RunResult::Count(std::string_view text) const {
    std::size_t count = 0;
    for (std::size_t at = output.find(text); at != std::string::npos; at = output.find(text, at + text.size())) {
        ++count;
    }
    return count;
}

std::vector<std::string> RunResult::Lines() const {
    std::vector<std::string> lines;
    std::istringstream stream(output);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::ostream& operator<<(std::ostream& stream, const RunResult& result) {
    return stream << "\nexit code " << result.exitCode << "\n--- standard output\n"
                  << result.output << "--- standard error\n"
                  << result.errors << "---\n";
}

std::string CoreCall::Setting(std::string_view key) const {
    for (const auto& [name, value] : settings) {
        if (name == key) {
            return value;
        }
    }
    return "(absent)";
}

std::vector<std::string> CoreCall::Keys() const {
    std::vector<std::string> keys;
    for (const auto& setting : settings) {
        keys.push_back(setting.first);
    }
    return keys;
}

RunningDriver::RunningDriver(const Arguments& command, const std::string& directory, const Environment& environment)
    : process_(command, directory, EnvironmentBlock(environment), MakeRedirectToStringProcessor(result_.output),
               MakeRedirectToStringProcessor(result_.errors)) {}

RunResult RunningDriver::Wait() {
    const StopFlag neverStops;
    const WaitResult end = WaitWithTimeout(process_, LongestRun, PollInterval, neverStops);
    if (!end.finished) {
        process_.kill(true);
        ADD_FAILURE() << "the driver did not end" << result_;
    }
    result_.exitCode = end.exitCode;
    // What the driver passes on ends its lines as programs of the system do.
    std::erase(result_.output, '\r');
    std::erase(result_.errors, '\r');
    return result_;
}

Sandbox::Sandbox() : root_(NewRoot()) {
    fs::create_directories(NativePath(Path(RecordFolder)));
    fs::create_directories(NativePath(Path(TemporaryFolderName)));
}

Sandbox::~Sandbox() {
    if (testing::Test::HasFailure()) {
        std::cout << "The sandbox is kept: " << root_ << std::endl;
        return;
    }
    std::error_code ignored;
    fs::remove_all(NativePath(root_), ignored);
}

std::string Sandbox::Path(std::string_view relative) const {
    return relative.empty() ? root_ : HostPath(JoinPath(root_, relative));
}

void Sandbox::Write(std::string_view relative, std::string_view text) const {
    const fs::path path = NativePath(Path(relative));
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

std::string Sandbox::Read(std::string_view relative) const {
    try {
        return ReadWholeFile(Path(relative));
    } catch (const ZelmException& error) {
        ADD_FAILURE() << "can't read " << error.what();
        return {};
    }
}

bool Sandbox::Exists(std::string_view relative) const {
    return PathExists(Path(relative));
}

std::string Sandbox::AddCompiler(const std::string& name, std::string_view versionText, std::string_view script) const {
    const std::string relative = "tools/" + name;
    const fs::path path = NativePath(Path(relative));
    fs::create_directories(path.parent_path());
    fs::copy_file(NativePath(ORVANTA_FAKE_COMPILER), path, fs::copy_options::overwrite_existing);
    Write(relative + ".version", versionText);
    Write(relative + ".script", script);
    return Path(relative);
}

std::size_t Sandbox::CompilerCalls(const std::string& name, std::string_view text) const {
    std::ifstream file(NativePath(Path("tools/" + name + ".calls")));
    std::size_t count = 0;
    for (std::string line; std::getline(file, line);) {
        count += line.find(text) != std::string::npos ? 1U : 0U;
    }
    return count;
}

void Sandbox::AddUnit(const std::string& source, const std::vector<std::string>& script,
                      const Arguments& extraArguments) {
    if (!Exists("tools/fake-gcc")) {
        AddCompiler("fake-gcc", "fake-gcc (Fake) 12.2.0\n");
    }
    Write(source, "int from_" + std::to_string(entries_.size()) + ";\n");
    if (!script.empty()) {
        WriteScript(source, script);
    }
    Entry entry{{Path("tools/fake-gcc"), "-std=c17"}};
    entry.arguments.insert(entry.arguments.end(), extraArguments.begin(), extraArguments.end());
    entry.arguments.insert(entry.arguments.end(), {"-c", Path(source), "-o", "unit.o"});
    AddEntry(std::move(entry));
}

void Sandbox::WriteScript(const std::string& source, const std::vector<std::string>& steps) const {
    std::string text;
    for (const std::string& step : steps) {
        text += step + '\n';
    }
    Write(source + ".script", text);
}

void Sandbox::WriteDatabase() const {
    nlohmann::ordered_json database = nlohmann::ordered_json::array();
    for (const Entry& entry : entries_) {
        nlohmann::ordered_json item;
        item["directory"] = entry.directory.empty() ? root_ : entry.directory;
        item["arguments"] = entry.arguments;
        if (!entry.environment.empty()) {
            item["environment"] = entry.environment;
        }
        database.push_back(std::move(item));
    }
    Write("compile_commands.json", database.dump(1));
}

RunResult Sandbox::Run(const Arguments& arguments) const {
    Arguments command{DriverProgram()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return RunningDriver(command, root_, DriverEnvironment()).Wait();
}

RunResult Sandbox::Analyze(const Arguments& options) const {
    return StartAnalyze(options)->Wait();
}

std::unique_ptr<RunningDriver> Sandbox::StartAnalyze(const Arguments& options) const {
    if (!entries_.empty()) {
        WriteDatabase();
    }
    return std::make_unique<RunningDriver>(AnalyzeCommand(options), root_, DriverEnvironment());
}

Arguments Sandbox::AnalyzeCommand(const Arguments& options) {
    Arguments command{DriverProgram(), "analyze", "--orvanta-path", FakeCoreProgram()};
    command.insert(command.end(), options.begin(), options.end());
    return command;
}

Environment Sandbox::DriverEnvironment() const {
    Environment changes = changes_;
    for (const char* const name : {"TMPDIR", "TMP", "TEMP"}) {
        changes.emplace(name, Path(TemporaryFolderName));
    }
    changes.emplace("FAKE_CORE_RECORD", Path(RecordFolder));
    return WithChanges(changes);
}

std::vector<CoreCall> Sandbox::CoreCalls() const {
    std::vector<CoreCall> calls;
    for (const fs::directory_entry& file : fs::directory_iterator(NativePath(Path(RecordFolder)))) {
        if (file.path().extension() == ".json") {
            calls.push_back(ReadCoreCall(file.path()));
        }
    }
    std::sort(calls.begin(), calls.end(), [](const CoreCall& left, const CoreCall& right) {
        return left.Setting("source-file") < right.Setting("source-file");
    });
    return calls;
}

std::vector<std::string> Sandbox::AnalyzedSources() const {
    std::vector<std::string> sources;
    for (const CoreCall& call : CoreCalls()) {
        const bool isListing = call.arguments.back() == "--skip-analysis";
        const std::string stage = call.Setting("intermodular");
        if (!isListing && stage != "first-run" && stage != "merge-info") {
            sources.push_back(call.Setting("source-file"));
        }
    }
    return sources;
}

void Sandbox::ForgetCoreCalls() const {
    fs::remove_all(NativePath(Path(RecordFolder)));
    fs::create_directories(NativePath(Path(RecordFolder)));
}

std::vector<std::string> Sandbox::Leftovers() const {
    std::vector<std::string> names;
    for (const fs::directory_entry& file : fs::directory_iterator(NativePath(Path(TemporaryFolderName)))) {
        const std::string name = PathText(file.path().filename());
        if (!name.starts_with(".orvlock-")) {
            names.push_back(name);
        }
    }
    return names;
}

bool Sandbox::IsAlive(const std::string& key) const {
    LockFile lifeline;
    return lifeline.Take(Path(RecordFolder), key) != LockFile::State::Held;
}

bool HoldsSoon(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

std::string DriverProgram() {
    return TestedProgram(ORVANTA_DRIVER);
}

std::string ConverterProgram() {
    return TestedProgram(ORVANTA_CONVERTER);
}

std::string FakeCoreProgram() {
    return ORVANTA_FAKE_CORE;
}

} // namespace Orvanta
