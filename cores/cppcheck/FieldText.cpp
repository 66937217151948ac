#include "cppcheck/FieldText.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"

#include <charconv>
#include <utility>

namespace Orvanta {

void AppendField(std::string& text, std::string_view field) {
    text.append(field) += '\0';
}

void AppendCount(std::string& text, std::size_t count) {
    AppendField(text, std::to_string(count));
}

FieldReader::FieldReader(std::string path, std::string_view kind)
    : path_(std::move(path)), kind_(kind), text_(ReadWholeFile(path_)) {
    if (Next() != kind) {
        Fail();
    }
}

std::string_view FieldReader::Next() {
    const std::size_t end = text_.find('\0', position_);
    if (end == std::string::npos) {
        Fail();
    }
    const std::string_view field = std::string_view(text_).substr(position_, end - position_);
    position_ = end + 1;
    return field;
}

std::size_t FieldReader::NextCount() {
    const std::string_view field = Next();
    std::size_t count = 0;
    const char* const end = field.data() + field.size();
    const auto [rest, error] = std::from_chars(field.data(), end, count);
    if (error != std::errc() || rest != end) {
        Fail();
    }
    return count;
}

void FieldReader::ExpectEnd() const {
    if (position_ != text_.size()) {
        Fail();
    }
}

void FieldReader::Fail() const {
    throw ZelmException(path_ + ": is damaged, or no file of the kind \"" + kind_ + '"');
}

} // namespace Orvanta
