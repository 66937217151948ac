#include "history/DependencyInfo.h"

#include "platform/BlockReader.h"
#include "platform/Exceptions.h"
#include "platform/JsonEvents.h"
#include "platform/Table.h"
#include "report/JsonText.h"

#include <utility>

namespace Orvanta {

namespace {

using OrvlogConverter::AppendJsonString;

enum class Member { Other, Id, Added, Arguments, Dependencies };

struct MemberName {
    std::string_view name;
    Member member;
};

constexpr MemberName MemberNames[] = {
    {"added", Member::Added},
    {"arguments", Member::Arguments},
    {"dependencies", Member::Dependencies},
    {"id", Member::Id},
};

std::string_view NameOf(Member member) {
    return FindRow(MemberNames, &MemberName::member, member)->name;
}

[[noreturn]] void FailField(std::string_view name, const std::string& fault) {
    throw ZelmException("field " + std::string(name) + " " + fault);
}

/// A field that is an array of texts. Used again for the next entry, so that its strings keep their memory.
/// `texts` is the entry's own, which outlives this.
struct TextArray {
    std::vector<std::string>* texts;
    std::size_t count = 0;
    bool isFound = false;

    void Begin() {
        count = 0;
        isFound = true;
    }

    void Add(const std::string& text) {
        // Grows only, so that the next entry writes over strings that have their memory already.
        if (count == texts->size()) {
            texts->emplace_back();
        }
        (*texts)[count++] = text;
    }

    void Finish() const { texts->resize(isFound ? count : 0); }

    void Require(Member member) const {
        if (!isFound) {
            FailField(NameOf(member), "is not found");
        }
    }
};

/// Takes the parser's events. Every fault ends the reading: a file that is not of this form is of no use.
class EntryHandler {
public:
    explicit EntryHandler(const std::function<void(const DependencyInfoEntry&)>& take) : take_(take) {}

    // The parser's events.
    void TakeScalar(const JsonScalar& value);
    void TakeText(const std::string& text);
    void Open(std::string_view type);
    void Close(std::string_view type);
    void TakeKey(std::string_view name);

private:
    // Where the parser stands: in the document, its array, an object of that, an array of texts, or what is read over.
    enum class Place { Document, Entries, Entry, Texts, Skipped };

    void TakeOther() const;
    TextArray* ArrayOf(Member member);
    void FinishEntry();

    const std::function<void(const DependencyInfoEntry&)>& take_;
    Place place_ = Place::Document;
    std::size_t skippedDepth_ = 0;
    Member member_ = Member::Other;
    DependencyInfoEntry entry_;
    TextArray added_{&entry_.added};
    TextArray arguments_{&entry_.arguments};
    TextArray dependencies_{&entry_.dependencies};
    TextArray* texts_ = nullptr; // the one that is being read
};

/// A value that is none of those that are read: right only where nothing is read.
void EntryHandler::TakeOther() const {
    switch (place_) {
    case Place::Document:
        throw ZelmException("an array of entries is expected");
    case Place::Entries:
        throw ZelmException("an entry is no object");
    case Place::Entry:
        if (member_ == Member::Id) {
            FailField("id", "is no text");
        }
        if (member_ != Member::Other) {
            FailField(NameOf(member_), "is no array");
        }
        break;
    case Place::Texts:
        FailField(NameOf(member_), "holds something other than texts");
    case Place::Skipped:
        break;
    }
}

void EntryHandler::TakeScalar(const JsonScalar& value) {
    // An entry without an id may say so.
    if (place_ != Place::Entry || member_ != Member::Id || value.type != JsonType::Null) {
        TakeOther();
    }
}

void EntryHandler::TakeText(const std::string& text) {
    if (place_ == Place::Texts) {
        texts_->Add(text);
    } else if (place_ == Place::Entry && member_ == Member::Id) {
        entry_.id = text;
    } else {
        TakeOther();
    }
}

void EntryHandler::TakeKey(std::string_view name) {
    if (place_ == Place::Entry) {
        const MemberName* const row = FindRow(MemberNames, &MemberName::name, name);
        member_ = row != nullptr ? row->member : Member::Other; // which is read over
    }
}

void EntryHandler::Open(std::string_view type) {
    if (type == JsonType::Object && place_ == Place::Entries) {
        place_ = Place::Entry;
        entry_.id.reset();
        // The texts of the entry before stay until they are written over.
        added_.isFound = arguments_.isFound = dependencies_.isFound = false;
        return;
    }
    if (type == JsonType::Array && place_ == Place::Document) {
        place_ = Place::Entries;
        return;
    }
    if (type == JsonType::Array && place_ == Place::Entry && ArrayOf(member_) != nullptr) {
        texts_ = ArrayOf(member_);
        texts_->Begin();
        place_ = Place::Texts;
        return;
    }
    // An array or object of which nothing is read.
    TakeOther();
    place_ = Place::Skipped;
    ++skippedDepth_;
}

void EntryHandler::Close(std::string_view type) {
    if (place_ == Place::Skipped) {
        // Only members of an entry are read over, so that is where it goes on.
        if (--skippedDepth_ == 0) {
            place_ = Place::Entry;
        }
    } else if (type == JsonType::Object) {
        FinishEntry();
        place_ = Place::Entries;
    } else {
        place_ = place_ == Place::Texts ? Place::Entry : Place::Document;
    }
}

TextArray* EntryHandler::ArrayOf(Member member) {
    switch (member) {
    case Member::Added:
        return &added_;
    case Member::Arguments:
        return &arguments_;
    case Member::Dependencies:
        return &dependencies_;
    case Member::Id:
    case Member::Other:
        break;
    }
    return nullptr;
}

void EntryHandler::FinishEntry() {
    // Only these two are required: a person may leave out the others.
    arguments_.Require(Member::Arguments);
    dependencies_.Require(Member::Dependencies);
    for (const TextArray* const array : {&added_, &arguments_, &dependencies_}) {
        array->Finish();
    }
    take_(entry_);
}

} // namespace

void ReadDependencyInfo(std::istream& input, const std::function<void(const DependencyInfoEntry&)>& take) {
    BlockReader reader(input);
    EntryHandler handler(take);
    try {
        // By iterators and not the stream itself: the library would ask that for each byte.
        ReadJson(handler, BlockIterator(reader), BlockIterator());
    } catch (const nlohmann::json::exception& error) {
        throw ZelmException(error.what());
    }
}

DependencyInfoWriter::DependencyInfoWriter(const std::string& path) : file_(path) {
    file_.Append("[");
}

void DependencyInfoWriter::Add(std::string_view id, std::span<const std::string> arguments, const PathTable& paths,
                               std::span<const FileNumber> listed, std::span<const FileNumber> added) {
    // Escaped once for each file and not for each unit that names it.
    for (std::size_t place = pathTexts_.size(); place < paths.Size(); ++place) {
        AppendJsonString(pathTexts_.emplace_back(), paths.Reported(static_cast<FileNumber>(place)));
    }
    text_ = std::exchange(isFirst_, false) ? "\n{" : ",\n{";
    if (!added.empty()) {
        AppendList("\"added\":[", added);
        text_ += "],";
    }
    text_ += "\"arguments\":[";
    std::string_view separator;
    for (const std::string& argument : arguments) {
        text_ += separator;
        AppendJsonString(text_, argument);
        separator = ",";
    }
    // Those added stand here too, for programs that know nothing of "added".
    AppendList("],\"dependencies\":[", listed);
    AppendList(listed.empty() || added.empty() ? "" : ",", added);
    text_ += "],\"id\":";
    AppendJsonString(text_, id);
    text_ += '}';
    file_.Append(text_);
}

void DependencyInfoWriter::AppendList(std::string_view opening, std::span<const FileNumber> files) {
    text_ += opening;
    std::string_view separator;
    for (const FileNumber file : files) {
        text_ += separator;
        text_ += pathTexts_[PlaceOf(file)];
        separator = ",";
    }
}

ContentFingerprint DependencyInfoWriter::Finish() {
    file_.Append("\n]\n");
    return file_.Content();
}

} // namespace Orvanta
