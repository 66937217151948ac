#include "doubles/SiblingProcess.h"

#include "platform/windows/CommandLine.h"
#include "platform/windows/WideText.h"

#include <cstdlib>
#include <iostream>

#include <process.h>

namespace Orvanta {

void StartSibling(const std::vector<std::string>& command) {
    std::vector<std::wstring> words;
    for (const std::string& word : command) {
        words.push_back(ToWide(QuoteArgument(word))); // the words are joined as they are
    }
    std::vector<const wchar_t*> arguments;
    for (const std::wstring& word : words) {
        arguments.push_back(word.c_str());
    }
    arguments.push_back(nullptr);
    if (::_wspawnv(_P_NOWAIT, ToWide(command.front()).c_str(), arguments.data()) == -1) {
        std::cerr << "can't start " << command.front() << std::endl;
        std::exit(EXIT_FAILURE);
    }
}

} // namespace Orvanta
