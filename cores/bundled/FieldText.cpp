#include "bundled/FieldText.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Text.h"

#include <utility>

namespace Orvanta {

void AppendField(std::string& text, std::string_view field) {
    text.append(field) += '\0';
}

void AppendNumber(std::string& text, std::uint64_t number) {
    AppendField(text, std::to_string(number));
}

FieldReader::FieldReader(std::string path, std::string_view kind)
    : path_(std::move(path)), kind_(kind), text_(ReadWholeFile(path_)) {
    // The version is part of the kind: a file of another one is not read as if it were of this.
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

std::uint64_t FieldReader::NextNumber() {
    const auto number = WholeNumber<std::uint64_t>(Next());
    if (!number) {
        Fail();
    }
    return *number;
}

void FieldReader::ExpectEnd() const {
    // More than expected is as much a sign of damage as less.
    if (position_ != text_.size()) {
        Fail();
    }
}

// One text for all faults: which field is wrong helps nobody who did not write the file.
void FieldReader::Fail() const {
    throw ZelmException(path_ + ": is damaged, or no file of the kind \"" + kind_ + '"');
}

} // namespace Orvanta
