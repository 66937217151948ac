#include "report/JsonCopy.h"

#include "report/Exceptions.h"
#include "report/JsonText.h"

namespace OrvlogConverter {

void JsonCopy::Scalar(std::string_view json) {
    BeginValue();
    *target_ += json;
    EndValue();
}

void JsonCopy::Text(std::string_view text) {
    BeginValue();
    AppendJsonString(*target_, text);
    EndValue();
}

void JsonCopy::Key(std::string_view name) {
    BeginValue();
    AppendJsonString(*target_, name);
    *target_ += ": ";
    isBehindKey_ = true;
}

void JsonCopy::Open(char bracket) {
    if (depth_ == std::size_t{DeepestJson}) {
        throw ParseException("nested more than " + std::to_string(DeepestJson) + " deep");
    }
    BeginValue();
    *target_ += bracket;
    ++depth_;
    isFirst_ = true;
}

void JsonCopy::Close(char bracket) {
    *target_ += bracket;
    --depth_;
    EndValue();
}

void JsonCopy::BeginValue() {
    if (depth_ > 0 && !isFirst_ && !isBehindKey_) {
        *target_ += ", ";
    }
    isBehindKey_ = false;
}

void JsonCopy::EndValue() {
    isFirst_ = false;
    if (depth_ == 0) {
        target_ = nullptr;
        isFirst_ = true;
    }
}

} // namespace OrvlogConverter
