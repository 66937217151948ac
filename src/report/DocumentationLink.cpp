#include "report/DocumentationLink.h"

namespace OrvlogConverter {

ReportMessage DocumentationLinkMessage() {
    ReportMessage message;
    // No level and no position: it is about the report, not about code.
    message.code = DocumentationLinkCode;
    message.message =
        std::string("The documentation for all analyzer warnings is available here: ") + DocumentationAddress + ".";
    return message;
}

} // namespace OrvlogConverter
