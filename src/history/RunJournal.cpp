#include "history/RunJournal.h"

#include "platform/Exceptions.h"
#include "platform/FileStamp.h"
#include "platform/NativePath.h"

#include <cstring>
#include <fstream>
#include <type_traits>
#include <utility>

namespace Orvanta {

namespace {

constexpr std::string_view Mark = "orvanta run journal 1\n";

/// In front of each record.
struct RecordHead {
    std::uint64_t size = 0; ///< of what stands between the head and the checksum
    std::uint64_t kind = 0;
};

enum class RecordKind : std::uint64_t { Inputs = 1, Begin = 2, Unit = 3 };

/// Of a unit; its findings stand behind it.
struct UnitRow {
    std::uint64_t unit = 0;
    Fingerprint text;
    std::uint64_t importsModules = 0;
};

// No gap between the fields: it would hold whatever stood there before.
static_assert(sizeof(UnitRow) == 4 * sizeof(std::uint64_t));
static_assert(sizeof(JournalInputs) == 2 * sizeof(Fingerprint));

template <typename Row>
std::string_view BytesOf(const Row& row) {
    static_assert(std::is_trivially_copyable_v<Row>);
    return {reinterpret_cast<const char*>(&row), sizeof(Row)};
}

// False when the bytes are those of something else.
template <typename Row>
bool ReadRow(std::string_view bytes, Row& row) {
    static_assert(std::is_trivially_copyable_v<Row>);
    if (bytes.size() < sizeof(Row)) {
        return false;
    }
    std::memcpy(&row, bytes.data(), sizeof(Row));
    return true;
}

std::string Record(RecordKind kind, std::string_view row, std::string_view text = {}) {
    const RecordHead head = {row.size() + text.size(), static_cast<std::uint64_t>(kind)};
    std::string record;
    record.reserve(sizeof(head) + head.size + sizeof(Fingerprint));
    record.append(BytesOf(head)).append(row).append(text);
    record.append(BytesOf(FingerprintOf(record)));
    return record;
}

/// Reads record by record; never more of a file than it holds.
class RecordReader {
public:
    explicit RecordReader(const std::string& path)
        : input_(NativePath(path), std::ios::binary), left_(FileSize(path).value_or(0)) {
        std::string mark(Mark.size(), '\0');
        isWhole_ = Take(mark) && mark == Mark;
    }

    [[nodiscard]] bool HasMark() const noexcept { return isWhole_; }

    /// False at the first record that is not whole.
    [[nodiscard]] bool Next() {
        record_.resize(sizeof(RecordHead));
        isWhole_ = isWhole_ && Take(record_) && ReadRow(record_, head_) && head_.size <= left_;
        if (!isWhole_) {
            return false;
        }
        std::string rest(static_cast<std::size_t>(head_.size), '\0');
        std::string checksum(sizeof(Fingerprint), '\0');
        isWhole_ = Take(rest) && Take(checksum);
        record_ += rest;
        Fingerprint sum;
        isWhole_ = isWhole_ && ReadRow(checksum, sum) && sum == FingerprintOf(record_);
        end_ = isWhole_ ? at_ : end_;
        return isWhole_;
    }

    [[nodiscard]] RecordKind Kind() const noexcept { return static_cast<RecordKind>(head_.kind); }

    [[nodiscard]] std::string_view Bytes() const noexcept {
        return std::string_view(record_).substr(sizeof(RecordHead));
    }

    /// Where the whole records end, and where the bytes of the last one began.
    [[nodiscard]] std::uint64_t End() const noexcept { return end_; }

    [[nodiscard]] std::uint64_t BytesBegin() const noexcept { return end_ - sizeof(Fingerprint) - head_.size; }

private:
    bool Take(std::string& target) {
        if (target.size() > left_ || !input_.read(target.data(), static_cast<std::streamsize>(target.size()))) {
            return false;
        }
        left_ -= target.size();
        at_ += target.size();
        return true;
    }

    std::ifstream input_;
    std::uint64_t left_;
    std::uint64_t at_ = 0;
    std::uint64_t end_ = 0;
    bool isWhole_ = false;
    RecordHead head_;
    std::string record_;
};

} // namespace

RunJournal::RunJournal(const std::string& path, const JournalInputs& inputs, Start start) : path_(path) {
    if (start == Start::GoOn) {
        Read(inputs);
    }
    file_.emplace(path_, OutputFile::Mode::Keep);
    file_->Truncate(end_);
    if (end_ == 0) {
        file_->WriteAt(Mark, 0);
        end_ = Mark.size();
        WriteRecord(Record(RecordKind::Inputs, BytesOf(inputs)));
    }
    // By the stamp of what was just written: the clock that counts is the file system's.
    const std::optional<FileStamp> stamp = StampOf(path_);
    begin_ = stamp ? stamp->Newest() : 0;
    WriteRecord(Record(RecordKind::Begin, BytesOf(begin_)));
}

void RunJournal::Read(const JournalInputs& inputs) {
    if (!PathExists(path_)) {
        whyAnew_ = "no interrupted run has left anything";
        return;
    }
    RecordReader reader(path_);
    JournalInputs known;
    if (!reader.HasMark() || !reader.Next() || reader.Kind() != RecordKind::Inputs || !ReadRow(reader.Bytes(), known)) {
        whyAnew_ = "what the interrupted run has left can't be read";
        return;
    }
    if (known != inputs) {
        whyAnew_ = known.build != inputs.build ? "the build description or a compiler has changed"
                                               : "the settings, the core or this program's version have changed";
        return;
    }
    std::int64_t begin = 0;
    UnitRow row;
    while (reader.Next()) {
        if (reader.Kind() == RecordKind::Begin) {
            static_cast<void>(ReadRow(reader.Bytes(), begin));
        } else if (reader.Kind() == RecordKind::Unit && ReadRow(reader.Bytes(), row)) {
            earlier_[static_cast<std::size_t>(row.unit)] = {{row.text, row.importsModules != 0, begin},
                                                            reader.BytesBegin() + sizeof(row),
                                                            reader.Bytes().size() - sizeof(row)};
        }
    }
    end_ = reader.End();
}

std::optional<FinishedUnit> RunJournal::Find(std::size_t unit) const {
    const auto place = earlier_.find(unit);
    return place == earlier_.end() ? std::nullopt : std::optional(place->second.unit);
}

std::string RunJournal::Findings(std::size_t unit) const {
    const Place& place = earlier_.at(unit);
    std::ifstream input(NativePath(path_), std::ios::binary);
    std::string findings(static_cast<std::size_t>(place.findingsSize), '\0');
    if (!input.seekg(static_cast<std::streamoff>(place.findingsBegin)) ||
        !input.read(findings.data(), static_cast<std::streamsize>(findings.size()))) {
        throw FileException(path_, "it has been cut short");
    }
    return findings;
}

void RunJournal::Append(std::size_t unit, const FinishedUnit& finished, std::string_view findings) noexcept {
    const std::lock_guard lock(mutex_);
    try {
        if (file_) {
            const UnitRow row = {unit, finished.text, finished.importsModules ? 1U : 0U};
            WriteRecord(Record(RecordKind::Unit, BytesOf(row), findings));
            hasNew_ = true;
        }
    } catch (const std::exception&) {
        // A full disk, as a rule. Behind half a record nothing could be read.
        file_.reset();
    }
}

void RunJournal::WriteRecord(std::string_view record) {
    file_->WriteAt(record, end_);
    end_ += record.size();
}

bool RunJournal::HoldsAny() const {
    const std::lock_guard lock(mutex_);
    return hasNew_ || !earlier_.empty();
}

void RunJournal::Remove() noexcept {
    file_.reset();
    RemoveFile(path_);
}

} // namespace Orvanta
