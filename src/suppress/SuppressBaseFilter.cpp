#include "suppress/SuppressBaseFilter.h"

namespace OrvlogConverter {

namespace {

ReportMessage OutdatedBaseNotice() {
    ReportMessage notice;
    notice.code = OutdatedBaseCode;
    notice.message = OutdatedBaseText;
    notice.level = 1;
    notice.positions.resize(1);
    // A message needs a place, and this one has none.
    notice.positions.front().file = " ";
    return notice;
}

} // namespace

void SuppressBaseFilter::Begin() {
    IFilter::Begin();
    if (base_ != nullptr && base_->IsOutdated() && next_ != nullptr) {
        next_->Write(OutdatedBaseNotice());
    }
}

bool SuppressBaseFilter::Accept(const ReportMessage& message) {
    // By the rules of the base's version, old ones too: an outdated base goes on hiding what it holds.
    const bool isHidden = base_ != nullptr && base_->Contains(MakeSuppressEntry(message, base_->Version()));
    hidden_ += isHidden ? 1U : 0U;
    if (isHidden && hiddenMessages_ != nullptr) {
        hiddenMessages_->Write(message);
    }
    return !isHidden;
}

} // namespace OrvlogConverter
