#pragma once

// Files, as the driver needs them on every system.
//
// Why not std::filesystem and streams: they lose the system's reason, take every failed question for "no", know no file
// that is replaced in one step, and on Windows no path beyond the old limit. What is here instead throws FileException
// with the path and the reason, or gives an answer that says it can't tell.
//
// A file of ours that replaces another is written beside it and renamed over it, so that a reader and a kill at any
// moment find the old one or the new one. The file beside has a name made from the target's, locked while its writer
// lives: the next writer of the same file sees that the one before is gone and takes its rest away, without a list of
// what was begun.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Orvanta {

/// Reads a file whole, byte for byte.
/// \throws FileException
[[nodiscard]] std::string ReadWholeFile(const std::string& path);

/// What stands at a path, links followed.
enum class PathKind {
    Nothing,
    File, ///< on a disk
    Folder,
    Other, ///< a device, a pipe, a terminal
};

/// What the system says of a path. That it can't tell (no right to look, a broken disk, a circle of links) is an answer
/// of its own: taken for absence, it would have us write over what is there.
struct PathAnswer {
    std::optional<PathKind> kind; ///< absent when it can't be told
    std::string reason = {};      ///< and then the system's words

    /// Whether something is there for certain.
    [[nodiscard]] bool IsThere() const noexcept { return kind && *kind != PathKind::Nothing; }
};

/// Asks once. For searches, which go on to the next place when it can't be told; all others ask by the functions below.
[[nodiscard]] PathAnswer LookAt(const std::string& path);

/// \throws FileException when it can't be told
[[nodiscard]] PathKind KindOf(const std::string& path);

/// Whether anything, file or folder, exists at `path`.
/// \throws FileException when it can't be told
[[nodiscard]] bool PathExists(const std::string& path);

/// Whether `path` names a folder.
/// \throws FileException when it can't be told
[[nodiscard]] bool IsDirectory(const std::string& path);

/// Whether `path` names a file on a disk: no folder, device or pipe.
/// \throws FileException when it can't be told
[[nodiscard]] bool IsRegularFile(const std::string& path);

/// The size of the file at `path`; absent when there is none.
/// \throws FileException when it can't be told
[[nodiscard]] std::optional<std::uint64_t> FileSize(const std::string& path);

/// The absolute path of what `path` names, with all links resolved; `path` itself when it names nothing.
[[nodiscard]] std::string ResolveLinks(const std::string& path);

/// The absolute path at which something stands or would be made: all links resolved, those too that lead to nothing
/// yet.
/// \throws FileException when it can't be told
[[nodiscard]] std::string TargetOf(const std::string& path);

/// What a file or a folder is to the system, whatever path leads to it.
struct FileIdentity {
    std::uint64_t device = 0; ///< of this machine: the volume
    std::uint64_t number = 0; ///< on that device
    std::uint64_t names = 1;  ///< how many paths name it beside links: hard links

    /// Whether it is the same thing, however many names it has.
    bool operator==(const FileIdentity& other) const noexcept {
        return device == other.device && number == other.number;
    }
};

/// The identity of what stands at `path`, links followed; absent when nothing does.
/// \throws FileException when it can't be told
[[nodiscard]] std::optional<FileIdentity> IdentityOf(const std::string& path);

/// Whether both paths lead to one file that is there.
/// \throws FileException when it can't be told
[[nodiscard]] bool IsSameFile(const std::string& left, const std::string& right);

/// Whether users who are not the file's owner may read it, as far as its permissions tell.
/// \throws FileException when they can't be told
[[nodiscard]] bool IsReadableByOthers(const std::string& path);

/// Makes a folder with those on its way; one that is there is no fault.
/// \throws FileException
void MakeFolders(const std::string& path);

/// Copies a file, over one that is there, with its owner, group and permissions as far as this user may give them.
/// \throws FileException
void CopyContents(const std::string& from, const std::string& to);

/// Removes a file; one that is not there is no fault.
void RemoveFile(const std::string& path) noexcept;

/// A file open for writing, unbuffered. Move-only; closes itself.
class OutputFile {
public:
    enum class Mode {
        Replace, ///< empties an existing file
        Keep,    ///< leaves what an existing file holds
    };

    /// \throws FileException
    OutputFile(const std::string& path, Mode mode);
    ~OutputFile();
    /// The moved one may only be destroyed or assigned to.
    OutputFile(OutputFile&& other) noexcept;
    OutputFile& operator=(OutputFile&& other) noexcept;

    /// Writes all of `bytes` at `offset` bytes from the start.
    /// \throws FileException
    void WriteAt(std::string_view bytes, std::uint64_t offset);

    /// Writes all of `bytes` at the end of what was written before: for pipes and terminals too.
    void Append(std::string_view bytes);

    /// Cuts the file to `size` bytes, or fills it up with zero bytes.
    void Truncate(std::uint64_t size);

    /// Returns when the system has put on the disk what was written; nothing for what has none.
    void Sync();

    /// False for pipes, terminals and devices, which have no place to write at and can't be replaced.
    [[nodiscard]] bool IsRegularFile() const noexcept;

private:
    struct Handle;
    std::unique_ptr<Handle> handle_;
};

/// Whether `path` is a name of a file that this process has open, such as /dev/stdout: what is written there goes on
/// where that file stands, and nothing can take its place.
[[nodiscard]] bool IsOwnOpenFile(const std::string& path);

/// Replaces a file in one step: writes beside it, renames over it in `Commit`. Without `Commit`, nothing has changed. A
/// link stays and the file it leads to is replaced, with the owner, the group and the permissions it had. A device or a
/// pipe can't be replaced: its bytes are written at once.
///
/// Where no other file can take a file's place, it is overwritten in `Commit` as it stands: in a folder that may not be
/// written to, mounted by itself, with several names (hard links), of an owner that only it can have.
class AtomicFile {
public:
    enum class Durability {
        Renamed, ///< a crash of the system may lose what was written lately
        Synced,  ///< what was there goes only when the new bytes are on the disk
    };

    /// \throws FileException
    explicit AtomicFile(std::string path, Durability durability = Durability::Renamed);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// \throws FileException
    void Append(std::string_view bytes);
    /// The last call.
    /// \throws FileException
    void Commit();

    /// Whether the file is, or in `Commit` was, overwritten as it stands: a kill in the middle of that leaves a part.
    [[nodiscard]] bool IsInPlace() const noexcept;

private:
    struct Handle;
    std::string path_;
    std::unique_ptr<Handle> handle_;
};

/// Removes from a folder what writers of such files have left there that are gone, as far as that is possible now.
void RemoveAbandonedFiles(const std::string& folder) noexcept;

/// Swaps the contents of two names in one step: at no moment does `first` name nothing or something incomplete.
/// Both must exist, in the same folder.
/// \throws FileException
void ExchangeFiles(const std::string& first, const std::string& second);

} // namespace Orvanta
