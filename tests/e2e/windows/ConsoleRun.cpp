// console-run PREFIX PROGRAM [ARGUMENT...]
// Runs a program on this one's console and ends with its code. Meanwhile it presses Ctrl+C each time that the next of
// the files PREFIX1, PREFIX2, ... appears.

#include "platform/Files.h"
#include "platform/ProgramArguments.h"
#include "platform/windows/CommandLine.h"
#include "platform/windows/ConsoleEvents.h"
#include "platform/windows/WideText.h"

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include <process.h>

namespace {

using namespace Orvanta;

std::intptr_t Start(const std::vector<std::string>& command) {
    std::vector<std::wstring> words;
    for (const std::string& word : command) {
        words.push_back(ToWide(QuoteArgument(word))); // they are joined as they are
    }
    std::vector<const wchar_t*> arguments;
    for (const std::wstring& word : words) {
        arguments.push_back(word.c_str());
    }
    arguments.push_back(nullptr);
    return ::_wspawnv(_P_NOWAIT, ToWide(command.front()).c_str(), arguments.data());
}

[[noreturn]] void EndWith(std::intptr_t process) {
    int code = EXIT_FAILURE;
    ::_cwait(&code, process, _WAIT_CHILD);
    std::_Exit(code);
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words = ProgramArguments(argc, argv);
    SurviveConsoleEvents();
    ReceiveCtrlC();
    const std::intptr_t process = Start({words.begin() + 2, words.end()});
    if (process == -1) {
        std::cerr << "can't start " << words.at(2) << std::endl;
        return EXIT_FAILURE;
    }
    std::thread([process] { EndWith(process); }).detach();
    for (int press = 1;;) {
        if (PathExists(words.at(1) + std::to_string(press))) {
            ++press;
            if (!SendConsoleEvent(ConsoleEvent::CtrlC)) {
                std::cerr << "can't press Ctrl+C" << std::endl;
            }
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}
