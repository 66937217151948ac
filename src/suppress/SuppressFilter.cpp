#include "suppress/SuppressFilter.h"

#include "platform/Text.h"
#include "report/Exceptions.h"

#include <algorithm>
#include <cstddef>
#include <system_error>
#include <utility>

namespace OrvlogConverter {

namespace {

// The number behind the colon of "FILE:LINE"; 0 stands for every line.
std::uint32_t ParseLine(std::string_view text) {
    std::uint32_t line = 0;
    const std::errc error = Orvanta::ReadWholeNumber(text, line);
    if (error == std::errc::invalid_argument) {
        throw ConfigException("invalid stoul argument");
    }
    if (error != std::errc()) {
        throw ConfigException("stoul argument out of range");
    }
    return line;
}

} // namespace

std::vector<SuppressedFile> ParseSuppressedFiles(const std::vector<std::string>& values) {
    std::vector<SuppressedFile> files;
    for (const std::string& value : values) {
        SuppressedFile file = {value};
        // The last one: a name may hold others.
        if (const std::size_t colon = value.rfind(':'); colon != std::string::npos) {
            file = {value.substr(0, colon), ParseLine(std::string_view(value).substr(colon + 1))};
        }
        files.push_back(std::move(file));
    }
    // All values are parsed before the first is judged, so that the order of the checks does not depend on theirs.
    for (std::size_t index = 0; index < files.size(); ++index) {
        if (values[index].empty()) { // as an unset variable of a script gives it; it would match every file
            throw ConfigException("The value of the '--file' argument is empty.");
        }
        if (files[index].name.empty()) {
            throw ConfigException("Specifying only the line number without file name is not supported for the '--file' "
                                  "argument.");
        }
    }
    for (const SuppressedFile& file : files) {
        if (file.name.find_first_of("/\\") != std::string::npos) {
            throw ConfigException("You can only use name of the file in the '--file' argument. Specifying file path is "
                                  "not supported.");
        }
    }
    return files;
}

std::uint32_t ParseCodeNumber(std::string_view value) {
    const std::string_view digits = value.starts_with('V') ? value.substr(1) : value;
    const auto number = Orvanta::WholeNumber<std::uint32_t>(digits);
    if (!number) {
        throw ConfigException("Wrong value of --warning: \"" + std::string(value) +
                              "\", expected a code such as V501 or its number");
    }
    return *number;
}

SuppressFilter::SuppressFilter(IOutput* next, SuppressFilterSettings settings)
    : IFilter(next), settings_(std::move(settings)), levels_(settings_.analyzers) {}

bool SuppressFilter::Accept(const ReportMessage& message) {
    if (settings_.disabledCodes.contains(message.code)) {
        return false;
    }
    if (!settings_.files.empty() && !IsInFiles(message)) {
        return false;
    }
    // The same rules as those of the converter, so that what is seen there can be accepted here.
    if (!levels_.Passes(message.code, message.level)) {
        return false;
    }
    // By number, as the option takes codes with and without their letter.
    return settings_.codeNumbers.empty() || settings_.codeNumbers.contains(CodeNumber(message.code));
}

bool SuppressFilter::IsInFiles(const ReportMessage& message) const {
    const MessagePosition& first = FirstPosition(message);
    // Part of the path is enough: the name alone is what people type.
    return std::any_of(settings_.files.begin(), settings_.files.end(), [&first](const SuppressedFile& file) {
        return first.file.find(file.name) != std::string::npos && (file.line == 0 || file.line == first.line);
    });
}

} // namespace OrvlogConverter
