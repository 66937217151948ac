#include "render/FormOutput.h"

#include "render/Finding.h"

namespace OrvlogConverter {

void FormOutput::Begin() {
    text_.clear();
    AppendHead(text_);
    file_.Append(text_);
}

// What a report says of itself (its documentation, its base) has no place in the forms: they hold findings.
bool FormOutput::Write(const ReportMessage& message) {
    if (!IsAboutCode(message)) {
        return false;
    }
    text_.clear();
    AppendFinding(text_, message);
    file_.Append(text_);
    return true;
}

void FormOutput::End() {
    text_.clear();
    AppendTail(text_);
    file_.Append(text_);
    file_.Commit();
}

} // namespace OrvlogConverter
