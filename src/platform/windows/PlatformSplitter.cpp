#include "platform/windows/PlatformSplitter.h"

#include "platform/ProgramArguments.h"
#include "platform/windows/WideText.h"

#include <memory>

#include <windows.h>
#include <shellapi.h>

namespace Orvanta {

namespace {

std::vector<std::string> Split(const wchar_t* commandLine) {
    int count = 0;
    // One block of memory for all words, which the system gives and takes back as a whole.
    const std::unique_ptr<wchar_t*, decltype(&::LocalFree)> words(::CommandLineToArgvW(commandLine, &count),
                                                                  &::LocalFree);
    std::vector<std::string> arguments;
    if (words != nullptr) {
        arguments.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            arguments.push_back(FromWide(words.get()[i]));
        }
    }
    return arguments;
}

} // namespace

std::vector<std::string> SplitByPlatform(const std::string& commandLine) {
    return Split(ToWide(commandLine).c_str());
}

// The words of `main` have gone through the active code page, and those with wildcards have become file names.
std::vector<std::string> ProgramArguments(int /*count*/, const char* const* /*arguments*/) {
    return Split(::GetCommandLineW());
}

} // namespace Orvanta
