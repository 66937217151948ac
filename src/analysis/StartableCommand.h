#pragma once

#include "compilers/ParsedCommand.h"
#include "platform/Process.h"
#include "platform/ScopedFile.h"

#include <optional>
#include <string>

namespace Orvanta {

/// A compiler's command in a form that the system can start. When its words are more than a command line holds, which
/// only happens where the build itself handed them on in a response file, they stand in one again; it is there for as
/// long as the object.
class StartableCommand {
public:
    /// `words` is a command made from `parsed`; `responsePath` is where a response file may be put.
    /// \throws ZelmException when it can't be written
    StartableCommand(Arguments words, const ParsedCommand& parsed, const std::string& responsePath);

    /// The words to start; valid while the object lives, as the response file that they may name is.
    [[nodiscard]] const Arguments& Words() const noexcept { return words_; }

private:
    Arguments words_;
    std::optional<ScopedFile> responseFile_;
};

} // namespace Orvanta
