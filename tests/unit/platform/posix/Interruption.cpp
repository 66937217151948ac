#include "unit/platform/Interruption.h"

#include "platform/Console.h"

#include <csignal>
#include <cstdlib>

#include <unistd.h>

namespace Orvanta {

int BeInterrupted() {
    StopFlag stop;
    InstallInterruptHandler(stop);
    std::raise(SIGPIPE);
    if (stop.IsSet()) {
        return EXIT_FAILURE;
    }
    for (const int signal : {SIGINT, SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        std::raise(signal);
        if (!stop.IsSet()) {
            return EXIT_FAILURE;
        }
    }
    std::signal(SIGHUP, SIG_IGN); // as nohup does
    StopFlag other;
    InstallInterruptHandler(other);
    std::raise(SIGHUP);
    if (other.IsSet()) {
        return EXIT_FAILURE;
    }
    WriteMessage("stopped\n");
    return EXIT_SUCCESS;
}

unsigned long OwnProcessId() {
    return static_cast<unsigned long>(::getpid());
}

} // namespace Orvanta
