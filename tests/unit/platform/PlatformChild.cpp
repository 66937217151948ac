// What a test of the platform can't do in its own process: crash, be interrupted, be killed while it holds something.
// The first argument names what to do.

#include "doubles/Script.h"
#include "doubles/SiblingProcess.h"
#include "platform/Console.h"
#include "platform/CrashHandler.h"
#include "platform/Environment.h"
#include "platform/LockFile.h"
#include "platform/Paths.h"
#include "platform/ProgramArguments.h"
#include "platform/TemporaryFolder.h"
#include "unit/platform/Interruption.h"

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

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
    WriteMessage("held\n");
    WaitToBeKilled();
}

int UseTemporaryFolder(bool isToBeKilled) {
    const TemporaryFolder folder;
    std::ofstream(folder.Path() + "/fragment") << "findings";
    WriteMessage(folder.Path() + '\n');
    if (isToBeKilled) {
        WaitToBeKilled();
    }
    return EXIT_SUCCESS;
}

int Print(std::size_t size) {
    WriteMessage(std::string(size, 'o'));
    std::cerr << std::string(size, 'e') << std::flush;
    WriteMessage("end");
    return EXIT_SUCCESS;
}

int ShowArguments(const std::vector<std::string>& arguments) {
    std::string text;
    for (const std::string& argument : arguments) {
        text += std::to_string(argument.size()) + ':' + argument;
    }
    WriteMessage(text);
    return EXIT_SUCCESS;
}

int ShowConditions(const std::vector<std::string>& variables) {
    std::string text;
    for (const std::string& name : variables) {
        const auto value = EnvironmentVariable(name);
        text += name + (value ? '=' + *value : " is not set") + '\n';
    }
    const std::string input{std::istreambuf_iterator<char>(std::cin), {}};
    WriteMessage(text + CurrentDirectory() + '\n' + std::to_string(input.size()) + " bytes\n");
    return EXIT_SUCCESS;
}

int Fail() {
    WriteMessage("out");
    std::cerr << "err" << std::flush;
    return 2;
}

// The next two tasks belong together: the second is the first one's child, which outlives it.
int LeaveGrandchild(const std::string& program, const std::string& directory, const std::string& key,
                    const std::string& endSign) {
    StartSibling({program, "hold-lock-until", directory, key, endSign});
    WaitForFile(JoinPath(directory, "held"));
    return EXIT_SUCCESS;
}

int HoldLockUntil(const std::string& directory, const std::string& key, const std::string& endSign) {
    LockFile lock;
    if (lock.Take(directory, key) != LockFile::State::Held) {
        return EXIT_FAILURE;
    }
    WriteMessage("held\n");
    TouchFile(JoinPath(directory, "held"));
    WaitForFile(endSign);
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
    } else if (way == "thread-overflow") {
        std::thread([] {
            const ThreadCrashRoom room;
            CrashOnPurpose("overflow");
        }).join();
    }
    std::cerr << "still alive after " << way << '\n';
}

namespace {

using Task = int (*)(const std::vector<std::string>& arguments);

struct TaskRow {
    std::string_view name;
    Task task; // gets the program's path, then what follows the name
};

const TaskRow Tasks[] = {
    {"print",
     [](const auto& words) {
         return Print(std::stoul(words.at(1)));
     }},
    {"exit",
     [](const auto& words) {
         return std::stoi(words.at(1));
     }},
    {"fail",
     [](const auto& /*words*/) {
         return Fail();
     }},
    {"show-arguments",
     [](const auto& words) {
         return ShowArguments({words.begin() + 1, words.end()});
     }},
    {"show-conditions",
     [](const auto& words) {
         return ShowConditions({words.begin() + 1, words.end()});
     }},
    {"hold-lock",
     [](const auto& words) {
         return HoldLock(words.at(1), words.at(2));
     }},
    {"hold-lock-in-grandchild",
     [](const auto& words) -> int {
         if (words.size() > 3) {
             WriteMessage(std::to_string(OwnProcessId()) + '\n');
         }
         StartSibling({words.at(0), "hold-lock", words.at(1), words.at(2)});
         WaitToBeKilled();
     }},
    {"leave-grandchild",
     [](const auto& words) {
         return LeaveGrandchild(words.at(0), words.at(1), words.at(2), words.at(3));
     }},
    {"hold-lock-until",
     [](const auto& words) {
         return HoldLockUntil(words.at(1), words.at(2), words.at(3));
     }},
    {"hold-folder",
     [](const auto& /*words*/) {
         return UseTemporaryFolder(true);
     }},
    {"use-folder",
     [](const auto& /*words*/) {
         return UseTemporaryFolder(false);
     }},
    {"interrupt",
     [](const auto& /*words*/) {
         return BeInterrupted();
     }},
    {"crash",
     [](const auto& words) {
         InstallCrashHandler();
         CrashOnPurpose(words.at(1));
         return EXIT_FAILURE;
     }},
};

} // namespace

int main(int count, char** arguments) {
    std::vector<std::string> words = ProgramArguments(count, arguments);
    const std::string name = words.at(1);
    words.erase(words.begin() + 1);
    for (const TaskRow& row : Tasks) {
        if (row.name == name) {
            return row.task(words);
        }
    }
    std::cerr << "no task " << name << '\n';
    return EXIT_FAILURE;
}
