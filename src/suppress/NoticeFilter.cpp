#include "suppress/NoticeFilter.h"

#include "report/DocumentationLink.h"
#include "suppress/SuppressBase.h"

#include <utility>

namespace OrvlogConverter {

bool NoticeFilter::Accept(const ReportMessage& message) {
    // Told by the code alone: the texts of two versions of the program may differ, and one notice is enough.
    if (message.code == DocumentationLinkCode) {
        return !std::exchange(hasLink_, true);
    }
    if (message.code == OutdatedBaseCode) {
        return !std::exchange(hasOutdatedBase_, true);
    }
    return true;
}

} // namespace OrvlogConverter
