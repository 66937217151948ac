#include "platform/LockHolder.h"
#include "platform/windows/Handle.h"
#include "platform/windows/WideText.h"

#include <utility>

#include <windows.h>

namespace Orvanta {

namespace {

// While another removes the file, the system refuses it as it refuses a folder without rights.
constexpr int MostAttempts = 20;
constexpr DWORD PauseMilliseconds = 5;

// Without sharing: the open file is the lock.
Handle OpenAlone(const std::string& path) {
    return Handle(::CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

bool IsThere(const std::string& path) {
    return ::GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

} // namespace

LockFile::State OpenLocked(const std::string& path, std::shared_ptr<void>& holder) {
    using State = LockFile::State;
    // A path that the narrow functions can't spell has no lock.
    const auto narrow = ToActiveCodePage(path);
    if (!narrow) {
        return State::Unavailable;
    }
    Handle file = OpenAlone(*narrow);
    for (int attempt = 1; !file.IsOpen(); ++attempt) {
        const DWORD error = ::GetLastError();
        // The only refusal that says that another has it open.
        if (error == ERROR_SHARING_VIOLATION) {
            return State::HeldByOther;
        }
        if (error != ERROR_ACCESS_DENIED || IsThere(*narrow) || attempt == MostAttempts) {
            return State::Unavailable;
        }
        ::Sleep(PauseMilliseconds);
        file = OpenAlone(*narrow);
    }
    holder = std::make_shared<Handle>(std::move(file));
    return State::Held;
}

void RemoveLocked(const std::string& path, std::shared_ptr<void>& holder) noexcept {
    // An open file can't be removed here, so another may get the lock in between; its open file then stays.
    holder.reset();
    ::DeleteFileW(WidePath(path).c_str()); // fails where another has it by now
}

} // namespace Orvanta
