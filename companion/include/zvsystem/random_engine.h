#pragma once

#include "zvsystem/export.h"

namespace ZVMath
{

/// A source of uniform random numbers.
class ZVCOMPANION_EXPORT ZVRanNumEngine
{
public:
    virtual ~ZVRanNumEngine();

    /// The next random integer, uniform in [0, 2147483647]: 31 bits.
    virtual unsigned int getUnsigned() = 0;

    /// The next random number, uniform in [0, 1).
    virtual double getUnitDouble() = 0;

protected:
    ZVRanNumEngine() = default;
    ZVRanNumEngine(const ZVRanNumEngine&) = default;
    ZVRanNumEngine& operator=(const ZVRanNumEngine&) = default;
};

}  // namespace ZVMath
