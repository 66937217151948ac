#pragma once

#include "platform/StopFlag.h"
#include "report/ReportReader.h"

#include <cstddef>
#include <string>

namespace OrvlogConverter {

/// Reads a report and hands its parts on, as `ReportReader` does, until the user wants to stop. Returns the number of
/// messages. What all workers over finished reports have in common is this; each has its own chain and its own end.
/// \throws StoppedException in front of a message, or at the end
/// \throws FilesystemException, ParseException, and what `receiver` throws
std::size_t PassReport(const std::string& path, const ReportReceiver& receiver, const Orvanta::StopFlag& stop);

} // namespace OrvlogConverter
