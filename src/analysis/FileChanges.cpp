#include "analysis/FileChanges.h"

#include "platform/Exceptions.h"
#include "platform/FileStamp.h"
#include "platform/Files.h"
#include "platform/Paths.h"

#include <optional>

namespace Orvanta {

namespace {

std::int64_t FileSystemTime(const std::string& folder) {
    const std::string path = JoinPath(folder, "clock");
    OutputFile(path, OutputFile::Mode::Replace).Append("\n");
    const std::optional<FileStamp> stamp = StampOf(path);
    RemoveFile(path);
    if (!stamp) {
        throw ZelmException(path + ": the file was removed by somebody else");
    }
    return stamp->Newest();
}

} // namespace

FileChanges::FileChanges(const std::string& folder) : begin_(FileSystemTime(folder)) {}

bool FileChanges::HasChanged(const std::string& path) {
    return answers_.Get(path, [&] {
        const std::optional<FileStamp> stamp = StampOf(path);
        return !stamp || stamp->Newest() >= begin_;
    });
}

} // namespace Orvanta
