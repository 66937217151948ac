#include "platform/Exceptions.h"
#include "platform/Files.h"

#include <filesystem>
#include <system_error>

namespace Orvanta {

namespace {

namespace fs = std::filesystem;

void Check(const std::string& path, const std::error_code& error) {
    if (error) {
        throw FileException(path, error.message());
    }
}

} // namespace

bool IsRegularFile(const std::string& path) {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

std::optional<std::uint64_t> FileSize(const std::string& path) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(path, error);
    return error ? std::nullopt : std::optional<std::uint64_t>(size);
}

std::string ResolveLinks(const std::string& path) {
    std::error_code error;
    const fs::path resolved = fs::canonical(path, error);
    return error ? path : resolved.string();
}

bool IsSameFile(const std::string& left, const std::string& right) {
    std::error_code error;
    return fs::equivalent(left, right, error);
}

void MakeFolders(const std::string& path) {
    std::error_code error;
    fs::create_directories(path, error);
    Check(path, error);
}

void CopyContents(const std::string& from, const std::string& to) {
    std::error_code error;
    fs::copy_file(from, to, fs::copy_options::overwrite_existing, error);
    Check(to, error);
}

void PutInPlaceOf(const std::string& from, const std::string& to) {
    std::error_code error;
    const fs::file_status status = fs::status(to, error);
    if (!error && fs::exists(status)) {
        fs::permissions(from, status.permissions(), error); // a file system without any has none to lose
    }
    fs::rename(from, to, error);
    Check(to, error);
}

} // namespace Orvanta
