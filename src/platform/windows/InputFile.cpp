#include "platform/InputFile.h"

#include "platform/windows/FileAccess.h"
#include "platform/windows/WideText.h"

#include <algorithm>

#include <windows.h>

namespace Orvanta {

struct InputFile::Handle {
    std::string path;
    Orvanta::Handle file;
};

InputFile::InputFile(const std::string& path) : handle_(std::make_unique<Handle>()) {
    handle_->path = path;
    handle_->file = Orvanta::Handle(::CreateFileW(WidePath(path).c_str(), GENERIC_READ, AnySharing, nullptr,
                                                  OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!handle_->file.IsOpen()) {
        FailFile(path, ::GetLastError());
    }
}

InputFile::~InputFile() = default;
InputFile::InputFile(InputFile&& other) noexcept = default;
InputFile& InputFile::operator=(InputFile&& other) noexcept = default;

std::size_t InputFile::Read(std::span<char> target) {
    constexpr std::size_t LargestPiece = 1U << 30U;
    DWORD count = 0;
    const auto size = static_cast<DWORD>(std::min(target.size(), LargestPiece));
    if (::ReadFile(handle_->file.Get(), target.data(), size, &count, nullptr) == FALSE &&
        ::GetLastError() != ERROR_BROKEN_PIPE) { // a pipe that its writer closed is at its end
        FailFile(handle_->path, ::GetLastError());
    }
    return count;
}

std::size_t InputFile::SizeHint() const noexcept {
    LARGE_INTEGER size{};
    const bool isKnown = IsOnDisk(handle_->file) && ::GetFileSizeEx(handle_->file.Get(), &size) != FALSE;
    return isKnown ? static_cast<std::size_t>(size.QuadPart) : 0;
}

// No device of the system gives bytes without end.
bool InputFile::IsEndless() const noexcept {
    return false;
}

} // namespace Orvanta
