#pragma once

#include "platform/Fingerprint.h"

#include <memory>
#include <string>
#include <vector>

namespace Orvanta {

/// A unit as its history knows it.
struct UnitIdentity {
    std::string id;        ///< folder and source; several units of a run may have the same
    Fingerprint arguments; ///< of its arguments, which tell units of one source apart
    Fingerprint inputs;    ///< of all that decides its result beside the files that it is made of
    /// Absolute paths of the programs that make its result: another content of one is a change, as of a header. May be
    /// null, for none; shared by many units.
    std::shared_ptr<const std::vector<std::string>> programs = {};
};

} // namespace Orvanta
