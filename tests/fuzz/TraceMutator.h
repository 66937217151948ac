#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// Changes traces by whole lines, most of which stay what a tracer writes. Bytes changed at random nearly always make
/// a line that is passed over; the faults are in how lines fit together: parts of calls, parents and folders.
class TraceMutator {
public:
    explicit TraceMutator(unsigned int seed) : random_(seed) {}

    /// The trace with one thing changed.
    [[nodiscard]] std::string Mutate(std::string_view trace) {
        std::vector<std::string> lines = Lines(trace);
        const std::size_t place = Below(lines.size() + 1);
        const bool isBehindAll = place == lines.size();
        switch (Below(isBehindAll ? 1 : 6)) {
        case 0:
            lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(place), NewLine());
            break;
        case 1:
            lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(place));
            break;
        case 2:
            lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(Below(lines.size())), std::string(lines[place]));
            break;
        case 3:
            lines[place].swap(lines[Below(lines.size())]);
            break;
        case 4:
            Interrupt(lines, place);
            break;
        default:
            GiveToOther(lines[place]);
        }
        return Joined(lines);
    }

private:
    [[nodiscard]] std::size_t Below(std::size_t end) { return random_() % end; }

    template <std::size_t Count>
    [[nodiscard]] std::string OneOf(const char* const (&texts)[Count]) {
        return texts[Below(Count)];
    }

    /// Few, so that they meet.
    [[nodiscard]] std::string Process() { return std::to_string(1 + Below(6)); }

    [[nodiscard]] static std::vector<std::string> Lines(std::string_view text) {
        std::vector<std::string> lines;
        while (!text.empty()) {
            const std::size_t end = std::min(text.find('\n'), text.size() - 1);
            lines.emplace_back(text.substr(0, end + 1));
            text.remove_prefix(end + 1);
        }
        return lines;
    }

    [[nodiscard]] static std::string Joined(const std::vector<std::string>& lines) {
        std::string text;
        for (const std::string& line : lines) {
            text += line;
        }
        return text;
    }

    [[nodiscard]] std::string Arguments() {
        static constexpr const char* const Words[] = {"gcc",        "cc1",   "-c",     "a.c", "b.cc",
                                                      "-o",         "@list", "ccache", "sh",  "-DA=\\\"1\\\"",
                                                      "\\303\\244", "-I..",  "--"};
        std::string text = "[";
        for (std::size_t left = Below(6); left > 0; --left) {
            text += '"' + OneOf(Words) + "\"" + (Below(20) == 0 ? "..." : "") + (left > 1 ? ", " : "");
        }
        return text + (Below(20) == 0 ? ", ...]" : "]");
    }

    /// A call, without its process.
    [[nodiscard]] std::string Call() {
        static constexpr const char* const Programs[] = {"/usr/bin/gcc", "/bin/sh", "cc", "./tool", "/usr/bin/make"};
        static constexpr const char* const Folders[] = {"..", "lib", "/project", "/", "\\303\\244/x"};
        static constexpr const char* const Variables[] = {"[\"PWD=/project\"]", "0x7f /* 9 vars */",
                                                          "[\"A=1\"..., ...]", "[]"};
        static constexpr const char* const Forks[] = {"vfork()", "clone(child_stack=NULL, flags=SIGCHLD)",
                                                      "clone3({flags=CLONE_VM|CLONE_THREAD}, 88)",
                                                      "clone(flags=CLONE_FS|SIGCHLD)", "fork()"};
        switch (Below(7)) {
        case 0:
            return "execve(\"" + OneOf(Programs) + "\", " + Arguments() + ", " + OneOf(Variables) + ") = 0";
        case 1:
            return "execve(\"" + OneOf(Programs) + "\", " + Arguments() + ", []) = -1 ENOENT (No such file)";
        case 2:
            return "chdir(\"" + OneOf(Folders) + "\") = 0";
        case 3:
            return "openat(AT_FDCWD, \"" + OneOf(Folders) + "\", O_DIRECTORY) = 3";
        case 4:
            return "fchdir(3) = 0";
        case 5:
            return "getcwd(\"/project\", 4096) = 9";
        default:
            return OneOf(Forks) + " = " + Process();
        }
    }

    [[nodiscard]] std::string NewLine() {
        static constexpr const char* const Others[] = {"+++ exited with 0 +++",
                                                       "+++ killed by SIGKILL +++",
                                                       "+++ superseded by execve in pid 2 +++",
                                                       "--- SIGCHLD {si_signo=SIGCHLD} ---",
                                                       "<... execve resumed>) = 0",
                                                       "<... vfork resumed>) = 3"};
        return Process() + ' ' + (Below(4) == 0 ? OneOf(Others) : Call()) + '\n';
    }

    /// Cuts a call in two, with lines in between.
    void Interrupt(std::vector<std::string>& lines, std::size_t place) {
        std::string& line = lines[place];
        const std::size_t name = line.find_first_not_of("0123456789 ");
        const std::size_t bracket = line.find('(');
        if (name == std::string::npos || bracket == std::string::npos || bracket < name || line.back() != '\n') {
            return;
        }
        const std::size_t cut = bracket + 1 + Below(line.size() - bracket - 1);
        const std::string rest =
            line.substr(0, name) + "<... " + line.substr(name, bracket - name) + " resumed>" + line.substr(cut);
        line = line.substr(0, cut) + " <unfinished ...>\n";
        const std::size_t behind = place + 1 + Below(lines.size() - place);
        lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(behind), rest);
    }

    /// Makes it the line of another process.
    void GiveToOther(std::string& line) {
        const std::size_t digits = line.find_first_not_of("0123456789");
        line = Process() + (digits == std::string::npos ? " \n" : line.substr(digits));
    }

    std::minstd_rand random_;
};

} // namespace Orvanta
