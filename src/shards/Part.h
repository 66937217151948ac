#pragma once

// What a shard hands on to `merge`: all that the report and the end of one run of the whole are made of.
//
// A part is a file of blocks, each compressed and with a checksum:
//
//     head      which shard of which run it is, what the report is shaped by, and what the run says of itself
//     units     its units in input order: number, invocation and source of each
//     skipped   what became of the invocations of the input that gave no unit
//     entries   of each unit in the same order: its findings, then how it ended
//     end       without which the file is cut short
//
// Findings are written as records and not in the core's words, so that none is read a second time. What equals an
// earlier finding of the same shard is left out: the earlier one stands in front of it in the report too. Of what a
// suppression base hides, a fingerprint is kept, for the count of hidden findings alone. Where the report leaves the
// root of the sources out of paths, so do all findings of the part: each shard may have them elsewhere.
//
// Rejected: one JSON object a line, three times as large and slow to read, and no line of it tells that the next is
// missing; records of fixed size with offsets, which a reader that goes from front to end has no use for.

#include "analysis/UnitResult.h"
#include "buildinput/BuildInput.h"
#include "platform/Fingerprint.h"
#include "platform/Paths.h"
#include "report/ReportMessage.h"
#include "settings/SettingsMap.h"
#include "shards/PartCoding.h"
#include "shards/Shard.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// The ending of a part's name.
inline constexpr std::string_view PartExtension = ".orvpart";

/// What makes a result, and must be the same for all parts of one report.
struct PartMakers {
    std::string ownVersion; ///< of this program
    std::uint64_t resultVersion = 0;
    std::string coreVersion;
    Fingerprint core;      ///< with its version
    Fingerprint build;     ///< all units and invocations
    Fingerprint compilers; ///< their families and versions
    Fingerprint settings;
    Fingerprint base; ///< the file of --suppress-file
    Fingerprint partition;
};

/// What stands in front of a part.
struct PartHead {
    Shard shard;
    std::size_t allUnits = 0;    ///< of the whole input
    std::size_t invocations = 0; ///< likewise
    PartMakers makers;
    SettingsMap reportSettings;                               ///< by which the report is written
    PathRules pathRules = HostPathRules();                    ///< of the system that the shard ran on
    bool hasBase = false;                                     ///< then hidden findings are counted
    std::vector<OrvlogConverter::ReportMessage> notices = {}; ///< of the run itself, in front of all findings
};

/// The folder of the sources, which the report leaves out of paths; empty when it does not. It may lie elsewhere for
/// each shard.
[[nodiscard]] std::string SourceRootOf(const PartHead& head);

/// A unit of a part, as it is told of.
struct PartUnit {
    std::size_t number = 0;     ///< in the whole input, from 0
    std::size_t invocation = 0; ///< from 1
    std::string source;         ///< absolute, as the shard's system writes it
};

/// How a unit ended and what it took, without its findings: these are `ownFindings` of what is read.
void AddOutcome(PartEncoder& encoder, const UnitResult& result);
/// \throws DamagedPart, as all that follow
[[nodiscard]] UnitResult TakeOutcome(PartDecoder& decoder);

void AddMessage(PartEncoder& encoder, const OrvlogConverter::ReportMessage& message);
[[nodiscard]] OrvlogConverter::ReportMessage TakeMessage(PartDecoder& decoder);

void AddHead(PartEncoder& encoder, const PartHead& head);
[[nodiscard]] PartHead TakeHead(PartDecoder& decoder);

void AddUnit(PartEncoder& encoder, const PartUnit& unit);
[[nodiscard]] PartUnit TakeUnit(PartDecoder& decoder);

void AddSkipped(PartEncoder& encoder, const SkippedInvocation& skipped);
[[nodiscard]] SkippedInvocation TakeSkipped(PartDecoder& decoder);

/// What an entry is.
enum class PartEntry : std::uint8_t {
    Finding = 1,
    HiddenFinding = 2, ///< its fingerprint
    Outcome = 3,       ///< of the unit that the entries in front of it belong to
};

} // namespace Orvanta
