#include "unit/platform/Interruption.h"

#include "platform/Console.h"
#include "platform/windows/ConsoleEvents.h"
#include "platform/windows/ConsoleHandler.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

#include <windows.h>
#include <process.h>

namespace Orvanta {

namespace {

std::atomic<int> handledPresses = 0;

// Called before the handler under test, which it leaves the event to.
BOOL WINAPI CountPress(DWORD event) {
    handledPresses += event == CTRL_C_EVENT ? 1 : 0;
    return FALSE;
}

} // namespace

int BeInterrupted() {
    StopFlag stop;
    InstallInterruptHandler(stop);
    ::SetConsoleCtrlHandler(&CountPress, TRUE);
    ReceiveCtrlC();
    for (int press = 1; press <= 2; ++press) {
        // The event goes to every program of the console: this one has a console of its own.
        if (!SendConsoleEvent(ConsoleEvent::CtrlC)) {
            return EXIT_FAILURE;
        }
        // The handler runs on a thread that the system makes.
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while ((!stop.IsSet() || handledPresses < press) && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::yield();
        }
    }
    if (!stop.IsSet() || handledPresses != 2) {
        return EXIT_FAILURE;
    }
    // The other events are left to the system. Asked directly: not every system sends all of them.
    constexpr unsigned long OtherEvents[] = {1, 2, 5, 6}; // Ctrl+Break, close, log-off, shutdown
    for (const unsigned long event : OtherEvents) {
        if (HandleConsoleEvent(event) != 0) {
            return EXIT_FAILURE;
        }
    }
    WriteMessage("stopped\n");
    // Not by way of exit: Wine crashes when it meets a thread that is just ending with its event.
    ::TerminateProcess(::GetCurrentProcess(), EXIT_SUCCESS);
    return EXIT_FAILURE;
}

unsigned long OwnProcessId() {
    return static_cast<unsigned long>(::_getpid());
}

} // namespace Orvanta
