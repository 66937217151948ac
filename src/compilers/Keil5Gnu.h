#pragma once

#include "compilers/Keil5.h"

namespace Orvanta {

/// armcc with GNU's extensions switched on.
class Keil5Gnu : public Keil5 {
public:
    /// Reads commands as Keil5 does: only the name by which the core knows it differs.
    Keil5Gnu();
};

} // namespace Orvanta
