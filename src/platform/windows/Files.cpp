#include "platform/Files.h"

#include "platform/windows/FileAccess.h"
#include "platform/windows/SystemReason.h"
#include "platform/windows/WideText.h"

#include <algorithm>

#include <windows.h>

namespace Orvanta {

namespace {

// 0 where it can't be told.
std::uint64_t SizeOf(const Handle& file) {
    LARGE_INTEGER size{};
    return ::GetFileSizeEx(file.Get(), &size) != FALSE ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

} // namespace

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
    // Emptied once it is open, so that a device by that name is left as it is.
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
    // The place belongs to the handle: one thread at a time.
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
    // What a killed run may have left would stand in the way of the second name.
    RemoveFile(saved);
    const std::wstring wideFirst = WidePath(first);
    const std::wstring wideSaved = WidePath(saved);
    // A second name where the file system has such, else a copy: the bytes outlive the rename over the first.
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
