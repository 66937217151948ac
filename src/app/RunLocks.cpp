#include "app/RunLocks.h"

#include "analysis/RunPlaces.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <system_error>

namespace Orvanta {

namespace {

// A run that was killed while it started a child leaves its locks to that child for a moment.
constexpr std::chrono::milliseconds LongestWait{200};

// Each try fails only when a run that ends removes the folder between its making and the lock in it.
constexpr int MostTries = 5;

constexpr const char* IgnoreList = ".gitignore";

// What a run keeps is no part of the sources that it may lie among. A folder that can't be made or written to is told
// of by whoever wants to keep something there.
void MakeHiddenFolder(const std::string& folder) {
    // A report in a folder that does not exist is a fault of the command line, and stays one.
    if (!IsDirectory(std::string(DirectoryOf(folder)))) {
        return;
    }
    const std::string list = JoinPath(folder, IgnoreList);
    bool isOurs = false; // a list that stands there already is never removed, whatever fails
    try {
        MakeFolders(folder);
        if (!PathExists(list)) {
            isOurs = true;
            OutputFile(list, OutputFile::Mode::Replace).Append("*\n");
        }
    } catch (const FileException&) {
        if (isOurs) {
            RemoveFile(list);
        }
    }
}

void RemoveIfUnused(const std::string& folder) {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path nativeFolder = NativePath(folder);
    for (fs::directory_iterator entry(nativeFolder, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        if (entry->path().filename() != IgnoreList) {
            return;
        }
    }
    if (!error) {
        RemoveFile(JoinPath(folder, IgnoreList));
        fs::remove(nativeFolder, error); // fails when another run has begun there
    }
}

LockFile TakeIn(const LockPlace& place, const std::string& guarded, const StopFlag& stop, Log& log, const char* fault) {
    LockFile lock;
    LockFile::State state = LockFile::State::Unavailable;
    for (int tries = 0; tries < MostTries && state == LockFile::State::Unavailable && !place.folder.empty(); ++tries) {
        MakeHiddenFolder(place.folder);
        state = lock.Take(place, LongestWait, stop);
        if (IsDirectory(place.folder)) {
            break; // not gone: the reason lies elsewhere
        }
    }
    // Not waited for any longer: a run may take hours.
    if (state == LockFile::State::HeldByOther) {
        throw ZelmException(fault + guarded);
    }
    if (state == LockFile::State::Unsupported) {
        log.Line("Note: the file system of " + guarded + " has no locks: let no two runs write there at a time");
    }
    return lock;
}

} // namespace

RunLocks::~RunLocks() {
    // In the reverse order of taking them.
    shared_.ReleaseAndRemove();
    report_.ReleaseAndRemove();
    for (const std::string& folder : folders_) {
        RemoveIfUnused(folder);
    }
}

void RunLocks::TakeReport(const std::string& reportPath, const StopFlag& stop, Log& log) {
    LockPlace place = LockPlaceOf(reportPath);
    if (!place.folder.empty()) {
        place.folder = OrvantaFolder(place.folder);
        folders_.push_back(place.folder);
    }
    report_ = TakeIn(place, reportPath, stop, log, "Another run is writing to ");
}

void RunLocks::TakeShared(const std::string& orvantaFolder, const StopFlag& stop, Log& log) {
    folders_.push_back(orvantaFolder);
    // Inside the folder itself, so that it is one lock by whatever path the folder is reached.
    shared_ = TakeIn({orvantaFolder, "folder"}, orvantaFolder, stop, log, "Another run is using ");
}

} // namespace Orvanta
