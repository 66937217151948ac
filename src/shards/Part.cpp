#include "shards/Part.h"

#include <chrono>
#include <limits>
#include <utility>

namespace Orvanta {

namespace {

using OrvlogConverter::MessagePosition;
using OrvlogConverter::ReportMessage;

constexpr std::uint64_t MostIn32Bits = std::numeric_limits<std::uint32_t>::max();

std::uint32_t TakeShort(PartDecoder& decoder) {
    return static_cast<std::uint32_t>(decoder.NumberUpTo(MostIn32Bits));
}

bool TakeFlag(PartDecoder& decoder) {
    return decoder.NumberUpTo(1) != 0;
}

std::string TakeText(PartDecoder& decoder) {
    return std::string(decoder.Text());
}

void AddCost(PartEncoder& encoder, const ProcessCost& cost) {
    encoder.Add(static_cast<std::uint64_t>(cost.wall.count())).Add(static_cast<std::uint64_t>(cost.processor.count()));
    encoder.Add(cost.peakMemory);
}

ProcessCost TakeCost(PartDecoder& decoder) {
    const auto time = [&decoder] {
        return std::chrono::microseconds(
            decoder.NumberUpTo(static_cast<std::uint64_t>(std::chrono::microseconds::max().count())));
    };
    // One after the other: the order of arguments is nobody's promise.
    ProcessCost cost;
    cost.wall = time();
    cost.processor = time();
    cost.peakMemory = decoder.Number();
    return cost;
}

void AddTallies(PartEncoder& encoder, const CoreTallies& tallies) {
    encoder.Add(tallies.size());
    for (const auto& [text, things] : tallies) {
        encoder.Add(text).Add(things.size());
        for (const std::string& thing : things) {
            encoder.Add(thing);
        }
    }
}

CoreTallies TakeTallies(PartDecoder& decoder) {
    CoreTallies tallies;
    for (std::uint64_t texts = decoder.Number(); texts > 0; --texts) {
        std::set<std::string>& things = tallies[TakeText(decoder)];
        for (std::uint64_t count = decoder.Number(); count > 0; --count) {
            things.insert(TakeText(decoder));
        }
    }
    return tallies;
}

void AddPosition(PartEncoder& encoder, const MessagePosition& position) {
    encoder.Add(position.file).Add(position.line);
    encoder.Add(position.prevLine).Add(position.currLine).Add(position.nextLine);
    encoder.Add(position.prevHash).Add(position.currHash).Add(position.nextHash);
}

MessagePosition TakePosition(PartDecoder& decoder) {
    MessagePosition position;
    position.file = TakeText(decoder);
    position.line = TakeShort(decoder);
    position.prevLine = TakeText(decoder);
    position.currLine = TakeText(decoder);
    position.nextLine = TakeText(decoder);
    position.prevHash = TakeShort(decoder);
    position.currHash = TakeShort(decoder);
    position.nextHash = TakeShort(decoder);
    return position;
}

// In the order in which they are written.
constexpr Fingerprint PartMakers::*Marks[] = {&PartMakers::core,     &PartMakers::build, &PartMakers::compilers,
                                              &PartMakers::settings, &PartMakers::base,  &PartMakers::partition};

void AddMakers(PartEncoder& encoder, const PartMakers& makers) {
    encoder.Add(makers.ownVersion).Add(makers.resultVersion).Add(makers.coreVersion);
    for (Fingerprint PartMakers::*const mark : Marks) {
        encoder.Add(makers.*mark);
    }
}

PartMakers TakeMakers(PartDecoder& decoder) {
    PartMakers makers;
    makers.ownVersion = TakeText(decoder);
    makers.resultVersion = decoder.Number();
    makers.coreVersion = TakeText(decoder);
    for (Fingerprint PartMakers::*const mark : Marks) {
        makers.*mark = decoder.Mark();
    }
    return makers;
}

} // namespace

void AddOutcome(PartEncoder& encoder, const UnitResult& result) {
    encoder.Add(static_cast<std::uint64_t>(result.status)).Add(result.reason);
    encoder.Add(result.isInSystemFolder ? 1 : 0).Add(result.importsModules ? 1 : 0);
    AddTallies(encoder, result.tallies);
    AddCost(encoder, result.cost.compiler);
    AddCost(encoder, result.cost.core);
    encoder.Add(result.cost.textBytes);
}

UnitResult TakeOutcome(PartDecoder& decoder) {
    UnitResult result;
    result.status =
        static_cast<AnalyzerStatus>(decoder.NumberUpTo(static_cast<std::uint64_t>(AnalyzerStatus::FromCache)));
    result.reason = TakeText(decoder);
    result.isInSystemFolder = TakeFlag(decoder);
    result.importsModules = TakeFlag(decoder);
    result.tallies = TakeTallies(decoder);
    result.cost.compiler = TakeCost(decoder);
    result.cost.core = TakeCost(decoder);
    result.cost.textBytes = decoder.Number();
    return result;
}

void AddMessage(PartEncoder& encoder, const ReportMessage& message) {
    encoder.Add(message.code).Add(message.message).Add(message.sastId);
    encoder.Add(message.cwe).Add(message.level).Add(message.falseAlarm ? 1 : 0).Add(message.positions.size());
    for (const MessagePosition& position : message.positions) {
        AddPosition(encoder, position);
    }
}

ReportMessage TakeMessage(PartDecoder& decoder) {
    ReportMessage message;
    message.code = TakeText(decoder);
    message.message = TakeText(decoder);
    message.sastId = TakeText(decoder);
    message.cwe = TakeShort(decoder);
    message.level = TakeShort(decoder);
    message.falseAlarm = TakeFlag(decoder);
    // One after the other: a wrong count must not cost memory.
    for (std::uint64_t positions = decoder.Number(); positions > 0; --positions) {
        message.positions.push_back(TakePosition(decoder));
    }
    return message;
}

void AddHead(PartEncoder& encoder, const PartHead& head) {
    encoder.Add(head.shard.number).Add(head.shard.count).Add(head.allUnits).Add(head.invocations);
    AddMakers(encoder, head.makers);
    encoder.Add(head.reportSettings.size());
    for (const auto& [key, value] : head.reportSettings) {
        encoder.Add(key).Add(value);
    }
    encoder.Add(head.pathRules == PathRules::Windows ? 1 : 0).Add(head.hasBase ? 1 : 0).Add(head.notices.size());
    for (const ReportMessage& notice : head.notices) {
        AddMessage(encoder, notice);
    }
}

PartHead TakeHead(PartDecoder& decoder) {
    PartHead head;
    head.shard.number = TakeShort(decoder);
    head.shard.count = static_cast<std::uint32_t>(decoder.NumberUpTo(MostShards));
    if (head.shard.number < 1 || head.shard.number > head.shard.count) {
        throw DamagedPart();
    }
    head.allUnits = static_cast<std::size_t>(decoder.Number());
    head.invocations = static_cast<std::size_t>(decoder.Number());
    head.makers = TakeMakers(decoder);
    for (std::uint64_t settings = decoder.Number(); settings > 0; --settings) {
        std::string key = TakeText(decoder);
        head.reportSettings.emplace(std::move(key), TakeText(decoder));
    }
    head.pathRules = TakeFlag(decoder) ? PathRules::Windows : PathRules::Posix;
    head.hasBase = TakeFlag(decoder);
    for (std::uint64_t notices = decoder.Number(); notices > 0; --notices) {
        head.notices.push_back(TakeMessage(decoder));
    }
    return head;
}

std::string SourceRootOf(const PartHead& head) {
    return LastValue(head.reportSettings, SourceTreeRootKey).value_or("");
}

void AddUnit(PartEncoder& encoder, const PartUnit& unit) {
    encoder.Add(unit.number).Add(unit.invocation).Add(unit.source);
}

PartUnit TakeUnit(PartDecoder& decoder) {
    PartUnit unit;
    unit.number = static_cast<std::size_t>(decoder.Number());
    unit.invocation = static_cast<std::size_t>(decoder.Number());
    unit.source = TakeText(decoder);
    return unit;
}

void AddSkipped(PartEncoder& encoder, const SkippedInvocation& skipped) {
    encoder.Add(skipped.invocation).Add(static_cast<std::uint64_t>(skipped.fate));
    encoder.Add(skipped.what).Add(skipped.reason);
}

SkippedInvocation TakeSkipped(PartDecoder& decoder) {
    SkippedInvocation skipped;
    skipped.invocation = static_cast<std::size_t>(decoder.Number());
    skipped.fate =
        static_cast<InvocationFate>(decoder.NumberUpTo(static_cast<std::uint64_t>(InvocationFate::DeletedSinceTrace)));
    skipped.what = TakeText(decoder);
    skipped.reason = TakeText(decoder);
    return skipped;
}

} // namespace Orvanta
