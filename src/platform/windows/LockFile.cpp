#include "platform/LockFile.h"

#include "platform/Paths.h"
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

struct LockFile::Handle {
    std::string path; // in the active code page
    Orvanta::Handle file;
};

LockFile::LockFile() noexcept = default;

LockFile::~LockFile() = default;

LockFile::LockFile(LockFile&& other) noexcept
    : handle_(std::move(other.handle_)), state_(std::exchange(other.state_, State::None)) {}

LockFile& LockFile::operator=(LockFile&& other) noexcept {
    handle_ = std::move(other.handle_);
    state_ = std::exchange(other.state_, State::None);
    return *this;
}

LockFile::State LockFile::Take(const std::string& directory, const std::string& key) {
    handle_.reset();
    const auto path = ToActiveCodePage(JoinPath(directory, FileName(key)));
    if (!path) {
        return state_ = State::Unavailable;
    }
    Orvanta::Handle file = OpenAlone(*path);
    for (int attempt = 1; !file.IsOpen(); ++attempt) {
        const DWORD error = ::GetLastError();
        if (error == ERROR_SHARING_VIOLATION) {
            return state_ = State::HeldByOther;
        }
        if (error != ERROR_ACCESS_DENIED || IsThere(*path) || attempt == MostAttempts) {
            return state_ = State::Unavailable;
        }
        ::Sleep(PauseMilliseconds);
        file = OpenAlone(*path);
    }
    handle_ = std::make_unique<Handle>(Handle{*path, std::move(file)});
    return state_ = State::Held;
}

void LockFile::ReleaseAndRemove() noexcept {
    if (handle_ != nullptr) {
        handle_->file.Reset();
        ::DeleteFileA(handle_->path.c_str()); // fails where another has it by now
        handle_.reset();
    }
    state_ = State::None;
}

} // namespace Orvanta
