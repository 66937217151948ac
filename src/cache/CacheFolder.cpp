#include "cache/CacheFolder.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <random>
#include <system_error>
#include <utility>
#include <vector>

namespace Orvanta {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view Extension = ".orvresult";
constexpr std::string_view UnfinishedExtension = ".orvunfinished";
constexpr std::size_t ShardDigits = 2;
constexpr std::size_t KeyDigits = 64;
constexpr std::uint64_t Shards = 256;
// A use is written down once in that time: a hit shall not cost a write.
constexpr std::chrono::minutes FreshFor{10};
// The writer of an unfinished file that is older has been killed.
constexpr std::chrono::hours LongestWriting{1};
// What is left after trimming, so that the next entry does not trim again.
constexpr std::uint64_t KeptTenths = 9;

struct Entry {
    fs::path path;
    std::uint64_t size = 0;
    fs::file_time_type used;
};

bool IsHexadecimal(std::string_view text) {
    return text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

// Whether a file of ours has this name: what else lies there is not ours to remove.
bool IsEntryName(std::string_view name) {
    return name.ends_with(Extension) && name.size() == KeyDigits - ShardDigits + Extension.size() &&
           IsHexadecimal(name.substr(0, KeyDigits - ShardDigits));
}

// Entries of one of the 256 folders; those that vanish meanwhile, and all that can't be read, are left out. Removes
// what killed writers have left.
void ListShard(const fs::path& shard, std::vector<Entry>& entries) {
    std::error_code error;
    for (fs::directory_iterator at(shard, error), end; !error && at != end; at.increment(error)) {
        const std::string name = PathText(at->path().filename());
        std::error_code entryError;
        const fs::file_time_type used = at->last_write_time(entryError);
        const std::uint64_t size = entryError ? 0 : at->file_size(entryError);
        if (entryError) {
            continue;
        }
        if (IsEntryName(name)) {
            entries.push_back({at->path(), size, used});
        } else if (name.ends_with(UnfinishedExtension) && fs::file_time_type::clock::now() - used > LongestWriting) {
            fs::remove(at->path(), entryError);
        }
    }
}

std::vector<Entry> ListAll(const std::string& folder) {
    std::vector<Entry> entries;
    std::error_code error;
    for (fs::directory_iterator at(NativePath(folder), error), end; !error && at != end; at.increment(error)) {
        const std::string name = PathText(at->path().filename());
        if (name.size() == ShardDigits && IsHexadecimal(name)) {
            ListShard(at->path(), entries);
        }
    }
    return entries;
}

// Removes the entry; false when that was not possible.
bool Remove(const Entry& entry) {
    std::error_code error;
    return fs::remove(entry.path, error);
}

CacheFolder::Contents RemoveOldest(std::vector<Entry> entries, std::uint64_t largest) {
    std::uint64_t size = 0;
    for (const Entry& entry : entries) {
        size += entry.size;
    }
    CacheFolder::Contents removed;
    if (size <= largest) {
        return removed;
    }
    std::sort(entries.begin(), entries.end(),
              [](const Entry& left, const Entry& right) { return left.used < right.used; });
    const std::uint64_t wanted = largest / 10 * KeptTenths;
    for (const Entry& entry : entries) {
        if (size <= wanted) {
            break;
        }
        if (Remove(entry)) {
            ++removed.entries;
            removed.bytes += entry.size;
            size -= entry.size;
        }
    }
    return removed;
}

std::string ShardOf(const std::string& folder, const std::string& key) {
    return JoinPath(folder, key.substr(0, ShardDigits));
}

std::string PathOf(const std::string& folder, const std::string& key) {
    return JoinPath(ShardOf(folder, key), key.substr(ShardDigits) + std::string(Extension));
}

// A name that no other writer has, on this machine or another.
std::string UnfinishedName(const std::string& path) {
    std::random_device random;
    return path + "." + std::to_string(random()) + "-" + std::to_string(random()) + std::string(UnfinishedExtension);
}

} // namespace

std::optional<std::string> CacheFolder::Find(const Digest& key) {
    const std::string path = PathOf(folder_, key.Text());
    try {
        std::string bytes = ReadWholeFile(path);
        std::error_code error;
        const fs::path native = NativePath(path);
        const fs::file_time_type now = fs::file_time_type::clock::now();
        const fs::file_time_type used = fs::last_write_time(native, error);
        if (!error && now - used > FreshFor) {
            // A cache that may only be read has no order of its own to keep.
            fs::last_write_time(native, now, error);
        }
        return bytes;
    } catch (const FileException&) {
        return std::nullopt; // mostly: it is not there
    }
}

void CacheFolder::Store(const Digest& key, std::string_view bytes, Existing /*existing*/) {
    const std::string path = PathOf(folder_, key.Text());
    MakeFolders(ShardOf(folder_, key.Text()));
    const std::string unfinished = UnfinishedName(path);
    try {
        OutputFile(unfinished, OutputFile::Mode::Replace).Append(bytes);
        std::error_code error;
        fs::rename(NativePath(unfinished), NativePath(path), error);
        // One that is read at this moment can't be replaced on Windows: it holds the same.
        if (error && !PathExists(path)) {
            throw FileException(path, error.message());
        }
        if (error) {
            RemoveFile(unfinished);
        }
    } catch (...) {
        RemoveFile(unfinished);
        throw;
    }
}

CacheFolder::Contents CacheFolder::Count() const {
    Contents contents;
    for (const Entry& entry : ListAll(folder_)) {
        ++contents.entries;
        contents.bytes += entry.size;
    }
    return contents;
}

CacheFolder::Contents CacheFolder::Trim(std::uint64_t largest) const {
    return RemoveOldest(ListAll(folder_), largest);
}

void CacheFolder::MakeRoom(const Digest& key, std::uint64_t largest) {
    std::vector<Entry> entries;
    ListShard(NativePath(ShardOf(folder_, key.Text())), entries);
    RemoveOldest(std::move(entries), largest / Shards);
}

CacheFolder::Contents CacheFolder::RemoveUnless(const std::function<bool(std::string_view bytes)>& isWanted) const {
    Contents removed;
    for (const Entry& entry : ListAll(folder_)) {
        try {
            if (isWanted(ReadWholeFile(PathText(entry.path)))) {
                continue;
            }
        } catch (const FileException&) { // one that can't be read is of no use either
        }
        if (Remove(entry)) {
            ++removed.entries;
            removed.bytes += entry.size;
        }
    }
    return removed;
}

} // namespace Orvanta
