#pragma once

#include "platform/CrashHandler.h"

#include <backward.hpp>

#include <cstddef>
#include <cstdio>

namespace Orvanta {

inline constexpr const char* SupportAddress = "support@orvanta.example";

/// The most frames that the stack of a crash is told with.
inline constexpr std::size_t LongestTrace = 64;

/// Printing allocates, and the crash may have happened inside the allocator: longer than this nobody waits for a trace.
inline constexpr unsigned LongestReportSeconds = 30;

/// Decides where the stack of a crash goes. `loadAddress` is the program's, where the tools that read its debug
/// information need it to find the places of the addresses; null elsewhere.
inline void WriteCrashReport(backward::Printer& printer, const backward::StackTrace& trace, const void* loadAddress) {
    std::FILE* const file = std::fopen(CrashReportFileName, "wb");
    if (file == nullptr) {
        printer.print(trace, stdout);
        std::fflush(stdout);
        return;
    }
    // Said before the stack is printed: that allocates, and may get stuck where the crash has happened inside the
    // allocator.
    std::fprintf(stderr, "Application has crashed. Please send file %s to %s\n", CrashReportFileName, SupportAddress);
    std::fflush(stderr);
    printer.print(trace, file);
    if (loadAddress != nullptr) {
        std::fprintf(file, "The program is loaded at %p\n", loadAddress);
    }
    std::fclose(file);
}

} // namespace Orvanta
