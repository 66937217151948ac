#include "bundled/MarkedText.h"

#include "bundled/SystemFolders.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <utility>

namespace Orvanta {

namespace {

// Names such as "<built-in>" and "<command-line>" stand for text that is in no file.
bool IsPseudoFile(std::string_view quotedName) {
    return quotedName.starts_with('<') && quotedName.ends_with('>');
}

// gcc names the directory of the compilation in a marker of its own, with "//" at its end.
bool IsDirectoryNote(std::string_view quotedName) {
    return quotedName.ends_with("//");
}

// A path of Windows stays one on every system.
std::string AbsolutePathOf(const std::string& name, std::string_view currentDirectory) {
    const bool isWindowsPath = IsAbsolutePath(name, PathRules::Windows) && !IsAbsolutePath(name, PathRules::Posix);
    const PathRules rules = isWindowsPath ? PathRules::Windows : HostPathRules();
    return NormalizePath(JoinPath(currentDirectory, name, rules), rules);
}

} // namespace

MarkedText::MarkedText(std::string_view text, const std::string& sourcePath, std::string currentDirectory)
    : rest_(text), currentDirectory_(std::move(currentDirectory)) {
    // The source stands first, whichever file the first marker names.
    files_.push_back({sourcePath, false, false});
    indexByPath_.emplace(sourcePath, 0);
}

bool MarkedText::ReadLine(MarkedLine& line) {
    while (!rest_.empty()) {
        const std::string_view text = TakeLine(rest_);
        // A raw string may hold lines that look like markers.
        if (!scanner_.IsInRawString()) {
            if (const auto marker = ReadLineMarker(text)) {
                Follow(*marker);
                continue;
            }
        }
        // Nearly no line needs the scanner, which would cost more than all the rest of the reading.
        if (scanner_.IsInRawString() || text.find("R\"") != std::string_view::npos) {
            scanner_.Read(text);
        }
        line = {text, currentFile_, nextNumber_++, origin_};
        return true;
    }
    return false;
}

void MarkedText::Follow(const LineMarker& marker) {
    if (IsDirectoryNote(marker.quotedName)) {
        return;
    }
    // A marker tells of the line below it.
    nextNumber_ = marker.line;
    if (!marker.quotedName.empty()) {
        currentFile_ = FindOrAddFile(marker);
    }
    // Within a user's file, gcc sets flag 3 where the text comes from a macro of a system header.
    const bool isUsersFile = currentFile_ && !files_[*currentFile_].isSystem;
    origin_ = isUsersFile && marker.isSystemHeader ? TextOrigin::SystemMacro : TextOrigin::File;
}

// Generators name their grammars as they were called, which need not be from where the compiler runs.
std::string MarkedText::FindPath(const std::string& name) const {
    std::string path = AbsolutePathOf(name, currentDirectory_);
    const bool isRelative = !IsAbsolutePath(name, PathRules::Windows) && !IsAbsolutePath(name, PathRules::Posix);
    if (isRelative && currentFile_ && !PathExists(path)) {
        std::string besideFile = AbsolutePathOf(name, DirectoryOf(files_[*currentFile_].path));
        if (PathExists(besideFile)) {
            return besideFile;
        }
    }
    return path;
}

std::optional<std::size_t> MarkedText::FindOrAddFile(const LineMarker& marker) {
    // By the name as it stands there: a file is entered many times and its path made once.
    if (const auto known = indexByName_.find(marker.quotedName); known != indexByName_.end()) {
        return known->second;
    }
    std::optional<std::size_t> index;
    if (!IsPseudoFile(marker.quotedName)) {
        const std::string path = FindPath(UnquotedName(marker.quotedName));
        const auto [entry, isNew] = indexByPath_.emplace(path, files_.size());
        if (isNew) {
            // Flag 3 alone is no sign of a system header: see TextOrigin.
            const bool isSystem =
                (marker.entersFile && marker.isSystemHeader) || IsInSystemFolder(path, files_.front().path);
            files_.push_back({path, isSystem, true});
        }
        files_[entry->second].isNamed = true;
        index = entry->second;
    }
    // Those without a file too, so that they are not taken apart again.
    indexByName_.emplace(marker.quotedName, index);
    return index;
}

std::vector<std::string> ListDependencies(std::string_view text, const std::string& sourcePath,
                                          const std::string& currentDirectory) {
    MarkedText marked(text, sourcePath, currentDirectory);
    for (MarkedLine line; marked.ReadLine(line);) {
    }
    std::vector<std::string> paths;
    for (const MarkedFile& file : marked.Files()) {
        if (file.isNamed) {
            paths.push_back(file.path);
        }
    }
    return paths;
}

} // namespace Orvanta
