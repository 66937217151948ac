#include "report/ReportFile.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "report/Exceptions.h"
#include "report/WriteFailure.h"

#include <cstdint>
#include <optional>
#include <utility>

namespace OrvlogConverter {

namespace {

std::string SparePathOf(const std::string& path) {
    return Orvanta::JoinPath(Orvanta::DirectoryOf(path), "." + std::string(Orvanta::FileNameOf(path)) + ".orvanta-new");
}

} // namespace

struct ReportFile::State {
    std::string givenPath; // as messages name it
    ReportFrame frame;
    bool hasMessages = false;
    std::string pending; // appended since the last commit

    std::optional<Orvanta::OutputFile> stream;      // set for what can't be replaced, and nothing below is then used
    std::optional<Orvanta::OutputFile> overwritten; // the report, where no second copy can take its place
    std::string path;
    std::string sparePath;
    std::uint64_t end = 0;                  // where the report's tail begins
    std::uint64_t spareEnd = 0;             // where the tail of the second copy begins
    std::optional<std::uint64_t> spareSize; // what the second copy has on disk; empty when it must be made anew
    std::string lag;                        // text that the report has and the second copy has not

    void Create();
    void EnsureSpare();
    void WriteSpare(std::string_view bytes);
    void CommitFile();
    void CommitInPlace();
    void RemoveSpare() noexcept;
};

void ReportFile::State::Create() {
    const Orvanta::PathKind kind = Orvanta::KindOf(givenPath);
    if (Orvanta::IsOwnOpenFile(givenPath) || kind == Orvanta::PathKind::Folder || kind == Orvanta::PathKind::Other) {
        stream.emplace(givenPath, Orvanta::OutputFile::Mode::Keep);
        stream->Append(frame.head);
        return;
    }
    path = Orvanta::TargetOf(givenPath); // so that a link stays one
    if (kind == Orvanta::PathKind::File) {
        // A file that its owner protects stays, although the folder would let us put another in its place.
        const Orvanta::OutputFile probe(path, Orvanta::OutputFile::Mode::Keep);
    }
    Orvanta::AtomicFile file(path, Orvanta::AtomicFile::Durability::Synced);
    file.Append(frame.head + frame.tail);
    file.Commit();
    end = frame.head.size();
    if (file.IsInPlace()) {
        overwritten.emplace(path, Orvanta::OutputFile::Mode::Keep);
        TellInPlace(givenPath);
    } else {
        sparePath = SparePathOf(path);
    }
}

// Makes the second copy from the report when there is none of the right size: at first, after a failed write that could
// not be taken back, and when somebody else has touched it.
void ReportFile::State::EnsureSpare() {
    if (spareSize && Orvanta::FileSize(sparePath) == spareSize) {
        return;
    }
    Orvanta::RemoveFile(sparePath);
    Orvanta::CopyContents(path, sparePath);
    spareEnd = end;
    spareSize = end + frame.tail.size();
    lag.clear();
}

// Puts `bytes` in the place of the second copy's tail.
void ReportFile::State::WriteSpare(std::string_view bytes) {
    Orvanta::OutputFile file(sparePath, Orvanta::OutputFile::Mode::Keep);
    const std::uint64_t oldSize = *std::exchange(spareSize, std::nullopt);
    try {
        file.WriteAt(bytes, spareEnd);
    } catch (const Orvanta::FileException&) {
        file.Truncate(spareEnd); // the tail comes with the next write
        spareSize = spareEnd;
        throw;
    }
    const std::uint64_t newSize = spareEnd + bytes.size();
    if (newSize < oldSize) { // an earlier text that could not be published
        file.Truncate(newSize);
    }
    spareSize = newSize;
}

void ReportFile::State::CommitFile() {
    EnsureSpare();
    const std::size_t lagSize = lag.size();
    try {
        lag += pending;
        lag += frame.tail;
        WriteSpare(lag);
        lag.resize(lagSize);
        Orvanta::ExchangeFiles(path, sparePath);
    } catch (...) {
        lag.resize(lagSize);
        throw;
    }
    // The two have changed places.
    const std::uint64_t newEnd = spareEnd + lagSize + pending.size();
    spareEnd = std::exchange(end, newEnd);
    spareSize = spareEnd + frame.tail.size();
    lag.swap(pending);
}

// One write for all that is new, the tail included: as near to one step as it gets.
void ReportFile::State::CommitInPlace() {
    try {
        overwritten->WriteAt(pending + frame.tail, end);
    } catch (const Orvanta::FileException&) {
        overwritten->Truncate(end);
        overwritten->WriteAt(frame.tail, end);
        throw;
    }
    end += pending.size();
}

void ReportFile::State::RemoveSpare() noexcept {
    if (!sparePath.empty()) {
        Orvanta::RemoveFile(sparePath);
        spareSize.reset();
    }
}

ReportFile::ReportFile(const std::string& path, ReportFrame frame) : state_(std::make_unique<State>()) {
    if (path.empty()) {
        throw FilesystemException("Empty filepath");
    }
    state_->givenPath = path;
    state_->frame = std::move(frame);
    NamingFile(state_->givenPath, [this] { state_->Create(); });
}

ReportFile::~ReportFile() {
    state_->RemoveSpare();
}

void ReportFile::Append(std::string_view messageText) {
    if (state_->hasMessages || !state_->pending.empty()) {
        state_->pending += state_->frame.separator;
    }
    state_->pending += messageText;
}

void ReportFile::Commit() {
    if (state_->pending.empty()) {
        return;
    }
    try {
        NamingFile(state_->givenPath, [this] {
            if (state_->stream) {
                state_->stream->Append(state_->pending);
            } else if (state_->overwritten) {
                state_->CommitInPlace();
            } else {
                state_->CommitFile();
            }
        });
    } catch (...) {
        Discard();
        throw;
    }
    state_->pending.clear();
    state_->hasMessages = true;
}

void ReportFile::Discard() noexcept {
    state_->pending.clear();
}

void ReportFile::Close() {
    if (state_->stream) {
        NamingFile(state_->givenPath, [this] { state_->stream->Append(state_->frame.tail); });
        state_->stream.reset();
    } else {
        NamingFile(state_->givenPath,
                   [this] { Orvanta::OutputFile(state_->path, Orvanta::OutputFile::Mode::Keep).Sync(); });
    }
    state_->RemoveSpare();
}

} // namespace OrvlogConverter
