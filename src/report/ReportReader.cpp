#include "report/ReportReader.h"

#include "platform/Files.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"
#include "platform/Text.h"
#include "report/CompilerLine.h"
#include "report/Exceptions.h"
#include "report/JsonMessage.h"
#include "report/JsonText.h"
#include "report/RawLine.h"
#include "report/StandardInput.h"
#include "report/Utf8.h"
#include "report/WholeFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <istream>
#include <optional>
#include <utility>

namespace OrvlogConverter {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t BlockSize = 262144;
constexpr std::string_view RawStart = "Zelm64-EM<#~>";
constexpr const char* WarningsKey = "warnings";

bool HasJsonShape(std::string_view line) {
    return !line.empty() && line.front() == '{' && line.back() == '}';
}

std::string_view WithoutLineEnd(std::string_view line) {
    if (line.ends_with('\n')) {
        line.remove_suffix(1);
    }
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

/// Receives the events of a document and cuts it into messages and other members, of which nothing stays behind.
class DocumentCutter {
public:
    DocumentCutter(const std::string& path, const ReportReceiver& receiver) : path_(path), receiver_(receiver) {}

    // The answer says whether the library is to keep the value.
    bool operator()(int depth, Json::parse_event_t event, const Json& value) {
        constexpr int MemberDepth = 1; // of what the document's object holds
        if (depth > DeepestJson) {
            throw ParseException(Place() + ": nested more than " + std::to_string(DeepestJson) + " deep");
        }
        if (depth == MemberDepth) {
            return TakeMemberEvent(event, value);
        }
        if (depth == MemberDepth + 1 && isWarnings_ && IsWhole(event)) {
            TakeMessage(value);
            return false;
        }
        return true;
    }

    void RequireWarnings(const Json& document) const {
        if (!document.is_object()) {
            throw ParseException(path_ + ": type must be object, but is " + document.type_name());
        }
        if (!hasWarnings_) {
            throw ParseException(path_ + ": field " + WarningsKey + " is not found");
        }
    }

private:
    static bool IsWhole(Json::parse_event_t event) {
        return event == Json::parse_event_t::value || event == Json::parse_event_t::object_end ||
               event == Json::parse_event_t::array_end;
    }

    bool TakeMemberEvent(Json::parse_event_t event, const Json& value) {
        if (event == Json::parse_event_t::key) {
            key_ = value.get<std::string>();
            isWarnings_ = key_ == WarningsKey;
            hasWarnings_ = hasWarnings_ || isWarnings_;
            return true;
        }
        const bool isObject = event == Json::parse_event_t::object_start;
        if (isWarnings_ && (isObject || event == Json::parse_event_t::value)) {
            throw ParseException(path_ + ": type must be array, but is " + (isObject ? "object" : value.type_name()));
        }
        if (!IsWhole(event)) {
            return true;
        }
        if (!isWarnings_ && receiver_.takeMember && !key_.empty()) {
            receiver_.takeMember(key_, value.dump());
        }
        return false;
    }

    // Of what is being read: the document, or the message.
    [[nodiscard]] std::string Place() const {
        return isWarnings_ ? path_ + ", entry " + std::to_string(entry_ + 1) : path_;
    }

    void TakeMessage(const Json& value) {
        ++entry_;
        const std::string text = value.dump();
        ReportMessage message;
        try {
            message = ReadJsonMessage(text);
        } catch (const std::exception& error) {
            throw ParseException(path_ + ", entry " + std::to_string(entry_) + ": " + error.what());
        }
        receiver_.takeMessage(message, text);
    }

    const std::string& path_;
    const ReportReceiver& receiver_;
    std::string key_; // of the document's member that is being read
    bool isWarnings_ = false;
    bool hasWarnings_ = false;
    std::size_t entry_ = 0;
};

} // namespace

ReportReader::ReportReader(std::string path) : path_(std::move(path)), isDocument_(IsJsonDocumentName(path_)) {
    if (path_ == StandardStreamPath) {
        auto input = std::make_unique<StandardInput>();
        isDocument_ = LooksLikeDocument(input->Front(BlockSize));
        input_ = std::move(input);
        path_ = "standard input";
    } else {
        Open();
    }
}

ReportReader::~ReportReader() = default;

void ReportReader::Open() {
    if (path_.empty()) {
        throw FilesystemException("Empty filepath");
    }
    if (Orvanta::LookAt(path_).kind == Orvanta::PathKind::Folder) {
        throw FilesystemException(path_ + " is a directory");
    }
    auto file = std::make_unique<std::ifstream>(Orvanta::NativePath(path_), std::ios::binary);
    if (!file->is_open()) {
        throw FilesystemException("Couldn't open file " + path_);
    }
    input_ = std::move(file);
}

void ReportReader::Read(const ReportReceiver& receiver) {
    RefuseUtf16(path_, *input_);
    if (isDocument_) {
        ReadDocument(receiver);
    } else {
        ReadLines(receiver);
    }
    if (input_->bad()) {
        throw FilesystemException("Couldn't read file " + path_);
    }
}

void ReportReader::ReadDocument(const ReportReceiver& receiver) {
    Utf8Buffer buffer(*input_);
    std::istream stream(&buffer);
    DocumentCutter cutter(path_, receiver);
    try {
        const Json document = Json::parse(stream, [&cutter](int depth, Json::parse_event_t event, const Json& value) {
            return cutter(depth, event, value);
        });
        cutter.RequireWarnings(document);
    } catch (const Json::exception& error) {
        throw ParseException(path_ + ": " + error.what());
    }
}

void ReportReader::ReadLines(const ReportReceiver& receiver) {
    std::string_view text;
    for (std::size_t number = 1; NextLine(text); ++number) {
        if (number == 1) {
            text = Orvanta::WithoutUtf8Mark(text);
        }
        const std::string_view line = WithoutLineEnd(text);
        if (line.empty()) {
            continue;
        }
        try {
            ReadLine(line);
        } catch (const std::exception& error) {
            throw ParseException(path_ + ", line " + std::to_string(number) + ": " + error.what());
        }
        receiver.takeMessage(message_, text);
    }
}

void ReportReader::ReadLine(std::string_view line) {
    if (HasJsonShape(line)) {
        if (!scanner_.Scan(line, message_)) {
            message_ = ReadJsonMessage(line);
        }
        return;
    }
    std::optional<ReportMessage> compilerMessage;
    if (!line.starts_with(RawStart)) {
        compilerMessage = ReadCompilerLine(line);
    }
    message_ = compilerMessage ? std::move(*compilerMessage) : ReadRawLine(line);
}

// The line lasts until the next call.
bool ReportReader::NextLine(std::string_view& line) {
    std::size_t searched = begin_;
    while (true) {
        const std::size_t end = buffer_.find('\n', searched);
        if (end != std::string::npos) {
            line = std::string_view(buffer_).substr(begin_, end + 1 - begin_);
            begin_ = end + 1;
            return true;
        }
        buffer_.erase(0, begin_);
        begin_ = 0;
        searched = buffer_.size();
        buffer_.resize(searched + std::max(BlockSize, searched)); // a line without end is not searched again and again
        input_->read(buffer_.data() + searched, static_cast<std::streamsize>(buffer_.size() - searched));
        buffer_.resize(searched + static_cast<std::size_t>(input_->gcount()));
        if (buffer_.size() == searched) {
            line = buffer_;
            begin_ = buffer_.size();
            return !line.empty();
        }
    }
}

bool IsJsonDocumentName(std::string_view path) {
    constexpr std::string_view Ending = ".json";
    const std::string name = Orvanta::ComparablePath(Orvanta::FileNameOf(path));
    return name.ends_with(Ending);
}

ReportLook LookAtReport(const std::string& path) {
    ReportLook look;
    if (IsJsonDocumentName(path)) {
        look.form = ReportForm::JsonDocument;
    }
    if (Orvanta::LookAt(path).kind != Orvanta::PathKind::File) {
        return look;
    }
    std::ifstream file(Orvanta::NativePath(path), std::ios::binary);
    std::string start(BlockSize, '\0');
    file.read(start.data(), static_cast<std::streamsize>(start.size()));
    start.resize(static_cast<std::size_t>(file.gcount()));
    std::string_view text = Orvanta::WithoutUtf8Mark(start);
    look.hasMark = text.size() != start.size();
    text.remove_prefix(std::min(text.find_first_not_of("\r\n"), text.size()));
    if (look.form != ReportForm::JsonDocument && !text.empty() && text.front() != '{') {
        look.form = ReportForm::RawLines;
    }
    return look;
}

} // namespace OrvlogConverter
