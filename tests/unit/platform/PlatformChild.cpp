// What a test of the platform can't do in its own process: crash, be interrupted, be killed while it holds something.
// The first argument names what to do.

#include "platform/Console.h"
#include "platform/CrashHandler.h"
#include "platform/LockFile.h"
#include "platform/TemporaryFolder.h"

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>

namespace {

using namespace Orvanta;

[[noreturn]] void WaitToBeKilled() {
    while (true) {
        std::this_thread::sleep_for(std::chrono::hours(1));
    }
}

int HoldLock(const std::string& directory, const std::string& key) {
    LockFile lock;
    if (lock.Take(directory, key) != LockFile::State::Held) {
        return EXIT_FAILURE;
    }
    std::cout << "held" << std::endl;
    WaitToBeKilled();
}

int UseTemporaryFolder(bool isToBeKilled) {
    const TemporaryFolder folder;
    std::ofstream(folder.Path() + "/fragment") << "findings";
    std::cout << folder.Path() << std::endl;
    if (isToBeKilled) {
        WaitToBeKilled();
    }
    return EXIT_SUCCESS;
}

int BeInterrupted() {
    StopFlag stop;
    InstallInterruptHandler(stop);
    std::raise(SIGPIPE);
    if (stop.IsSet()) {
        return EXIT_FAILURE;
    }
    for (const int signal : {SIGINT, SIGINT, SIGTERM}) {
        std::raise(signal);
        if (!stop.IsSet()) {
            return EXIT_FAILURE;
        }
    }
    WriteToStandardOutput("stopped\n");
    return EXIT_SUCCESS;
}

} // namespace

// Named in the stack that a crash leaves; not inlined, and not in an unnamed namespace, so that the name is there.
extern "C" [[gnu::noinline]] void CrashOnPurpose(std::string_view way);

extern "C" [[gnu::noinline]] void OverflowOnPurpose(volatile char* outer) {
    volatile char inner[4096]; // NOLINT: the point is to fill the stack
    inner[0] = *outer;
    if (inner[0] == 0) { // as it always is, which the compiler can't know
        OverflowOnPurpose(inner);
    }
    *outer = inner[0];
}

extern "C" void CrashOnPurpose(std::string_view way) {
    if (way == "segv") {
        const volatile std::uintptr_t nowhere = 64;    // in the first page, which nobody has
        *reinterpret_cast<volatile int*>(nowhere) = 1; // NOLINT(performance-no-int-to-ptr)
    } else if (way == "abort") {
        std::abort();
    } else if (way == "exception") {
        throw std::runtime_error("nobody catches this");
    } else if (way == "overflow") {
        volatile char outermost = 0;
        OverflowOnPurpose(&outermost);
    } else if (way == "thread") {
        std::thread([] { CrashOnPurpose("segv"); }).join();
    }
    std::cerr << "still alive after " << way << '\n';
}

int main(int count, char** arguments) {
    const std::string task = count > 1 ? arguments[1] : "";
    if (task == "hold-lock" && count == 4) {
        return HoldLock(arguments[2], arguments[3]);
    }
    if (task == "hold-folder" || task == "use-folder") {
        return UseTemporaryFolder(task == "hold-folder");
    }
    if (task == "interrupt") {
        return BeInterrupted();
    }
    if (task == "crash" && count == 3) {
        InstallCrashHandler();
        CrashOnPurpose(arguments[2]);
    }
    return EXIT_FAILURE;
}
