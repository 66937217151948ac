#include "suppress/SuppressBaseOutput.h"

#include "platform/Files.h"
#include "report/DocumentationLink.h"
#include "report/Exceptions.h"

#include <utility>

namespace OrvlogConverter {

SuppressBaseOutput::SuppressBaseOutput(std::string path, SuppressBase base)
    : path_(std::move(path)), base_(std::move(base)) {}

void SuppressBaseOutput::Begin() {
    if (base_.IsOutdated()) {
        // Before the report is read: nothing of it could be added.
        throw ConfigException(OutdatedBaseText);
    }
}

bool SuppressBaseOutput::Write(const ReportMessage& message) {
    // Accepting it would hide the link in every report to come.
    if (message.code == DocumentationLinkCode) {
        return false;
    }
    const bool isNew = base_.Add(MakeSuppressEntry(message, base_.Version()));
    added_ += isNew ? 1U : 0U;
    return isNew;
}

void SuppressBaseOutput::End() {
    // A base that has not changed is left alone, whatever its layout.
    if (added_ > 0 || !Orvanta::PathExists(path_)) {
        base_.Write(path_);
    }
}

} // namespace OrvlogConverter
