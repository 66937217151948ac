#include "platform/windows/ConsoleEvents.h"

#include "platform/windows/ProcessTree.h"

#include <windows.h>

namespace Orvanta {

namespace {

BOOL WINAPI GoOn(DWORD /*event*/) {
    return TRUE;
}

} // namespace

void ReceiveCtrlC() {
    ::SetConsoleCtrlHandler(nullptr, FALSE);
}

void SurviveConsoleEvents() {
    ::SetConsoleCtrlHandler(&GoOn, TRUE);
}

bool SendConsoleEvent(ConsoleEvent event) {
    return ::GenerateConsoleCtrlEvent(event == ConsoleEvent::CtrlC ? CTRL_C_EVENT : CTRL_BREAK_EVENT, 0) != FALSE;
}

bool TerminateTreeOf(unsigned long processId) {
    const Handle process(
        ::OpenProcess(PROCESS_TERMINATE | PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE, FALSE, processId));
    if (!process.IsOpen()) {
        return false;
    }
    TerminateTree(process.Get());
    return true;
}

} // namespace Orvanta
