#include "analysis/UnitPrograms.h"

#include "analysis/MemoryDeath.h"
#include "analysis/PrecompiledHeader.h"
#include "analysis/StartableCommand.h"
#include "analysis/UnitFailure.h"
#include "compilers/Compiler.h"
#include "platform/Files.h"
#include "platform/Paths.h"

#include <cstdint>
#include <string_view>
#include <utility>

namespace Orvanta {

namespace {

std::string EnvironmentText(const EnvironmentBlock& environment) {
    std::string text;
    for (const std::string& entry : environment.Entries()) {
        text += entry;
        text += '\n';
    }
    return text;
}

// A forced include is always preprocessed from its header: a precompiled form holds no text, and may be out of date.
void TellPrecompiledForms(const UnitPlan& plan, Log& log) {
    for (const std::string& header : plan.parsed.forcedIncludes) {
        if (const std::optional<std::string> form = FindPrecompiledForm(JoinPath(plan.Directory(), header), log)) {
            log.VerboseLine("  The header is preprocessed in place of '" + *form + "'");
        }
    }
}

// What the log shows of it depends on the verbosity; the reason goes into the list of failures.
UnitFailure PreprocessingFailure(const UnitPlan& plan, std::string_view reason, const CapturedOutput& output,
                                 Log& log) {
    std::string text = "Source file can't be preprocessed!";
    if (log.IsVerbose()) {
        std::string details = plan.sourcePath + ": " + std::string(reason) + "\n" + text + "\n";
        details += "Environment variables:\n" + EnvironmentText(*plan.environment);
        details += "Stdout:\n" + output.standardOutput;
        if (!output.standardError.empty()) {
            details += "\nStderr:\n" + output.standardError;
        }
        log.VerboseLine(details);
    }
    text.append(" ").append(reason);
    return {AnalyzerStatus::PreprocessingFailed, std::move(text)};
}

} // namespace

void RequireNone(const std::string& path, const RunPlaces& places) {
    if (places.unitFiles == SettingsFile::Lifetime::Remove) {
        return; // the folder is new
    }
    RemoveFile(path);
    // As one that another program holds open on Windows: it would be taken for this run's.
    if (PathExists(path)) {
        throw FileException("Can't remove", path, "it is of an earlier run");
    }
}

void UnitPrograms::RemoveTextAtEnd() {
    if (context_.places.unitFiles == SettingsFile::Lifetime::Remove) {
        // Before it is made, so that half a text is removed as well.
        text_.emplace(plan_.files.preprocessedPath);
    }
}

// A precompiled header that is missing, out of date or another compiler's gives way to the header behind it.
ProcessOutcome UnitPrograms::RunPreprocessing(const ParsedCommand& parsed, const Arguments& words) {
    try {
        const StartableCommand command(words, parsed, plan_.files.basePath + ".rsp");
        const ProcessOutcome outcome =
            RunChild(command.Words(), *plan_.environment, {evidence_.compiler, cost_.compiler});
        const std::optional<std::uint64_t> size = FileSize(plan_.files.preprocessedPath);
        cost_.textBytes = size.value_or(0);
        // Some flags make a compiler end well without preprocessing: the core's failure would then mislead.
        if (outcome == ProcessOutcome::Succeeded && !size) {
            throw PreprocessingFailure(plan_, "The compiler ended with code 0, but wrote no text.",
                                       evidence_.compiler.output, context_.log);
        }
        return outcome;
    } catch (const ProcessReturnCodeException&) {
        if (parsed.precompiled.path.empty()) {
            throw;
        }
    }
    context_.log.VerboseLine("  The precompiled header '" + parsed.precompiled.path +
                             "' can't be used: its header is preprocessed");
    // It names no precompiled header, so this is the last attempt.
    ParsedCommand plain = parsed;
    IncludePlainHeader(plain, plan_.Directory());
    return RunPreprocessing(plain, plan_.model->BuildPreprocessCommand(plain, plan_.files.preprocessedPath));
}

ProcessOutcome UnitPrograms::RunChild(const Arguments& command, const EnvironmentBlock& environment,
                                      const ChildFacts& facts) {
    ChildEnd& end = facts.end;
    end = {};
    isOutOfMemory_ = false;
    try {
        const ProcessOutcome outcome =
            RunSupervised(command, {plan_.Directory(), environment, context_.settings.childLauncher}, context_.limits,
                          context_.stop, {end.output, facts.cost});
        if (outcome == ProcessOutcome::Succeeded) {
            end.exitCode = 0;
        }
        return outcome;
    } catch (const ProcessReturnCodeException& error) {
        end.exitCode = error.ExitCode();
        isOutOfMemory_ = LooksOutOfMemory(error);
        throw;
    }
}

ProcessOutcome UnitPrograms::Preprocess() {
    if (context_.log.IsVerbose()) {
        // Looks at the disk several times for each header: only where somebody reads what it says.
        TellPrecompiledForms(plan_, context_.log);
    }
    // Or a compiler that writes nothing would have the text of an earlier run analyzed.
    RequireNone(plan_.files.preprocessedPath, context_.places);
    try {
        return RunPreprocessing(plan_.parsed, plan_.preprocessing);
    } catch (const ProcessReturnCodeException& error) {
        // A summary names only the command and its code; the compiler's own line says what is wrong.
        const std::string_view telling = TellingLine(error.Output().standardError);
        throw PreprocessingFailure(plan_, telling.empty() ? error.Summary() : telling, error.Output(), context_.log);
    } catch (const ProcessException& error) {
        throw PreprocessingFailure(plan_, error.what(), {}, context_.log);
    }
}

ProcessOutcome UnitPrograms::RunCore(const Arguments& flags) {
    evidence_.coreFlags = flags;
    Arguments command = {context_.places.corePath, "--cfg", SettingsPath()};
    command.insert(command.end(), flags.begin(), flags.end());
    try {
        return RunChild(command, *plan_.coreEnvironment, {evidence_.core, cost_.core});
    } catch (const LimitException& error) {
        throw UnitFailure(AnalyzerStatus::CoreFailed, error.what());
    } catch (const ProcessStartException& error) {
        // A folder or an environment that hinders the start is this unit's own; the program is everybody's.
        if (error.WhatFailed() == ProcessStartException::Cause::Program) {
            throw CoreUnusableException(error.what());
        }
        throw UnitFailure(AnalyzerStatus::CoreFailed, error.what());
    } catch (const ProcessReturnCodeException& error) {
        const std::string reason = CoreFailureReason(error);
        // With its command and all that the core printed; the list of failures holds the beginning.
        context_.log.VerboseLine(plan_.sourcePath + ": " + reason + "\n" + error.what());
        throw UnitFailure(AnalyzerStatus::CoreFailed, reason);
    }
}

const std::string& UnitPrograms::SettingsPath() {
    if (!settings_) {
        settings_.emplace(plan_.settings, plan_.files.basePath, context_.places.unitFiles);
    }
    return settings_->Path();
}

} // namespace Orvanta
