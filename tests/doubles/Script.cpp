#include "doubles/Script.h"

#include "platform/Files.h"
#include "platform/LockFile.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <thread>

namespace Orvanta {

namespace {

constexpr int GaveUp = 99;
constexpr auto LongestWait = std::chrono::seconds(20);
constexpr auto LongestHang = std::chrono::seconds(120);

} // namespace

std::vector<ScriptLine> ReadScript(const std::string& path) {
    std::vector<ScriptLine> lines;
    std::ifstream input(NativePath(path), std::ios::binary);
    for (std::string line; std::getline(input, line);) {
        if (line.empty() || line.front() == '#') {
            continue;
        }
        std::string word = TakeWord(line);
        lines.push_back({std::move(word), std::move(line)});
    }
    return lines;
}

std::string TakeWord(std::string& rest) {
    const std::size_t blank = rest.find(' ');
    std::string word = rest.substr(0, blank);
    rest = blank == std::string::npos ? "" : rest.substr(blank + 1);
    return word;
}

std::string ReadText(const std::string& path) {
    std::ifstream input(NativePath(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
}

void AppendLine(const std::string& path, std::string_view line) {
    std::string text(line);
    text += '\n';
    LockFile writer; // not every system appends what several programs write in one piece
    while (writer.Take(std::string(DirectoryOf(path)), path) == LockFile::State::HeldByOther) {
        std::this_thread::yield();
    }
    std::ofstream(NativePath(path), std::ios::binary | std::ios::app)
        .write(text.data(), static_cast<std::streamsize>(text.size()));
}

void TouchFile(const std::string& path) {
    const std::ofstream file(NativePath(path), std::ios::app);
    if (!file) {
        std::cerr << "can't touch " << path << std::endl;
        std::exit(GaveUp);
    }
}

void WaitForFile(const std::string& path) {
    const auto end = std::chrono::steady_clock::now() + LongestWait;
    while (!PathExists(path)) {
        if (std::chrono::steady_clock::now() > end) {
            std::cerr << "gave up waiting for " << path << std::endl;
            std::exit(GaveUp);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

void Hang(const std::string& directory, const std::string& key) {
    LockFile lifeline;
    if (lifeline.Take(directory, key) != LockFile::State::Held) {
        std::cerr << "can't take the lock of " << key << " in " << directory << std::endl;
        std::exit(GaveUp);
    }
    TouchFile(JoinPath(directory, key + ".hangs"));
    const auto end = std::chrono::steady_clock::now() + LongestHang;
    while (PathExists(directory) && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    std::exit(GaveUp);
}

} // namespace Orvanta
