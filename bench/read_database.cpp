// Reads a database of a hundred thousand entries, as CMake writes them, in two ways: as the driver does, compilers
// identified and sources found, and as a plain pass of the JSON library that keeps the same texts. Prints the ratio.
// With "--peak" it reads the database once, as the driver does, and prints the peak memory of the process.

#include "buildinput/CompilationDatabase.h"
#include "compilers/CompilerRegistry.h"
#include "platform/StopFlag.h"
#include "platform/TemporaryFolder.h"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace {

using nlohmann::json;
using namespace Orvanta;

constexpr std::size_t EntryCount = 100000;
constexpr std::size_t EntriesPerFolder = 40;

/// A database on disk, written piece by piece so that it costs no memory, and the compiler that it names.
class Database {
public:
    Database() {
        const std::string compiler = folder_.Path() + "/c++";
        std::ofstream(compiler) << "#!/bin/sh\necho 'c++ (GCC) 12.2.0'\n";
        std::filesystem::permissions(compiler, std::filesystem::perms::owner_all);
        std::ofstream file(Path(), std::ios::binary);
        for (std::size_t i = 0; i < EntryCount; ++i) {
            file << (i == 0 ? "[\n" : ",\n");
            WriteEntry(file, compiler, i);
        }
        file << "\n]\n";
    }

    [[nodiscard]] std::string Path() const { return folder_.Path() + "/compile_commands.json"; }

private:
    static void WriteEntry(std::ostream& file, const std::string& compiler, std::size_t number) {
        const std::string module = "module" + std::to_string(number / EntriesPerFolder);
        const std::string source = "/home/user/project/src/" + module + "/Source" + std::to_string(number) + ".cpp";
        const std::string object = "CMakeFiles/" + module + ".dir/Source" + std::to_string(number) + ".cpp.o";
        file << "{\n  \"directory\": \"/home/user/project/build/src/" << module << "\",\n  \"command\": \"" << compiler
             << " -DPROJECT_VERSION=\\\\\\\"4.2.1\\\\\\\" -DPROJECT_SHARED -D" << module << "_EXPORTS"
             << " -I/home/user/project/build/src/" << module << " -I/home/user/project/src/" << module
             << " -I/home/user/project/include -I/home/user/project/src/common/include"
             << " -I/home/user/project/third_party/library/include -isystem /usr/include/library-2.0"
             << " -isystem /usr/lib/x86_64-linux-gnu/library-2.0/include -O2 -g -DNDEBUG -fPIC -fvisibility=hidden"
             << " -Wall -Wextra -Wno-unused-parameter -std=gnu++17 -o " << object << " -c " << source
             << "\",\n  \"file\": \"" << source << "\",\n  \"output\": \"src/" << module << '/' << object << "\"\n}";
    }

    TemporaryFolder folder_;
};

const Database& TheDatabase() {
    static const Database database;
    return database;
}

std::size_t ReadAsTheDriver(const std::string& path) {
    const RunSettings settings;
    const CompilerRegistry registry;
    const StopFlag stop;
    Log log;
    CompilerIdentifier identifier(settings, log, stop);
    InvocationCollector collector(settings, registry, identifier, log);
    if (!ReadCompilationDatabase(path, collector)) {
        return 0;
    }
    return collector.Take().units.size();
}

/// The same texts in the plainest form.
struct Record {
    std::vector<std::string> arguments;
    std::string directory;
    std::string file;
};

/// Fills the records by the JSON library's events and does nothing else.
class RecordHandler : public nlohmann::json_sax<json> {
public:
    std::vector<Record> records;

    bool null() override { return true; }

    bool boolean(bool) override { return true; }

    bool number_integer(number_integer_t) override { return true; }

    bool number_unsigned(number_unsigned_t) override { return true; }

    bool number_float(number_float_t, const string_t&) override { return true; }

    bool binary(binary_t&) override { return true; }

    bool start_object(std::size_t) override {
        records.emplace_back();
        return true;
    }

    bool end_object() override { return true; }

    bool start_array(std::size_t) override { return true; }

    bool end_array() override { return true; }

    bool key(string_t& name) override {
        member_ = std::move(name);
        return true;
    }

    bool string(string_t& text) override {
        if (member_ == "directory") {
            records.back().directory = std::move(text);
        } else if (member_ == "command") {
            records.back().arguments = SplitCommandString(text, CommandStringRules::Posix);
        } else if (member_ == "file") {
            records.back().file = std::move(text);
        }
        return true;
    }

    bool parse_error(std::size_t, const std::string&, const json::exception&) override { return false; }

private:
    std::string member_;
};

void ReadByDriver(benchmark::State& state) {
    const std::string path = TheDatabase().Path();
    for (auto iteration : state) {
        if (ReadAsTheDriver(path) != EntryCount) {
            state.SkipWithError("not every entry became a unit");
        }
    }
}

void ReadByPlainPass(benchmark::State& state) {
    const std::string path = TheDatabase().Path();
    for (auto iteration : state) {
        std::ifstream file(path, std::ios::binary);
        RecordHandler handler;
        json::sax_parse(file, &handler);
        if (handler.records.size() != EntryCount) {
            state.SkipWithError("not every entry became a record");
        }
    }
}

constexpr int Repetitions = 5;
BENCHMARK(ReadByDriver)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(Repetitions);
BENCHMARK(ReadByPlainPass)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(Repetitions);

/// Shows the runs and keeps the least CPU time of each benchmark.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration) {
                const auto [place, isNew] = least_.emplace(run.run_name.function_name, run.cpu_accumulated_time);
                place->second = std::min(place->second, run.cpu_accumulated_time);
            }
        }
    }

    /// The least CPU time of a benchmark, in seconds.
    [[nodiscard]] double Least(const std::string& benchmark) const { return least_.at(benchmark); }

private:
    std::map<std::string, double> least_;
};

void PrintPeakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:")) {
            std::cout << line << '\n';
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    std::cout << EntryCount << " entries, " << std::filesystem::file_size(TheDatabase().Path()) << " bytes\n";
    if (argc > 1 && std::string_view(argv[1]) == "--peak") {
        const std::size_t units = ReadAsTheDriver(TheDatabase().Path());
        std::cout << units << " units\n";
        PrintPeakMemory();
        return units == EntryCount ? 0 : 1;
    }
    // Both ways take turns, so that a change of the machine's speed meets both.
    std::string interleaved = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments(argv, argv + argc);
    arguments.insert(arguments.begin() + 1, interleaved.data());
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const double driver = reporter.Least("ReadByDriver");
    const double plain = reporter.Least("ReadByPlainPass");
    std::cout << "CPU time of the driver's reader: " << driver << " s, of a plain pass: " << plain
              << " s, ratio: " << driver / plain << '\n';
    benchmark::Shutdown();
}
