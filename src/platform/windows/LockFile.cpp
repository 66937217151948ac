#include "platform/LockFile.h"

#include "platform/Paths.h"
#include "platform/windows/Handle.h"
#include "platform/windows/WideText.h"

#include <utility>

#include <windows.h>

namespace Orvanta {

struct LockFile::Handle {
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
    // Without sharing: the open file is the lock.
    Orvanta::Handle file(
        ::CreateFileA(path->c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file.IsOpen()) {
        return state_ = ::GetLastError() == ERROR_SHARING_VIOLATION ? State::HeldByOther : State::Unavailable;
    }
    handle_ = std::make_unique<Handle>(Handle{std::move(file)});
    return state_ = State::Held;
}

} // namespace Orvanta
