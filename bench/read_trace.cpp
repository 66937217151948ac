// Reads the trace of a build of a hundred thousand compilations, about 2 GB, as the driver does, and compares the CPU
// time with that of counting the lines that hold a word. Prints the ratio and the peak memory.
//     read_trace [COMPILATIONS]

#include "buildinput/BuildInput.h"
#include "buildinput/InvocationCollector.h"
#include "compilers/CompilerRegistry.h"
#include "platform/StopFlag.h"
#include "platform/TemporaryFolder.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include <sys/resource.h>

namespace {

using namespace Orvanta;

constexpr std::size_t DefaultCompilations = 100000;
constexpr std::size_t UnitsPerFolder = 40;
constexpr std::size_t HeadersPerUnit = 130;
constexpr std::size_t SearchedFolders = 8; // in which the compiler looks for its assembler in vain
constexpr std::size_t Jobs = 8;
constexpr int Rounds = 3;

/// A trace as strace -f -v writes it of a build by recursive make with several jobs at once.
class Trace {
public:
    explicit Trace(std::size_t compilations) {
        const std::string compiler = folder_.Path() + "/c++";
        std::ofstream(compiler) << "#!/bin/sh\necho 'c++ (GCC) 12.2.0'\n";
        std::filesystem::permissions(compiler, std::filesystem::perms::owner_all);
        const std::ofstream source(folder_.Path() + "/Source.cpp");
        std::ofstream file(Path(), std::ios::binary);
        file << "1000  execve(\"/usr/bin/make\", [\"make\", \"-j8\"], [" << Variables(0) << "]) = 0\n"
             << "1000  getcwd(\"" << folder_.Path() << "\", 4096) = 20\n";
        for (std::size_t unit = 0; unit < compilations; unit += Jobs) {
            WriteJobs(file, compiler, unit);
        }
    }

    [[nodiscard]] std::string Path() const { return folder_.Path() + "/strace_out"; }

private:
    [[nodiscard]] std::string Variables(std::size_t module) const {
        std::string text = "\"PWD=" + folder_.Path() + "\", \"PATH=/usr/local/bin:/usr/bin:/bin\", \"MAKELEVEL=1\"";
        for (int variable = 0; variable < 35; ++variable) {
            text += ", \"VARIABLE_" + std::to_string(variable) + "=/usr/share/some/folder/of/module" +
                    std::to_string(module) + "\"";
        }
        return text;
    }

    /// Some compilations at once: their lines take turns.
    void WriteJobs(std::ostream& file, const std::string& compiler, std::size_t unit) const {
        const std::size_t module = unit / UnitsPerFolder;
        const std::string variables = Variables(module);
        const std::string name = "module" + std::to_string(module);
        const auto shell = [](std::size_t job) {
            return std::to_string(2000 + 3 * job) + "  ";
        };
        const auto pass = [](std::size_t job) {
            return std::to_string(2001 + 3 * job) + "  ";
        };
        for (std::size_t job = 0; job < Jobs; ++job) {
            file
                << "1000  clone3({flags=CLONE_VM|CLONE_VFORK, exit_signal=SIGCHLD, stack=0x7fdf, stack_size=0x9000}, "
                   "88 "
                   "<unfinished ...>\n"
                << shell(job) << "execve(\"" << compiler << "\", [\"c++\", \"-DPROJECT_SHARED\", \"-D" << name
                << "_EXPORTS\", \"-I/home/user/project/src/" << name
                << "\", \"-I/home/user/project/include\", \"-isystem\", \"/usr/include/library-2.0\", \"-O2\", \"-g\", "
                   "\"-Wall\", \"-Wextra\", \"-std=gnu++17\", \"-o\", \"Source"
                << unit + job << ".o\", \"-c\", \"Source.cpp\"], [" << variables << "] <unfinished ...>\n"
                << "1000  <... clone3 resumed>)              = " << 2000 + 3 * job << '\n'
                << shell(job) << "<... execve resumed>)             = 0\n"
                << shell(job) << "vfork( <unfinished ...>\n"
                << pass(job) << "execve(\"/usr/lib/gcc/cc1plus\", [\"cc1plus\", \"-quiet\", \"Source.cpp\"], ["
                << variables << "] <unfinished ...>\n"
                << shell(job) << "<... vfork resumed>)              = " << 2001 + 3 * job << '\n'
                << pass(job) << "<... execve resumed>)             = 0\n";
        }
        WriteHeaders(file, pass);
        for (std::size_t job = 0; job < Jobs; ++job) {
            file << pass(job) << "exit_group(0)                     = ?\n" << pass(job) << "+++ exited with 0 +++\n";
            WriteAssembler(file, shell(job), std::to_string(2002 + 3 * job), variables);
            file << shell(job) << "+++ exited with 0 +++\n";
        }
    }

    template <typename Prefix>
    static void WriteHeaders(std::ostream& file, const Prefix& pass) {
        for (std::size_t header = 0; header < HeadersPerUnit; ++header) {
            const bool isFound = header % 3 != 0;
            for (std::size_t job = 0; job < Jobs; ++job) {
                file << pass(job) << "openat(AT_FDCWD, \"/home/user/project/include/header" << header
                     << ".h\", O_RDONLY|O_NOCTTY) = " << (isFound ? "4\n" : "-1 ENOENT (No such file or directory)\n");
            }
        }
    }

    static void WriteAssembler(std::ostream& file, const std::string& parent, const std::string& id,
                               const std::string& variables) {
        file << parent << "vfork() = " << id << '\n';
        for (std::size_t folder = 0; folder <= SearchedFolders / 2; ++folder) {
            file << id << "  execve(\"/usr/folder" << folder << "/as\", [\"as\", \"--64\"], [" << variables
                 << "]) = " << (folder == SearchedFolders / 2 ? "0\n" : "-1 ENOENT (No such file or directory)\n");
        }
        file << id << "  +++ exited with 0 +++\n";
    }

    TemporaryFolder folder_;
};

double CpuSeconds(int who) {
    rusage usage{};
    getrusage(who, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

std::size_t ReadAsTheDriver(const std::string& path) {
    const RunSettings settings;
    const CompilerRegistry registry;
    const StopFlag stop;
    Log log;
    CompilerIdentifier identifier(settings, log, stop);
    InvocationCollector collector(settings, registry, identifier, log);
    ReadBuildInput(path, collector);
    return collector.Take().units.size();
}

} // namespace

int main(int argc, char** argv) {
    const std::size_t compilations = argc > 1 ? std::stoul(argv[1]) : DefaultCompilations;
    const Trace trace(compilations);
    std::cout << compilations << " compilations, " << (std::filesystem::file_size(trace.Path()) >> 20U) << " MB\n";
    // grep's output has to go to a file: into the null device it stops at the first line.
    const std::string count = "grep -c execve '" + trace.Path() + "' >'" + trace.Path() + ".count'";
    double leastReading = 1e9;
    double leastCounting = 1e9;
    for (int round = 0; round < Rounds; ++round) {
        const double countingBefore = CpuSeconds(RUSAGE_CHILDREN);
        if (std::system(count.c_str()) != 0) {
            return 1;
        }
        leastCounting = std::min(leastCounting, CpuSeconds(RUSAGE_CHILDREN) - countingBefore);
        const double readingBefore = CpuSeconds(RUSAGE_SELF);
        if (ReadAsTheDriver(trace.Path()) != compilations) {
            std::cout << "not every compilation became a unit\n";
            return 1;
        }
        leastReading = std::min(leastReading, CpuSeconds(RUSAGE_SELF) - readingBefore);
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::cout << "CPU time of the driver's reader: " << leastReading << " s, of grep -c: " << leastCounting
              << " s, ratio: " << leastReading / leastCounting << '\n'
              << "Peak memory: " << usage.ru_maxrss / 1024 << " MB\n";
    return 0;
}
