// Filtering a report of 1,000,000 JSON lines through a base of 500,000 entries, against what the JSON library takes to
// parse each line and to write it again.

#include "platform/StopFlag.h"
#include "report/JsonMessage.h"
#include "suppress/FilterWorker.h"
#include "suppress/SuppressBase.h"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using namespace OrvlogConverter;

constexpr std::size_t Lines = 1000000;
constexpr std::size_t Entries = 500000; // every second line is hidden

ReportMessage Finding(std::size_t number) {
    const std::string name = "value" + std::string(1, static_cast<char>('a' + number % 26)) + std::to_string(number);
    MessagePosition position;
    position.file = "/home/user/project/src/module/Source" + std::to_string(number % 1000) + ".cpp";
    position.line = static_cast<std::uint32_t>(number % 5000);
    position.prevLine = "    if (" + name + " == nullptr) {";
    position.currLine = "        throw Error(\"no " + name + "\"); // as the caller expects";
    position.nextLine = "    }";
    return {"V5" + std::to_string(number % 100),
            "There are identical sub-expressions '" + name + "' to the left and to the right of the '==' operator.",
            "",
            {position},
            570,
            static_cast<std::uint32_t>(number % 3 + 1),
            false};
}

/// The files of one run of the benchmarks.
class Files {
public:
    Files() : folder_(std::filesystem::temp_directory_path() / "orvanta-bench-filter") {
        std::filesystem::create_directories(folder_);
        std::ofstream report(Report(), std::ios::binary);
        SuppressBase base;
        std::string line;
        for (std::size_t number = 0; number < Lines; ++number) {
            const ReportMessage message = Finding(number);
            line.clear();
            AppendJsonMessage(line, message);
            report << line << '\n';
            if (number % (Lines / Entries) == 0) {
                base.Add(MakeSuppressEntry(message, base.Version()));
            }
        }
        base.Write(Base());
    }

    ~Files() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;

    [[nodiscard]] std::string Report() const { return (folder_ / "report.jsonl").string(); }

    [[nodiscard]] std::string Base() const { return (folder_ / "base.json").string(); }

    [[nodiscard]] std::string Output() const { return (folder_ / "filtered.jsonl").string(); }

private:
    std::filesystem::path folder_;
};

const Files& TheFiles() {
    static const Files files;
    return files;
}

void CountLines(benchmark::State& state) {
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(Lines));
}

void FilterReport(benchmark::State& state) {
    const Orvanta::StopFlag stop;
    for (auto iteration : state) {
        Orvanta::FilterWorker(TheFiles().Base(), TheFiles().Report(), TheFiles().Output(), stop).Run();
    }
    CountLines(state);
}

void ParseAndDumpEachLine(benchmark::State& state) {
    for (auto iteration : state) {
        std::ifstream report(TheFiles().Report(), std::ios::binary);
        std::ofstream output(TheFiles().Output(), std::ios::binary);
        for (std::string line; std::getline(report, line);) {
            output << nlohmann::json::parse(line).dump() << '\n';
        }
    }
    CountLines(state);
}

void ReadBase(benchmark::State& state) {
    for (auto iteration : state) {
        benchmark::DoNotOptimize(SuppressBase::Read(TheFiles().Base()));
    }
}

void WriteBase(benchmark::State& state) {
    const SuppressBase base = SuppressBase::Read(TheFiles().Base());
    for (auto iteration : state) {
        base.Write(TheFiles().Output());
    }
}

BENCHMARK(ParseAndDumpEachLine)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3);
BENCHMARK(FilterReport)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3);
BENCHMARK(ReadBase)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3);
BENCHMARK(WriteBase)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3);

} // namespace

BENCHMARK_MAIN();
