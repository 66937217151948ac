#pragma once

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

/// Whether both paths lead to one file.
[[nodiscard]] bool IsSameFile(const std::string& left, const std::string& right);

/// Makes a folder with those on its way; one that is there is no fault.
/// \throws FileException
void MakeFolders(const std::string& path);

/// Copies a file, over one that is there.
/// \throws FileException
void CopyContents(const std::string& from, const std::string& to);

/// Puts a finished file in the place of another, in one step and with the permissions that it had.
/// \throws FileException
void PutInPlaceOf(const std::string& from, const std::string& to);

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
    OutputFile(OutputFile&& other) noexcept;
    OutputFile& operator=(OutputFile&& other) noexcept;

    /// Writes all of `bytes` at `offset` bytes from the start.
    /// \throws FileException
    void WriteAt(std::string_view bytes, std::uint64_t offset);

    /// Writes all of `bytes` at the end of what was written before: for pipes and terminals too.
    void Append(std::string_view bytes);

    /// Cuts the file to `size` bytes, or fills it up with zero bytes.
    void Truncate(std::uint64_t size);

    /// False for pipes, terminals and devices, which have no place to write at and can't be replaced.
    [[nodiscard]] bool IsRegularFile() const noexcept;

private:
    struct Handle;
    std::unique_ptr<Handle> handle_;
};

/// Replaces a file in one step: writes beside it, renames over it in `Commit`. Without `Commit`, nothing has changed. A
/// link stays and the file it leads to is replaced, with the permissions it had. A device or a pipe can't be replaced:
/// its bytes are written at once.
class AtomicFile {
public:
    /// \throws FileException
    explicit AtomicFile(std::string path);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// \throws FileException
    void Append(std::string_view bytes);
    /// The last call.
    /// \throws FileException
    void Commit();

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
