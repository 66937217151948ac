#include "platform/Files.h"

#include "platform/Exceptions.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/FileSwap.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>

namespace Orvanta {

namespace {

constexpr unsigned NewFileMode = 0666;

[[noreturn]] void Fail(const std::string& path, int error) {
    throw FileException(path, SystemReason(error));
}

} // namespace

void RemoveFile(const std::string& path) noexcept {
    ::unlink(path.c_str());
}

struct OutputFile::Handle {
    std::string path;
    Descriptor descriptor;
    bool isRegular = false;
    std::uint64_t end = 0; // where Append writes, in a regular file
};

OutputFile::OutputFile(const std::string& path, Mode mode) : handle_(std::make_unique<Handle>()) {
    handle_->path = path;
    const std::optional<int> own = OwnDescriptor(path);
    // A file that is open already is neither emptied nor opened anew: others write to it as well.
    handle_->descriptor = own ? DuplicateOf(*own)
                              : OpenFile(path, O_WRONLY | O_CREAT | (mode == Mode::Replace ? O_TRUNC : 0), NewFileMode);

    struct stat status {};

    if (!handle_->descriptor.IsOpen() || ::fstat(handle_->descriptor.Number(), &status) != 0) {
        Fail(path, errno);
    }
    // What is ours already goes on where it stands: it has no places to write at.
    handle_->isRegular = S_ISREG(status.st_mode) && !own;
    handle_->end = static_cast<std::uint64_t>(status.st_size);
}

OutputFile::~OutputFile() = default;
OutputFile::OutputFile(OutputFile&& other) noexcept = default;
OutputFile& OutputFile::operator=(OutputFile&& other) noexcept = default;

void OutputFile::WriteAt(std::string_view bytes, std::uint64_t offset) {
    while (!bytes.empty()) {
        // By place: no other position than the one asked for is read or moved.
        const ssize_t count =
            ::pwrite(handle_->descriptor.Number(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (count < 0) {
            if (errno == EINTR) {
                continue;
            }
            Fail(handle_->path, errno);
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
        offset += static_cast<std::uint64_t>(count);
        handle_->end = std::max(handle_->end, offset);
    }
}

void OutputFile::Append(std::string_view bytes) {
    if (handle_->isRegular) {
        WriteAt(bytes, handle_->end);
    } else if (!WriteAll(handle_->descriptor.Number(), bytes)) {
        Fail(handle_->path, errno);
    }
}

void OutputFile::Truncate(std::uint64_t size) {
    if (::ftruncate(handle_->descriptor.Number(), static_cast<off_t>(size)) != 0) {
        Fail(handle_->path, errno);
    }
    handle_->end = size;
}

void OutputFile::Sync() {
    if (handle_->isRegular && !SyncToDisk(handle_->descriptor.Number())) {
        Fail(handle_->path, errno);
    }
}

bool OutputFile::IsRegularFile() const noexcept {
    return handle_->isRegular;
}

void SwapByRenaming(const std::string& first, const std::string& second) {
    // A second name of the first file, so that its bytes outlive the rename over it.
    const std::string saved = first + ".orvtmp";
    ::unlink(saved.c_str());
    // Some file systems know no second names; a copy does as well.
    if (::link(first.c_str(), saved.c_str()) != 0) {
        std::error_code error;
        std::filesystem::copy_file(first, saved, error);
        if (error) {
            throw FileException(first, error.message());
        }
    }
    if (std::rename(second.c_str(), first.c_str()) != 0) {
        const int error = errno;
        ::unlink(saved.c_str());
        Fail(first, error);
    }
    if (std::rename(saved.c_str(), second.c_str()) != 0) {
        Fail(second, errno);
    }
}

void ExchangeFiles(const std::string& first, const std::string& second) {
    if (::renameat2(AT_FDCWD, first.c_str(), AT_FDCWD, second.c_str(), RENAME_EXCHANGE) == 0) {
        return;
    }
    // These three say that the file system or the kernel can't exchange; any other error is one of these files.
    if (errno != EINVAL && errno != ENOSYS && errno != EOPNOTSUPP) {
        Fail(first, errno);
    }
    SwapByRenaming(first, second);
}

} // namespace Orvanta
