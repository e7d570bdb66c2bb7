#pragma once

#include "zvmath/export.h"

#include <memory>

namespace ZVMath
{

class ZVMultPrecIntImpl;

/// A signed integer of unbounded size, added to and subtracted from in place: a value, copies are
/// independent. Moving is copying, so nothing is ever empty.
///
/// Stored are a sign and the magnitude, in digits of 28 bits, one in each 32-bit word. 32 digits
/// are allocated at first, and at least 33 more than needed whenever there are too few.
///
/// A CONVERSION FROM int KEEPS 28 BITS, and says nothing: the number becomes |value| mod 2^28 with
/// the sign of `value`. From -268435455 to 268435455 that is the int itself; 268435456 becomes 0,
/// 268435461 becomes 5. Put larger numbers together of parts that fit, of the same sign:
///
///     ZVMultPrecInt number = high;  // becomes high * 2^28 + low
///     for (int bit = 0; bit < 28; ++bit)
///         number += number;
///     number += low;
///
/// When memory runs out (`std::bad_alloc`), every number keeps its value; the same is thrown for a
/// number of 2^32 digits. Nothing else is thrown.
class ZVMATH_EXPORT ZVMultPrecInt
{
public:
    /// 0.
    ZVMultPrecInt();
    /// |value| mod 2^28 with the sign of `value`, see above.
    ZVMultPrecInt(int value);
    ZVMultPrecInt(const ZVMultPrecInt& other);
    ZVMultPrecInt& operator=(const ZVMultPrecInt& other);
    /// |value| mod 2^28 with the sign of `value`, see above, in the memory of a new number.
    ZVMultPrecInt& operator=(int value);
    ~ZVMultPrecInt();

    /// The digits, and what compares, shifts and reads them: for the library's own sources. Good
    /// until the number is assigned to.
    ZVMultPrecIntImpl* GetImpl() const { return impl.get(); }

    /// Exact; `right` may be the number itself.
    ///
    /// Cost: a pass over the digits of the one that has fewer, and over those of the other that the
    /// carry reaches. A `right` of larger magnitude is copied on the way: the number then takes as
    /// much memory as a copy of that.
    ZVMultPrecInt& operator+=(const ZVMultPrecInt& right);
    ZVMultPrecInt& operator-=(const ZVMultPrecInt& right);

private:
    std::unique_ptr<ZVMultPrecIntImpl> impl;
};

}  // namespace ZVMath
