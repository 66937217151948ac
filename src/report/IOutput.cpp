#include "report/IOutput.h"

namespace OrvlogConverter {

void IFilter::Begin() {
    if (next_ != nullptr) {
        next_->Begin();
    }
}

bool IFilter::Write(const ReportMessage& message) {
    if (!Accept(message)) {
        return false;
    }
    return next_ == nullptr || next_->Write(message);
}

void IFilter::End() {
    if (next_ != nullptr) {
        next_->End();
    }
}

void ITransform::Begin() {
    if (next_ != nullptr) {
        next_->Begin();
    }
}

bool ITransform::Write(const ReportMessage& message) {
    // The stage before keeps its own message: others may be handed the same one.
    const ReportMessage transformed = Transform(message);
    return next_ == nullptr || next_->Write(transformed);
}

void ITransform::End() {
    if (next_ != nullptr) {
        next_->End();
    }
}

} // namespace OrvlogConverter
