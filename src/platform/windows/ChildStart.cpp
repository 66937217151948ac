#include "platform/windows/ChildStart.h"

#include "platform/EnvironmentNames.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Text.h"
#include "platform/windows/CommandLine.h"
#include "platform/windows/SearchPath.h"
#include "platform/windows/SystemReason.h"
#include "platform/windows/WideText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>

#include <windows.h>

namespace Orvanta {

namespace {

using Cause = ProcessStartException::Cause;

// Where the system has failed in itself, another try may succeed.
constexpr int MostAttempts = 3;

constexpr std::size_t LongestCommandLine = 32766; // without the zero at its end

Cause CauseOf(DWORD error) {
    switch (error) {
    // What passes by itself; the last one is a program that is still being written or looked at.
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
    case ERROR_NO_SYSTEM_RESOURCES:
    case ERROR_COMMITMENT_LIMIT:
    case ERROR_TOO_MANY_OPEN_FILES:
    case ERROR_SHARING_VIOLATION:
        return Cause::Resources;
    default:
        return Cause::Program;
    }
}

// What keeps a child from working in `directory`; ERROR_SUCCESS when nothing that we can see does.
DWORD FaultOfDirectory(const std::string& directory) {
    const PathAnswer answer = LookAt(directory);
    if (answer.kind == PathKind::Nothing) {
        return ERROR_PATH_NOT_FOUND;
    }
    if (answer.kind && answer.kind != PathKind::Folder) {
        return ERROR_DIRECTORY;
    }
    // The current folder of a process has the old limit, whatever form its path is given in.
    return ToWide(AbsolutePath(directory)).size() < MAX_PATH - 2 ? ERROR_SUCCESS : ERROR_FILENAME_EXCED_RANGE;
}

std::string ReasonOf(DWORD error) {
    return error == ERROR_DIRECTORY ? std::make_error_code(std::errc::not_a_directory).message() : SystemReason(error);
}

// A failed start doesn't say whether it was the program or the folder.
[[noreturn]] void FailToStart(const std::string& program, const std::string& directory, DWORD error) {
    if (!directory.empty()) {
        if (const DWORD fault = FaultOfDirectory(directory); fault != ERROR_SUCCESS) {
            throw ProcessStartException(program, directory, ReasonOf(fault));
        }
    }
    throw ProcessStartException(program, ReasonOf(error), CauseOf(error));
}

std::optional<std::string_view> VariableOf(const EnvironmentBlock& environment, std::string_view name) {
    for (const std::string_view entry : environment.Entries()) {
        // From the second character on: names like "=C:" begin with one.
        const std::size_t equals = entry.find('=', 1);
        if (equals != std::string_view::npos && IsSameVariable(entry.substr(0, equals), name)) {
            return entry.substr(equals + 1);
        }
    }
    return std::nullopt;
}

// The absolute path to start: `program` itself when it is one, otherwise where PATH of the child's environment finds
// it; empty when there is none.
std::string ResolveProgram(const std::string& program, const StartConditions& conditions) {
    const std::string_view extensions = VariableOf(conditions.environment, "PATHEXT").value_or(UsualExtensions);
    // A path is one of the child's folder. The system would take our own.
    if (program.find_first_of("\\/:") != std::string::npos) {
        return WithExtension(AbsolutePath(JoinPath(AbsolutePath(conditions.workingDirectory), program)), extensions);
    }
    const auto searchPath = VariableOf(conditions.environment, "PATH");
    return searchPath ? FindAlong(program, *searchPath, extensions, conditions.workingDirectory) : std::string();
}

CommandLineReader ReaderOf(std::string_view program) {
    // The system drops points and blanks at the end of a name, and then sees the extension before them.
    program = program.substr(0, program.find_last_not_of(". ") + 1);
    const std::string_view extension = ExtensionOf(program);
    // The system hands these to the command interpreter, which takes the command line apart once more.
    const bool isBatch = EqualsIgnoringCase(extension, ".bat") || EqualsIgnoringCase(extension, ".cmd");
    return isBatch ? CommandLineReader::Interpreter : CommandLineReader::Program;
}

// "NAME=VALUE" texts, each ended by a zero, and one more zero: sorted as the system keeps its own.
std::wstring WideBlock(const EnvironmentBlock& environment) {
    std::vector<std::wstring> entries;
    entries.reserve(environment.Entries().size());
    for (const std::string& entry : environment.Entries()) {
        entries.push_back(ToWide(entry));
    }
    // The system looks variables up in a block that it takes for sorted so.
    std::sort(entries.begin(), entries.end(), [](const std::wstring& left, const std::wstring& right) {
        return ::CompareStringOrdinal(left.c_str(), -1, right.c_str(), -1, TRUE) == CSTR_LESS_THAN;
    });
    std::wstring block;
    for (const std::wstring& entry : entries) {
        block += entry;
        block += L'\0';
    }
    // Even an empty block ends with two zeros.
    return block += entries.empty() ? std::wstring(2, L'\0') : std::wstring(1, L'\0');
}

// Every child's standard input.
void* EmptyInput() {
    static const Handle input = [] {
        SECURITY_ATTRIBUTES inherited{
            .nLength = sizeof inherited, .lpSecurityDescriptor = nullptr, .bInheritHandle = TRUE};
        Handle device(::CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, OPEN_EXISTING,
                                    0, nullptr));
        if (!device.IsOpen()) {
            throw LastFault();
        }
        return device;
    }();
    return input.Get();
}

// Makes a child inherit its three handles and nothing else that happens to be open.
// Without such a list a child would inherit the pipe ends of all others that are being started, and hold them open.
class InheritedHandles {
public:
    explicit InheritedHandles(const ChildOutputs& outputs)
        : handles_{EmptyInput(), outputs.standardOutput, outputs.standardError} {
        SIZE_T size = 0;
        // The first call only tells the size, and fails by that.
        ::InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        memory_.resize(size);
        list_ = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory_.data());
        if (::InitializeProcThreadAttributeList(list_, 1, 0, &size) == FALSE) {
            throw LastFault();
        }
        if (::UpdateProcThreadAttribute(list_, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles_.data(), sizeof handles_,
                                        nullptr, nullptr) == FALSE) {
            const DWORD error = ::GetLastError();
            ::DeleteProcThreadAttributeList(list_);
            throw SystemFault{error};
        }
    }

    ~InheritedHandles() { ::DeleteProcThreadAttributeList(list_); }

    InheritedHandles(const InheritedHandles&) = delete;
    InheritedHandles& operator=(const InheritedHandles&) = delete;

    [[nodiscard]] STARTUPINFOEXW StartupInformation() const {
        STARTUPINFOEXW information{};
        information.StartupInfo.cb = sizeof information;
        information.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
        information.StartupInfo.hStdInput = handles_[0];
        information.StartupInfo.hStdOutput = handles_[1];
        information.StartupInfo.hStdError = handles_[2];
        information.lpAttributeList = list_;
        return information;
    }

private:
    std::array<void*, 3> handles_; // the list points to them
    std::vector<std::byte> memory_;
    LPPROC_THREAD_ATTRIBUTE_LIST list_ = nullptr;
};

// A child shares our console, where Ctrl+C then passes it by; without one, it gets no window either.
DWORD CreationFlags(ProcessGroup group) {
    constexpr DWORD Always = CREATE_UNICODE_ENVIRONMENT | EXTENDED_STARTUPINFO_PRESENT | CREATE_SUSPENDED;
    // Asked once: a program keeps the console that it was started with.
    static const bool hasConsole = ::GetConsoleCP() != 0;
    if (!hasConsole) {
        return Always | CREATE_NO_WINDOW;
    }
    return group == ProcessGroup::Own ? Always | CREATE_NEW_PROCESS_GROUP : Always;
}

// `program` is the absolute path of what `command` names.
std::wstring CommandLineOf(const Arguments& command, const std::string& program) {
    std::string line;
    if (ReaderOf(program) == CommandLineReader::Program) {
        line = MakeCommandLine(command, CommandLineReader::Program);
    } else {
        Arguments words = command;
        // The interpreter runs what the line says, and would look for a mere name in other places.
        words.front() = program;
        line = MakeCommandLine(words, CommandLineReader::Interpreter);
        if (const std::string fault = FaultForInterpreter(line); !fault.empty()) {
            throw ProcessStartException(command.front(), "a batch file can't be given " + fault, Cause::Command);
        }
    }
    std::wstring wide = ToWide(line);
    if (wide.size() > LongestCommandLine) {
        throw ProcessStartException(command.front(), std::make_error_code(std::errc::argument_list_too_long).message(),
                                    Cause::Command);
    }
    return wide;
}

std::wstring WorkingDirectory(const std::string& directory) {
    return directory.empty() ? std::wstring() : ToWide(AbsolutePath(directory));
}

} // namespace

bool IsTooLongToStart(const Arguments& command) {
    // By the longer of both forms: which one is taken is not known before the program has been found.
    return ToWide(MakeCommandLine(command, CommandLineReader::Interpreter)).size() > LongestCommandLine;
}

StartedChild StartChild(const Arguments& command, const StartConditions& conditions, const ChildOutputs& outputs) {
    const std::string& name = command.front();
    const std::string program = ResolveProgram(name, conditions);
    if (program.empty()) {
        FailToStart(name, conditions.workingDirectory, ERROR_FILE_NOT_FOUND);
    }
    std::wstring line = CommandLineOf(command, program);
    const InheritedHandles inherited(outputs);
    STARTUPINFOEXW startup = inherited.StartupInformation();
    std::wstring variables = WideBlock(conditions.environment);
    const std::wstring directory = WorkingDirectory(conditions.workingDirectory);
    const std::wstring path = WidePath(program);
    PROCESS_INFORMATION started{};
    // Suspended at first, so that it starts nothing before it is in its job.
    const auto create = [&] {
        return ::CreateProcessW(path.c_str(), line.data(), nullptr, nullptr, TRUE, CreationFlags(conditions.group),
                                variables.data(), directory.empty() ? nullptr : directory.c_str(), &startup.StartupInfo,
                                &started) != FALSE;
    };
    for (int attempt = 1; !create(); ++attempt) {
        const DWORD error = ::GetLastError();
        if (error != ERROR_INTERNAL_ERROR || attempt == MostAttempts) {
            FailToStart(name, conditions.workingDirectory, error);
        }
    }
    StartedChild child{.process = Handle(started.hProcess), .job = {}};
    // Closed when this returns; the handle of the process is kept.
    const Handle thread(started.hThread);
    if (conditions.group == ProcessGroup::Own) {
        child.job = Job::Around(child.process.Get());
    }
    ::ResumeThread(thread.Get());
    return child;
}

} // namespace Orvanta
