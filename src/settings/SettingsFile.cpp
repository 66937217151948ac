#include "settings/SettingsFile.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Text.h"
#include "settings/AnalysisMode.h"

#include <algorithm>
#include <utility>

namespace Orvanta {

namespace {

constexpr std::string_view PathKeys[] = {"exclude-path", "rules-config", "intermodular-file", "vcprojectdir"};

bool IsPathKey(std::string_view key) {
    return std::find(std::begin(PathKeys), std::end(PathKeys), key) != std::end(PathKeys);
}

// A path of either system is left alone: a settings file may be meant for both.
bool IsAbsoluteValue(std::string_view value) {
    const bool hasDrive = value.size() >= 3 && ToLowerAscii(value[0]) >= 'a' && ToLowerAscii(value[0]) <= 'z' &&
                          value[1] == ':' && (value[2] == '/' || value[2] == '\\');
    return hasDrive || IsAbsolutePath(value);
}

std::string StoredValue(std::string_view key, std::string_view value, std::string_view baseDirectory) {
    if (key == "analysis-mode") {
        return std::to_string(ParseAnalysisMode(value));
    }
    if (IsPathKey(key) && !value.empty() && !HasWildcard(value) && !IsAbsoluteValue(value)) {
        return JoinPath(baseDirectory, value);
    }
    return std::string(value);
}

std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char character : text) {
        if (character == '\n') {
            escaped += "\\n";
        } else if (character == '\r') {
            escaped += "\\r";
        } else {
            escaped += character;
        }
    }
    return escaped;
}

// What keeps the format from giving `text` back as it is; empty when nothing does.
std::string_view ReadBackFault(std::string_view text) {
    if (text.find_first_of("\n\r") != std::string_view::npos) {
        return "a line break";
    }
    return Trim(text).size() == text.size() ? std::string_view() : "white space at an end";
}

std::string_view KeyFault(std::string_view key) {
    if (key.find('=') != std::string_view::npos) {
        return "an equals sign";
    }
    return key.substr(0, 1) == "#" ? "a comment sign at its start" : ReadBackFault(key);
}

/// \throws ZelmException when the entry would be read back as another one
void CheckEntry(const std::string& key, const std::string& value) {
    if (const std::string_view fault = KeyFault(key); !fault.empty()) {
        throw ZelmException("The settings format can't hold the key of the value \"" + Escaped(value) + "\": it has " +
                            std::string(fault) + ": \"" + Escaped(key) + "\"");
    }
    if (const std::string_view fault = ReadBackFault(value); !fault.empty()) {
        throw ZelmException("The settings format can't hold the value of \"" + key + "\": it has " +
                            std::string(fault) + ": \"" + Escaped(value) + "\"");
    }
}

std::string TextOf(const SettingsMap& settings) {
    std::string text;
    for (const auto& [key, value] : settings) {
        CheckEntry(key, value);
        text += key;
        text += '=';
        text += value;
        text += '\n';
    }
    return text;
}

OutputFile CreateConfigFile(const std::string& path) {
    try {
        return OutputFile(path, OutputFile::Mode::Replace);
    } catch (const ZelmException&) {
        throw ZelmException("Can't create config file " + path);
    }
}

std::string ReadConfigFile(const std::string& path) {
    try {
        return ReadWholeFile(path);
    } catch (const ZelmException&) {
        throw ZelmException("Can't open config file " + path);
    }
}

} // namespace

SettingsMap ParseSettings(std::string_view text, std::string_view baseDirectory) {
    text = WithoutUtf8Mark(text);
    SettingsMap settings;
    while (!text.empty()) {
        const std::string_view line = Trim(TakeLine(text));
        const std::size_t equals = line.find('=');
        if (line.substr(0, 1) == "#" || equals == std::string_view::npos) {
            continue;
        }
        const std::string_view key = Trim(line.substr(0, equals));
        const std::string_view value = Trim(line.substr(equals + 1));
        settings.emplace(key, StoredValue(key, value, baseDirectory));
    }
    return settings;
}

SettingsMap ReadSettingsFile(const std::string& path) {
    const std::string text = ReadConfigFile(path);
    return ParseSettings(text, DirectoryOf(AbsolutePath(path)));
}

SettingsFile::SettingsFile(SettingsMap settings, const std::string& basePath, Lifetime lifetime)
    : settings_(std::move(settings)), path_(basePath + ".cfg"), lifetime_(lifetime) {
    const std::string text = TextOf(settings_);
    OutputFile file = CreateConfigFile(path_);
    try {
        file.Append(text);
    } catch (const ZelmException&) {
        RemoveFile(path_); // half of the settings would be other settings
        throw;
    }
}

SettingsFile::~SettingsFile() {
    RemoveOwned();
}

SettingsFile::SettingsFile(SettingsFile&& other) noexcept
    : settings_(std::move(other.settings_)), path_(std::exchange(other.path_, std::string())),
      lifetime_(other.lifetime_) {}

SettingsFile& SettingsFile::operator=(SettingsFile&& other) noexcept {
    if (this != &other) {
        RemoveOwned();
        settings_ = std::move(other.settings_);
        path_ = std::exchange(other.path_, std::string());
        lifetime_ = other.lifetime_;
    }
    return *this;
}

void SettingsFile::RemoveOwned() noexcept {
    if (lifetime_ == Lifetime::Remove && !path_.empty()) {
        RemoveFile(path_);
    }
}

} // namespace Orvanta
