#pragma once

#include "compilers/Keil5.h"

namespace Orvanta {

/// armcc with GNU's extensions switched on.
class Keil5Gnu : public Keil5 {
public:
    Keil5Gnu();
};

} // namespace Orvanta
