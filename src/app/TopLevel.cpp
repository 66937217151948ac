#include "app/TopLevel.h"

#include "analysis/AnalyzerRunner.h"
#include "analysis/RunOutcome.h"
#include "buildinput/BuildInput.h"
#include "platform/Console.h"
#include "platform/Exceptions.h"
#include "platform/ProgramArguments.h"
#include "report/Exceptions.h"
#include "report/WholeFile.h"

#include <args.hxx>

#include <atomic>
#include <cstdlib>
#include <exception>
#include <new>
#include <sstream>
#include <string_view>
#include <vector>

namespace Orvanta {

namespace {

void Print(std::string_view text) {
    WriteMessage(text);
}

// The two hierarchies of errors have this in common: a text and a hint.
template <class Error>
void PrintError(const Error& error) {
    PrintLine(std::string("Error: ") + error.what());
    if (!error.Hint().empty()) {
        PrintLine(error.Hint());
    }
}

// In one piece, as all that is printed.
void PrintHelp(const args::ArgumentParser& parser) {
    std::ostringstream text;
    text << parser;
    Print(text.str());
}

// The words as UTF-8 on both systems. A process may be started without even its own name.
void Parse(args::ArgumentParser& parser, int argumentCount, const char* const* arguments) {
    std::vector<std::string> words;
    if (argumentCount >= 1) {
        words = ProgramArguments(argumentCount, arguments);
        words.erase(words.begin()); // the program's own name
    }
    parser.ParseArgs(words);
}

// The advice only where it may help, which whoever read the input knows.
void PrintNoInvocations(const NoCompilerInvocationsFound& error) {
    std::string text = "No compiler invocations were detected.";
    if (error.HintForUser() == NoCompilerInvocationsFound::Hint::NameTheCompiler) {
        text += " Consider specifying the compiler name with the '-C' argument.";
    }
    PrintLine(text);
}

} // namespace

void SetHelpWords(args::ArgumentParser& parser) {
    parser.helpParams.usageString = "Usage:";
    parser.helpParams.optionsString = "Options:";
    parser.helpParams.proglineOptions = "{OPTIONS}";
    parser.helpParams.addDefault = true;
    parser.helpParams.addChoices = true;
}

void MakeRoomFor(const std::string& outputPath) noexcept {
    if (outputPath == OrvlogConverter::StandardStreamPath) {
        PlaceMessages(MessagePlace::StandardError);
    }
}

// A more derived type stands before its base.
int ParseAndRun(args::ArgumentParser& parser, int argumentCount, const char* const* arguments,
                const std::function<void()>& work) {
    try {
        Parse(parser, argumentCount, arguments);
        if (work) {
            work();
        }
        return 0;
    } catch (const args::Completion& completion) {
        // The library ends these by exceptions too; they are no errors.
        Print(completion.what());
        return 0;
    } catch (const args::Help&) {
        PrintHelp(parser);
        return 0;
    } catch (const PrintRequest& request) {
        Print(request.what());
        return 0;
    } catch (const args::Error& error) {
        PrintLine(error.what());
        PrintHelp(parser);
        PrintLine(error.what()); // the first one may be far up by now
    } catch (const OrvlogConverter::StoppedException&) {
        // Who has stopped it knows: no message.
        return InterruptedExitCode;
    } catch (const OrvlogConverter::ReportException& error) {
        PrintError(error);
    } catch (const NoCompilationCommandsToRun& error) {
        // Without "Error: " in front, which the handler of its base would add.
        PrintLine(error.what());
    } catch (const NoCompilerInvocationsFound& error) {
        PrintNoInvocations(error);
    } catch (const ZelmRcException& error) {
        // All has been told by then; only the code is left.
        return IsStandardOutputLost() ? 1 : error.ReturnCode();
    } catch (const ZelmException& error) {
        PrintError(error);
    } catch (const std::exception& error) {
        PrintLine(std::string("Unexpected exception was thrown: ") + error.what());
    }
    return 1;
}

namespace {

// In pieces: there may be no memory to put them together.
void PrintUnexpected(const std::exception& error) {
    Print("Unexpected exception was thrown: ");
    Print(error.what());
    Print("\n");
}

// Whether the exception that is being handled is one of that type.
template <class Error>
bool IsHandled() {
    try {
        if (std::current_exception() != nullptr) {
            throw;
        }
    } catch (const Error&) {
        return true;
    } catch (...) {
        return false;
    }
    return false;
}

std::atomic<bool> wantsMemory = false; // from the first time on that there was none

void NoteWantOfMemory() {
    wantsMemory.store(true);
    throw std::bad_alloc();
}

// For what no handler can take: an exception that leaves a function which must not throw, of a library too. Want of
// memory is no fault of the program, which the crash handler would take it for.
[[noreturn]] void EndByException() noexcept {
    // Where the exception is on its way still, its type can't be asked for.
    if (std::uncaught_exceptions() > 0 ? wantsMemory.load() : IsHandled<std::bad_alloc>()) {
        PrintUnexpected(std::bad_alloc());
        std::_Exit(1);
    }
    std::abort();
}

} // namespace

int RunGuarded(EntryFunction* entry, int argumentCount, const char* const* arguments) noexcept {
    std::set_new_handler(NoteWantOfMemory);
    std::set_terminate(EndByException);
    try {
        return entry(argumentCount, arguments);
    } catch (const std::exception& error) {
        PrintUnexpected(error);
        return 1;
    }
}

} // namespace Orvanta
