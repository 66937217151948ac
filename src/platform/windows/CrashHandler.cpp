#include "platform/ConsoleStream.h"
#include "platform/CrashReport.h"
#include "platform/windows/Handle.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <windows.h>

namespace Orvanta {

namespace {

constexpr ULONG StackForHandling = 64 * 1024; // what an overflow leaves for the handler

// What the handlers and the crash thread share. Never destroyed: a crash may come at the very end.
struct CrashState {
    CONTEXT context{}; // of the crashed thread
    Handle captured;
    Handle reported;
    std::atomic<bool> isClaimed = false; // by the first thread that crashes
};

std::atomic<CrashState*> crashState = nullptr; // set once, before the handlers are there

// A stack found by the tables that the compiler leaves for exceptions: unlike the walk of dbghelp, these are there for
// every function, whatever compiler it comes from.
class UnwoundTrace : public backward::StackTrace {
public:
    explicit UnwoundTrace(CONTEXT context) {
        while (context.Rip != 0 && _stacktrace.size() < LongestTrace) {
            _stacktrace.push_back(reinterpret_cast<void*>(context.Rip)); // NOLINT(performance-no-int-to-ptr)
            StepOut(context);
        }
    }

private:
    // Puts the registers of the caller into the context.
    static void StepOut(CONTEXT& context) {
        DWORD64 base = 0;
        RUNTIME_FUNCTION* const function = ::RtlLookupFunctionEntry(context.Rip, &base, nullptr);
        if (function != nullptr) {
            void* handlerData = nullptr;
            DWORD64 frame = 0;
            ::RtlVirtualUnwind(UNW_FLAG_NHANDLER, base, context.Rip, function, &context, &handlerData, &frame, nullptr);
        } else { // one that calls no other: nothing stands above the address that it returns to
            context.Rip = *reinterpret_cast<const DWORD64*>(context.Rsp); // NOLINT(performance-no-int-to-ptr)
            context.Rsp += sizeof(DWORD64);
        }
    }
};

DWORD WINAPI ReportCrash(void* /*parameter*/) {
    CrashState& state = *crashState.load();
    ::WaitForSingleObject(state.captured.Get(), INFINITE);
    backward::Printer printer;
    printer.address = true;
    WriteCrashReport(printer, UnwoundTrace(state.context), ::GetModuleHandleW(nullptr));
    ::SetEvent(state.reported.Get());
    return 0;
}

// Runs on the crashed thread.
void Report(const CONTEXT& context) {
    CrashState& state = *crashState.load();
    if (state.isClaimed.exchange(true)) {
        ::Sleep(INFINITE); // another thread has crashed before and is about to end the process
    }
    // Copied before the other thread is woken up: it reads nothing of this stack but through the copy.
    state.context = context;
    ::SetEvent(state.captured.Get());
    ::WaitForSingleObject(state.reported.Get(), LongestReportSeconds * 1000);
}

void ReportHere() {
    CONTEXT context{};
    ::RtlCaptureContext(&context);
    Report(context);
}

LONG WINAPI HandleException(EXCEPTION_POINTERS* information) {
    Report(*information->ContextRecord);
    // Ended here and now: what the system would do next goes through a stack that may have no room left.
    // With the exception's code, as without a handler.
    ::TerminateProcess(::GetCurrentProcess(), information->ExceptionRecord->ExceptionCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

// The terminate handler of the C++ library comes here too, by way of abort.
void HandleAbort(int /*signal*/) {
    ReportHere();
}

[[noreturn]] void AbortReported() {
    ReportHere();
    std::signal(SIGABRT, SIG_DFL);
    std::abort();
}

void HandleInvalidParameter(const wchar_t* /*expression*/, const wchar_t* /*function*/, const wchar_t* /*file*/,
                            unsigned /*line*/, std::uintptr_t /*reserved*/) {
    AbortReported();
}

// Functions of the runtime that its import library lacks.
template <class Function>
Function RuntimeFunction(const char* name) {
    // The one that this program is linked to, which is loaded for certain.
    const HMODULE runtime = ::GetModuleHandleW(L"msvcrt.dll");
    return runtime == nullptr ? nullptr
                              : reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(runtime, name)));
}

// Nobody may be there to close a message box.
void ShowNoMessageBoxes() {
    using SetAbortBehavior = unsigned (*)(unsigned flags, unsigned mask);
    constexpr unsigned WriteAbortMessage = 1;
    constexpr unsigned CallReportFault = 2;
    if (const auto setAbortBehavior = RuntimeFunction<SetAbortBehavior>("_set_abort_behavior")) {
        setAbortBehavior(0, WriteAbortMessage | CallReportFault);
    }
    ::SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
}

void HandlePureCalls() {
    using PureCallHandler = void (*)();
    using SetPureCallHandler = PureCallHandler (*)(PureCallHandler);
    if (const auto setHandler = RuntimeFunction<SetPureCallHandler>("_set_purecall_handler")) {
        setHandler([] { AbortReported(); });
    }
}

void HandleInvalidParameters() {
    using Handler = decltype(&HandleInvalidParameter);
    using SetHandler = Handler (*)(Handler);
    if (const auto setHandler = RuntimeFunction<SetHandler>("_set_invalid_parameter_handler")) {
        setHandler(&HandleInvalidParameter);
    }
}

} // namespace

namespace {

// Of the stack that the thread has: nothing to be kept.
void ReserveStackForHandling() {
    ULONG guarantee = StackForHandling;
    ::SetThreadStackGuarantee(&guarantee);
}

} // namespace

ThreadCrashRoom::ThreadCrashRoom() {
    ReserveStackForHandling();
}

ThreadCrashRoom::~ThreadCrashRoom() = default;

void InstallCrashHandler() {
    CrashState& state = *std::make_unique<CrashState>().release();
    state.captured = Handle(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
    state.reported = Handle(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
    crashState.store(&state);
    const Handle thread(::CreateThread(nullptr, 0, &ReportCrash, nullptr, 0, nullptr));
    if (!thread.IsOpen()) {
        // Nothing has begun yet. A run that could crash without a word is not worth beginning.
        WriteToStream(StandardStream::Error, "Error: the crash handler's thread can't be started\n");
        std::abort();
    }
    ReserveStackForHandling();

    ShowNoMessageBoxes();
    // After the thread is there that answers it.
    ::SetUnhandledExceptionFilter(&HandleException);
    std::signal(SIGABRT, &HandleAbort);
    HandlePureCalls();
    HandleInvalidParameters();
}

} // namespace Orvanta
