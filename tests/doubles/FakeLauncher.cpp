// Stands in for a program that starts others on another machine: fake-launcher RECORD PROGRAM ARGUMENTS...
//
// It appends the words behind RECORD to that file, a line for each start, and then works as the program: same folder,
// variables, outputs and exit code. The program is in a process group of its own, out of reach of whoever ends this
// one's, and goes only when this one is asked to end.

#include "doubles/Script.h"
#include "platform/Console.h"
#include "platform/Environment.h"
#include "platform/Process.h"
#include "platform/ProgramArguments.h"
#include "platform/StopFlag.h"

#include <cstdlib>

int main(int argc, char** argv) {
    using namespace Orvanta;
    InstallInterruptHandler(ProcessStopFlag());
    const Arguments arguments = ProgramArguments(argc, argv);
    const std::string& record = arguments.at(1);
    const Arguments command(arguments.begin() + 2, arguments.end());
    AppendLine(record, CommandLineText(command));
    // As they are: a stream would end their lines in the way of the system once more.
    Process process(command, "", OwnEnvironmentBlock(), WriteResultToStandardOutput, WriteToStandardError);
    const WaitResult end = WaitUntilEndOrStop(process, ProcessStopFlag());
    return end.finished ? end.exitCode : EXIT_FAILURE;
}
