#include "platform/Console.h"

#include "platform/ColourChoice.h"
#include "platform/ConsoleStream.h"
#include "platform/windows/ConsoleHandler.h"
#include "platform/windows/FileAccess.h"
#include "platform/windows/SystemReason.h"
#include "platform/windows/WideText.h"

#include <algorithm>
#include <atomic>
#include <bitset>
#include <optional>

#include <windows.h>

namespace Orvanta {

namespace {

std::atomic<StopFlag*> flagToSet = nullptr; // set once, before the handler is there

// Only a console has a mode.
bool IsConsole(void* output) {
    DWORD mode = 0;
    return ::GetConsoleMode(output, &mode) != FALSE;
}

// A console shows bytes by a code page of its own, which may be another than ours.
void WriteToConsole(void* output, std::string_view text) {
    constexpr std::size_t LargestPiece = 8192; // one call takes no more than some 64 KB
    const std::wstring wide = ToWide(text);
    for (std::wstring_view left = wide; !left.empty();) {
        DWORD count = 0;
        const auto size = static_cast<DWORD>(std::min(left.size(), LargestPiece));
        // A console that takes nothing any more is no error of a message.
        if (::WriteConsoleW(output, left.data(), size, &count, nullptr) == FALSE || count == 0) {
            return;
        }
        left.remove_prefix(count);
    }
}

// To a file or a pipe, as they are; false, with the system's error set, when it takes no more.
bool WriteBytes(void* output, std::string_view bytes) {
    constexpr std::size_t LargestPiece = 1U << 20U;
    while (!bytes.empty()) {
        DWORD count = 0;
        const auto size = static_cast<DWORD>(std::min(bytes.size(), LargestPiece));
        if (::WriteFile(output, bytes.data(), size, &count, nullptr) == FALSE || count == 0) {
            return false;
        }
        bytes.remove_prefix(count);
    }
    return true;
}

bool WriteBytesTo(DWORD stream, std::string_view bytes) {
    void* const output = ::GetStdHandle(stream);
    if (output == nullptr || output == INVALID_HANDLE_VALUE) {
        ::SetLastError(ERROR_INVALID_HANDLE);
        return false;
    }
    if (IsConsole(output)) {
        WriteToConsole(output, bytes);
        return true;
    }
    return WriteBytes(output, bytes);
}

} // namespace

// Runs on a thread that the system makes for the event.
int __stdcall HandleConsoleEvent(unsigned long event) {
    // Left to the next handler, which ends the program.
    if (event != CTRL_C_EVENT) {
        return FALSE;
    }
    flagToSet.load()->Set();
    void* const output =
        ::GetStdHandle(PlaceOfMessages() == MessagePlace::StandardError ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE);
    if (output == nullptr || output == INVALID_HANDLE_VALUE) {
        return TRUE;
    }
    // The message stands there once, however often the key is pressed; the handler may run on two threads at once.
    static const bool isWritten = [output] {
        DWORD count = 0;
        if (IsStatusShown()) {
            ::WriteFile(output, ClearLine.data(), static_cast<DWORD>(ClearLine.size()), &count, nullptr);
        }
        ::WriteFile(output, StopMessage.data(), static_cast<DWORD>(StopMessage.size()), &count, nullptr);
        return true;
    }();
    return isWritten ? TRUE : FALSE;
}

void InstallInterruptHandler(StopFlag& stop) {
    flagToSet.store(&stop);
    ::SetConsoleCtrlHandler(&HandleConsoleEvent, TRUE);
}

std::string WriteToStream(StandardStream stream, std::string_view bytes) noexcept {
    return WriteBytesTo(stream == StandardStream::Output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE, bytes)
               ? std::string()
               : SystemReason(::GetLastError());
}

std::optional<unsigned> TerminalColumns(StandardStream stream) noexcept {
    void* const output = ::GetStdHandle(stream == StandardStream::Output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
    DWORD mode = 0;
    CONSOLE_SCREEN_BUFFER_INFO screen{};
    if (::GetConsoleMode(output, &mode) == FALSE || ::GetConsoleScreenBufferInfo(output, &screen) == FALSE) {
        return std::nullopt;
    }
    // Tried and not asked for: only the console itself knows whether it takes sequences.
    if ((mode & ENABLE_VIRTUAL_TERMINAL_PROCESSING) == 0 &&
        ::SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) == FALSE) {
        return std::nullopt;
    }
    return static_cast<unsigned>(std::max(screen.srWindow.Right - screen.srWindow.Left + 1, 1));
}

bool ShowsColours() {
    if (const std::optional<bool> asked = ColoursAskedFor()) {
        return *asked;
    }
    return TerminalColumns(StandardStream::Output).has_value();
}

std::size_t ReadFromStandardInput(std::span<char> target) {
    constexpr std::size_t LargestPiece = 1U << 20U;
    void* const input = ::GetStdHandle(STD_INPUT_HANDLE);
    if (input == nullptr || input == INVALID_HANDLE_VALUE) {
        return 0;
    }
    DWORD count = 0;
    const auto size = static_cast<DWORD>(std::min(target.size(), LargestPiece));
    if (::ReadFile(input, target.data(), size, &count, nullptr) == FALSE && ::GetLastError() != ERROR_BROKEN_PIPE) {
        FailFile("standard input", ::GetLastError()); // a pipe that its writer closed is at its end
    }
    return count;
}

unsigned AvailableProcessors() noexcept {
    const DWORD all = ::GetActiveProcessorCount(ALL_PROCESSOR_GROUPS);
    DWORD_PTR allowed = 0;
    DWORD_PTR present = 0;
    // With more than one group of processors the mask speaks of one of them only, or is empty.
    if (::GetActiveProcessorGroupCount() == 1 &&
        ::GetProcessAffinityMask(::GetCurrentProcess(), &allowed, &present) != FALSE && allowed != 0) {
        return static_cast<unsigned>(std::bitset<64>(allowed).count());
    }
    return std::max(1U, static_cast<unsigned>(all));
}

} // namespace Orvanta
