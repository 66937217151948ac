#include "report/DocumentationLink.h"

namespace OrvlogConverter {

ReportMessage DocumentationLinkMessage() {
    ReportMessage message;
    message.code = DocumentationLinkCode;
    message.message = "The documentation for all analyzer warnings is available here: "
                      "https://docs.orvanta.example/en/docs/warnings/.";
    return message;
}

} // namespace OrvlogConverter
