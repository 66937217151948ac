#include "report/WholeFile.h"

#include "platform/Console.h"
#include "platform/Files.h"
#include "report/Exceptions.h"
#include "report/WriteFailure.h"

#include <cstddef>
#include <utility>

namespace OrvlogConverter {

namespace {

constexpr std::size_t BlockSize = 262144;

// A file that its owner protects stays, although the folder would let us put another in its place.
void ProbeExisting(const std::string& path) {
    if (!Orvanta::IsOwnOpenFile(path) && Orvanta::IsRegularFile(path)) {
        const Orvanta::OutputFile probe(path, Orvanta::OutputFile::Mode::Keep);
    }
}

} // namespace

WholeFile::WholeFile(std::string path) : path_(std::move(path)) {
    if (path_.empty()) {
        throw FilesystemException("Empty filepath");
    }
    if (path_ == StandardStreamPath) {
        return;
    }
    NamingFile(path_, [this] {
        ProbeExisting(path_);
        file_.emplace(path_, Orvanta::AtomicFile::Durability::Synced);
    });
}

void WholeFile::RequireReplaceable(const std::string& path) {
    NamingFile(path, [&path] {
        const Orvanta::PathKind kind = Orvanta::KindOf(path);
        if (kind == Orvanta::PathKind::Folder || kind == Orvanta::PathKind::Other) {
            throw Orvanta::FileException(path, "it is no regular file");
        }
        ProbeExisting(path);
    });
}

void WholeFile::Append(std::string_view text) {
    buffer_ += text;
    if (buffer_.size() >= BlockSize) {
        WriteBuffer();
    }
}

void WholeFile::WriteBuffer() {
    NamingFile(path_, [this] {
        if (file_) {
            file_->Append(buffer_);
        } else {
            Orvanta::WriteResultToStandardOutput(buffer_);
        }
    });
    buffer_.clear();
}

void WholeFile::Commit() {
    WriteBuffer();
    if (!file_) {
        return; // standard output
    }
    NamingFile(path_, [this] { file_->Commit(); });
    if (file_->IsInPlace()) {
        TellInPlace(path_);
    }
}

} // namespace OrvlogConverter
