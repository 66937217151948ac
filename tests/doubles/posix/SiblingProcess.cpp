#include "doubles/SiblingProcess.h"

#include <cstdlib>
#include <iostream>

#include <spawn.h>
#include <unistd.h>

namespace Orvanta {

void StartSibling(const std::vector<std::string>& command) {
    std::vector<std::string> words = command;
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    pid_t child = 0;
    if (posix_spawn(&child, arguments.front(), nullptr, nullptr, arguments.data(), environ) != 0) {
        std::cerr << "can't start " << command.front() << std::endl;
        std::exit(EXIT_FAILURE);
    }
}

} // namespace Orvanta
