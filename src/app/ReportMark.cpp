#include "app/ReportMark.h"

#include "platform/Files.h"
#include "platform/Paths.h"

namespace Orvanta {

namespace {

std::string TextOf(const Fingerprint& contents) {
    return std::to_string(contents.high) + " " + std::to_string(contents.low) + "\n";
}

} // namespace

ReportMark::ReportMark(const std::string& orvantaFolder) : path_(JoinPath(orvantaFolder, "report.mark")) {}

bool ReportMark::Matches(const Fingerprint& contents) const {
    return PathExists(path_) && ReadWholeFile(path_) == TextOf(contents);
}

void ReportMark::Write(const Fingerprint& contents) const {
    AtomicFile file(path_);
    file.Append(TextOf(contents));
    file.Commit();
}

void ReportMark::Remove() const noexcept {
    RemoveFile(path_);
}

} // namespace Orvanta
