#include "platform/ConsoleStream.h"
#include "platform/CrashReport.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <system_error>
#include <thread>

#include <pthread.h>
#include <semaphore.h>
#include <ucontext.h>
#include <unistd.h>

namespace Orvanta {

namespace {

constexpr std::size_t SignalStackSize = std::size_t(128) * 1024; // resident only when used

// What the handlers and the crash thread share. Never destroyed: a crash may come at the very end.
struct CrashState {
    backward::StackTrace trace;
    sem_t captured{};
    sem_t reported{};
    std::atomic<bool> isClaimed = false; // by the first thread that crashes
};

std::atomic<CrashState*> crashState = nullptr; // set once, before the handlers are there

// A wait that signals don't end.
void WaitFor(sem_t& semaphore) {
    while (::sem_wait(&semaphore) != 0 && errno == EINTR) {
    }
}

void WaitForReport(sem_t& semaphore) {
    // By the clock of the day, as this wait counts.
    timespec deadline{};
    ::clock_gettime(CLOCK_REALTIME, &deadline);
    deadline.tv_sec += LongestReportSeconds;
    while (::sem_timedwait(&semaphore, &deadline) != 0 && errno == EINTR) {
    }
}

// Where the thread was when the signal came; null where we can't tell: the trace then starts at the handler.
void* CrashedInstruction([[maybe_unused]] void* context) {
#if defined(REG_RIP)
    const auto address = static_cast<ucontext_t*>(context)->uc_mcontext.gregs[REG_RIP];
    return reinterpret_cast<void*>(address); // NOLINT(performance-no-int-to-ptr)
#elif defined(__aarch64__)
    const auto address = static_cast<ucontext_t*>(context)->uc_mcontext.pc;
    return reinterpret_cast<void*>(address); // NOLINT(performance-no-int-to-ptr)
#else
    return nullptr;
#endif
}

[[noreturn]] void EndAsWithoutHandler(int signal) {
    // Raised again with the default in place: the parent then sees the signal, and a core is written where that is set
    // up.
    std::signal(signal, SIG_DFL);
    sigset_t signals;
    ::sigemptyset(&signals);
    ::sigaddset(&signals, signal);
    ::pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    std::raise(signal);
    std::_Exit(EXIT_FAILURE); // not reached: the default of each of these signals ends the process
}

// Runs on the crashed thread, with all signals blocked: a second fault in here ends the process at once.
extern "C" void HandleCrash(int signal, siginfo_t* information, void* context) {
    CrashState& state = *crashState.load();
    if (state.isClaimed.exchange(true)) {
        while (true) {
            ::pause(); // another thread has crashed before and is about to end the process
        }
    }
    // Taken here, on the crashed thread, whose stack it is; printed by the other one, which may allocate.
    state.trace.load_from(CrashedInstruction(context), LongestTrace, context, information->si_addr);
    ::sem_post(&state.captured);
    WaitForReport(state.reported);
    EndAsWithoutHandler(signal);
}

void ReportCrashes(CrashState& state) {
    WaitFor(state.captured);
    backward::Printer printer;
    // A stripped program has no names: the addresses can still be looked up.
    printer.address = true;
    WriteCrashReport(printer, state.trace, nullptr);
    ::sem_post(&state.reported);
}

// The thread has all signals blocked: interrupts go to others, and a crash of its own ends the process at once.
void StartCrashThread(CrashState& state) {
    sigset_t all;
    sigset_t before;
    ::sigfillset(&all);
    // Blocked before the thread is made, so that it is born so.
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
        std::thread([&state] { ReportCrashes(state); }).detach();
    } catch (const std::system_error& fault) {
        // Nothing has begun yet. A run that could crash without a word is not worth beginning.
        WriteToStream(StandardStream::Error,
                      "Error: the crash handler's thread can't be started: " + std::string(fault.what()) + '\n');
        std::abort();
    }
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

// So that an overflow of the main thread's stack can be handled too.
void UseSignalStack() {
    // Static: there is no moment at which it could be given back.
    static constinit std::array<std::byte, SignalStackSize> memory{};
    stack_t stack{};
    stack.ss_sp = memory.data();
    stack.ss_size = memory.size();
    ::sigaltstack(&stack, nullptr);
}

} // namespace

namespace {

// A thread's second stack, and the one that it had before.
struct SecondStack {
    std::unique_ptr<std::byte[]> memory;
    stack_t before{};
};

} // namespace

ThreadCrashRoom::ThreadCrashRoom() {
    auto room = std::make_shared<SecondStack>();
    room->memory = std::make_unique_for_overwrite<std::byte[]>(SignalStackSize);
    stack_t stack{};
    stack.ss_sp = room->memory.get();
    stack.ss_size = SignalStackSize;
    // Kept only when the system uses it; otherwise there is nothing to undo.
    if (::sigaltstack(&stack, &room->before) == 0) {
        room_ = std::move(room);
    }
}

ThreadCrashRoom::~ThreadCrashRoom() {
    if (room_ != nullptr) {
        ::sigaltstack(&static_cast<SecondStack*>(room_.get())->before, nullptr);
    }
}

void InstallCrashHandler() {
    CrashState& state = *std::make_unique<CrashState>().release();
    ::sem_init(&state.captured, 0, 0);
    ::sem_init(&state.reported, 0, 0);
    state.trace.load_here(LongestTrace +
                          8); // the handler then finds the memory and the unwinder ready: load_from takes 8 more
    // Before any handler is there that reads it.
    crashState.store(&state);
    StartCrashThread(state);
    UseSignalStack();

    struct sigaction action {};

    ::sigfillset(&action.sa_mask);
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    action.sa_sigaction = &HandleCrash;
    // Faults of the program itself, and `abort`, to which the terminate handler leads too.
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) {
        ::sigaction(signal, &action, nullptr);
    }
}

} // namespace Orvanta
