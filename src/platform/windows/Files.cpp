#include "platform/Files.h"

#include "platform/windows/FileAccess.h"
#include "platform/windows/SystemReason.h"
#include "platform/windows/WideText.h"

#include <algorithm>

#include <windows.h>

namespace Orvanta {

namespace {

std::uint64_t SizeOf(const Handle& file) {
    LARGE_INTEGER size{};
    return ::GetFileSizeEx(file.Get(), &size) != FALSE ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

// Reads to the end; `sizeHint` bytes are expected.
void ReadToEnd(const std::string& path, const Handle& file, std::size_t sizeHint, std::string& content) {
    constexpr std::size_t SmallestBlock = 4096;
    constexpr std::size_t LargestPiece = 1U << 30U;
    content.resize(sizeHint + 1); // the byte more lets one short read find the end
    std::size_t filled = 0;
    while (true) {
        if (filled == content.size()) {
            content.resize(content.size() + std::max(SmallestBlock, content.size()));
        }
        DWORD count = 0;
        const auto room = static_cast<DWORD>(std::min(content.size() - filled, LargestPiece));
        if (::ReadFile(file.Get(), content.data() + filled, room, &count, nullptr) == FALSE &&
            ::GetLastError() != ERROR_BROKEN_PIPE) {
            FailFile(path, ::GetLastError());
        }
        if (count == 0) {
            content.resize(filled);
            return;
        }
        filled += count;
    }
}

} // namespace

std::string ReadWholeFile(const std::string& path) {
    const Handle file(::CreateFileW(WidePath(path).c_str(), GENERIC_READ, AnySharing, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file.IsOpen()) {
        FailFile(path, ::GetLastError());
    }
    std::string content;
    ReadToEnd(path, file, static_cast<std::size_t>(SizeOf(file)), content);
    return content;
}

void RemoveFile(const std::string& path) noexcept {
    ::DeleteFileW(WidePath(path).c_str());
}

struct OutputFile::Handle {
    std::string path;
    Orvanta::Handle file;
    bool isRegular = false;
    std::uint64_t end = 0; // where Append writes, in a regular file
};

OutputFile::OutputFile(const std::string& path, Mode mode) : handle_(std::make_unique<Handle>()) {
    handle_->path = path;
    handle_->file = OpenForWriting(path);
    if (!handle_->file.IsOpen()) {
        FailFile(path, ::GetLastError());
    }
    handle_->isRegular = IsOnDisk(handle_->file);
    if (handle_->isRegular && mode == Mode::Replace) {
        Truncate(0);
    } else if (handle_->isRegular) {
        handle_->end = SizeOf(handle_->file);
    }
}

OutputFile::~OutputFile() = default;
OutputFile::OutputFile(OutputFile&& other) noexcept = default;
OutputFile& OutputFile::operator=(OutputFile&& other) noexcept = default;

void OutputFile::WriteAt(std::string_view bytes, std::uint64_t offset) {
    LARGE_INTEGER place{};
    place.QuadPart = static_cast<LONGLONG>(offset);
    if (::SetFilePointerEx(handle_->file.Get(), place, nullptr, FILE_BEGIN) == FALSE ||
        !WriteAll(handle_->file, bytes)) {
        FailFile(handle_->path, ::GetLastError());
    }
    handle_->end = std::max(handle_->end, offset + bytes.size());
}

void OutputFile::Append(std::string_view bytes) {
    if (handle_->isRegular) {
        WriteAt(bytes, handle_->end);
    } else if (!WriteAll(handle_->file, bytes)) {
        FailFile(handle_->path, ::GetLastError());
    }
}

void OutputFile::Truncate(std::uint64_t size) {
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
    if (::SetFileInformationByHandle(handle_->file.Get(), FileEndOfFileInfo, &end, sizeof end) == FALSE) {
        FailFile(handle_->path, ::GetLastError());
    }
    handle_->end = size;
}

void OutputFile::Sync() {
    if (handle_->isRegular && ::FlushFileBuffers(handle_->file.Get()) == FALSE) {
        FailFile(handle_->path, ::GetLastError());
    }
}

bool OutputFile::IsRegularFile() const noexcept {
    return handle_->isRegular;
}

// Not ReplaceFileW: in the middle of it, `first` names nothing.
void ExchangeFiles(const std::string& first, const std::string& second) {
    const std::string saved = first + ".orvtmp";
    RemoveFile(saved);
    const std::wstring wideFirst = WidePath(first);
    const std::wstring wideSaved = WidePath(saved);
    if (::CreateHardLinkW(wideSaved.c_str(), wideFirst.c_str(), nullptr) == FALSE &&
        ::CopyFileW(wideFirst.c_str(), wideSaved.c_str(), FALSE) == FALSE) {
        FailFile(first, ::GetLastError());
    }
    try {
        RenameOver(second, first);
    } catch (const SystemFault& fault) {
        RemoveFile(saved);
        FailFile(first, fault.error);
    }
    try {
        RenameOver(saved, second);
    } catch (const SystemFault& fault) {
        FailFile(second, fault.error);
    }
}

} // namespace Orvanta
