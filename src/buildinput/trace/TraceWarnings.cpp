#include "buildinput/trace/TraceWarnings.h"

namespace Orvanta {

namespace {

constexpr std::size_t MostTold = 5; // of one kind

} // namespace

void TraceWarnings::NeverStarted(ProcessId process, std::size_t line) {
    if (++neverStarted_ <= MostTold) {
        log_.Line("Process " + std::to_string(process) + " at line " + std::to_string(line) + " was never started");
    }
}

void TraceWarnings::Malformed(std::size_t line, const std::string& what) {
    if (++malformed_ <= MostTold) {
        log_.Line(path_ + ", line " + std::to_string(line) + ": " + what);
    }
}

void TraceWarnings::Finish() {
    // Advice stands only here: told with each, it would be read five times.
    TellRest(neverStarted_, " more processes were never started: trace with -f and with the calls of -e trace=process, "
                            "so that every folder is right");
    TellRest(malformed_, " more lines of " + path_ + " can't be read");
}

void TraceWarnings::TellRest(std::size_t count, const std::string& text) {
    if (count > MostTold) {
        log_.Line(std::to_string(count - MostTold) + text);
    }
}

void TraceWarnings::PassedOver(const std::map<std::string, std::size_t>& programs) {
    if (programs.empty()) {
        return;
    }
    std::size_t calls = 0;
    std::string names;
    for (const auto& [name, count] : programs) {
        calls += count;
        names += (names.empty() ? "" : ", ") + name;
    }
    log_.Line(path_ + ": " + std::to_string(calls) + " calls of programs that look like compilers are passed over (" +
              names + "): -C NAME has them read");
}

} // namespace Orvanta
