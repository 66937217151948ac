#include "platform/Paths.h"

#include "platform/Exceptions.h"
#include "platform/windows/SystemReason.h"
#include "platform/windows/WideText.h"

#include <windows.h>

namespace Orvanta {

PathRules HostPathRules() noexcept {
    return PathRules::Windows;
}

std::string CurrentDirectory() {
    std::wstring directory;
    DWORD length = ::GetCurrentDirectoryW(0, nullptr);
    while (length > directory.size()) { // another thread may change it between the calls
        directory.resize(length);
        length = ::GetCurrentDirectoryW(length, directory.data());
    }
    if (length == 0) {
        throw ZelmException("Couldn't ask for the current directory: " + SystemReason(::GetLastError()));
    }
    directory.resize(length);
    return FromWide(directory);
}

} // namespace Orvanta
