#include "app/ReportCommands.h"

#include "platform/Exceptions.h"

#include <args.hxx>

#include <string>

namespace Orvanta {

namespace {

[[noreturn]] void RefuseCommand(args::Subparser& parser) {
    // Takes whatever the command's options will be, so that the answer is about the command.
    args::PositionalList<std::string> rest(parser, "arguments", "", args::Options::Hidden);
    parser.Parse();
    throw ZelmException("The command " + parser.GetCommand().Name() + " is not available in this version");
}

} // namespace

void SuppressCommand(args::Subparser& parser) {
    RefuseCommand(parser);
}

void FilterSuppressedCommand(args::Subparser& parser) {
    RefuseCommand(parser);
}

} // namespace Orvanta
