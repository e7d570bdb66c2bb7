#pragma once

#include "zvmath/mult_prec_int.h"
#include "zvsystem/iterators.h"

#include <memory>
#include <vector>

namespace ZVMath
{

/// What a `ZVMultPrecIntImpl` consists of, for the functions of its source.
struct MultPrecNumber
{
    unsigned int used;
    unsigned int sign;  // 0: positive or zero, 1: negative
    std::vector<unsigned int> digits;
};

/// The number in a `ZVMultPrecInt`: a sign, and a magnitude in which digit i counts 2^(28 i). The
/// first `GetNumUsedDigits()` digits are in use; the others that are allocated are 0.
///
/// Additions, subtractions, `ClampDigits`, `DivideBy2`, `DivideByDigitToPower` and
/// `MultiplyBy2ToPower` leave the last digit in use other than 0, and of zero no digit in use and a
/// positive sign. (By 0 digits nothing is divided.) A zero is of another form after conversion from
/// a negative int whose low 28 bits are 0 and after unary minus (negative), and after
/// `MultiplyByDigitToPower` (k digits in use). Such zeros count in comparisons: the negative one is
/// below the positive one, and k digits are more than fewer.
///
/// Who needs n digits, where fewer are allocated, makes them n / 32 * 32 + 64. They become fewer in
/// `Clear`, in assignments, and where a number of larger magnitude is added or subtracted: as many
/// as a copy of that number would have after the operation. std::bad_alloc, which the need of 2^32
/// digits is too, leaves all as it was.
///
/// Whoever writes digits through `GetDigits()` keeps them below 2^28. Whatever `SetNumUsedDigits`
/// says, only digits count that are in use and allocated, and no others are read or written.
class ZVMultPrecIntImpl
{
public:
    /// 0, with 32 digits allocated.
    ZVMultPrecIntImpl();
    /// |value| mod 2^28 with the sign of `value`, and 32 digits allocated.
    ZVMultPrecIntImpl(int value);
    /// There is no moving: it would leave digits in use where none are.
    ZVMultPrecIntImpl(const ZVMultPrecIntImpl& other) = default;
    ZVMultPrecIntImpl& operator=(const ZVMultPrecIntImpl& other);
    ZVMultPrecIntImpl& operator=(int value);
    ~ZVMultPrecIntImpl() = default;

    std::unique_ptr<ZVMultPrecIntImpl> CreateCopy() const;

    unsigned int GetNumUsedDigits() const { return number.used; }
    void SetNumUsedDigits(unsigned int count) { number.used = count; }
    unsigned int GetNumAllocDigits() const
    {
        return static_cast<unsigned int>(number.digits.size());
    }
    /// At least so many; never fewer than before.
    void SetNumAllocDigits(unsigned int count);
    void SetSignPositive();
    void SetSignNegative();

    /// 0, with no digits allocated.
    void Clear();
    /// 0, in all allocated digits.
    void Zero();
    /// Takes zeros at the top out of use; a number without digits becomes positive.
    void ClampDigits();

    /// -1, 0 or 1 by the absolute values: by the number of digits in use, then by the first digit
    /// from the top that differs.
    int CompareMagnitude(const ZVMultPrecIntImpl& right) const;
    /// -1, 0 or 1 by the values: by the signs, of zeros too, then by the absolute values.
    int Compare(const ZVMultPrecIntImpl& right) const;

    /// Over all allocated digits, the least significant first; good until their number changes.
    ZVSystem::ZVIter<unsigned int> GetDigits();
    ZVSystem::ZVIter<const unsigned int> GetDigits() const;

    /// A copy with the other sign, of zero too.
    ZVMultPrecIntImpl operator-() const;

    /// The magnitude plus or minus that of `right`, which may be this number, and which for a
    /// difference is not the larger one. Nothing if `right` has more digits in use.
    void IncrementDigitsByRHS(const ZVMultPrecIntImpl& right);
    void DecrementDigitsByRHS(const ZVMultPrecIntImpl& right);
    /// Plus or minus `right`, which may be this number.
    void IncrementByRHS(const ZVMultPrecIntImpl& right);
    void DecrementByRHS(const ZVMultPrecIntImpl& right);

    /// The magnitude times 2, or half of it, rounded down.
    void MultiplyBy2();
    void DivideBy2();
    /// The magnitude times 2^(28 k), or divided by it, rounded down.
    void MultiplyByDigitToPower(unsigned int k);
    void DivideByDigitToPower(unsigned int k);
    /// The magnitude times 2^bits.
    void MultiplyBy2ToPower(unsigned int bits);

private:
    MultPrecNumber number;
};

ZVMultPrecInt operator+(const ZVMultPrecInt& left, const ZVMultPrecInt& right);
ZVMultPrecInt operator-(const ZVMultPrecInt& left, const ZVMultPrecInt& right);
/// A copy with the sign positive.
ZVMultPrecInt MpAbsVal(const ZVMultPrecInt& number);
/// By `Compare`.
bool operator<(const ZVMultPrecInt& left, const ZVMultPrecInt& right);
bool operator<=(const ZVMultPrecInt& left, const ZVMultPrecInt& right);
bool operator==(const ZVMultPrecInt& left, const ZVMultPrecInt& right);
bool operator>=(const ZVMultPrecInt& left, const ZVMultPrecInt& right);
bool operator>(const ZVMultPrecInt& left, const ZVMultPrecInt& right);

}  // namespace ZVMath
