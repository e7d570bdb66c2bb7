#include "mult_prec_int_impl.h"

#include "multiversion.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

// Digits are added and subtracted in two ways.
//
// Few of them in turn, by words: the two neighbours in memory, low and high, are a word of 64 bits
// in which each digit has four zero bits above it. The difference of two words is then that of the
// digits: a borrow of the low one runs through the four bits to the high one, a borrow of the high
// one shows in the top bit, and the four bits are cleared at the end. In a sum the four bits are
// set first, so that a carry runs through them; if they are still set at the end, there was none.
//
// Many of them side by side: all digits of a vector are added, then the carries, each to the digit
// above its own. That may make a digit of 2^28 (or below 0), whose carry would have to run on:
// hardly ever, and then it goes on in turn for a while.
//
// A carry is what others call a borrow, too: the word stands for both.

namespace ZVMath
{

namespace
{

using Number = MultPrecNumber;
using Word = std::uint64_t;

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "a word's low digit comes first");
static_assert(sizeof(unsigned int) == 4, "two digits are a word");

constexpr unsigned int positive = 0;
constexpr unsigned int negative = 1;

constexpr unsigned int digitBits = 28;
constexpr unsigned int digitMask = (1u << digitBits) - 1;
constexpr Word wordMask = Word{digitMask} << 32 | digitMask;

/// A multiple of so many digits is allocated: so of digits that exist whole vectors do.
constexpr size_t step = 32;

enum class Operation { add, subtract };

ZVMATH_INLINE Word LoadWord(const unsigned int* p)
{
    Word word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

ZVMATH_INLINE void StoreWord(unsigned int* p, Word word)
{
    std::memcpy(p, &word, sizeof word);
}

/// Eight digits or four words side by side, and in memory at any address that a digit may have: to
/// be copied, since Clang forgets the alignment when a reference is made to it.
typedef unsigned int Digits __attribute__((vector_size(32)));
typedef Word Words __attribute__((vector_size(32)));
constexpr size_t lanes = 8;
struct __attribute__((packed, aligned(4), may_alias)) DigitsInMemory
{
    Digits v;
};

ZVMATH_INLINE DigitsInMemory& DigitsAt(unsigned int* p)
{
    return *reinterpret_cast<DigitsInMemory*>(p);
}

ZVMATH_INLINE const DigitsInMemory& DigitsAt(const unsigned int* p)
{
    return *reinterpret_cast<const DigitsInMemory*>(p);
}

/// Whether any digit has one of the bits in `mask`.
ZVMATH_INLINE bool HasAny(const Digits& digits, unsigned int mask)
{
    const Words words = (Words)digits;
    return ((words[0] | words[1] | words[2] | words[3]) & (Word{mask} << 32 | mask)) != 0;
}

/// out = a + b or a - b over n digits; returns the carry. `out` may be a or b.
template <Operation operation>
ZVMATH_INLINE Word CombineInTurn(unsigned int* out, const unsigned int* a, const unsigned int* b,
                                 size_t n, Word carry)
{
    constexpr bool adds = operation == Operation::add;
    // One less where a borrow came, or no carry: the four bits and a carry together are -wordMask.
    Word less = adds ? carry ^ 1 : carry;
    const size_t even = n / 2 * 2;
    for (size_t i = 0; i < even; i += 2) {
        const Word x = LoadWord(a + i);
        const Word y = LoadWord(b + i);
        const Word result = (adds ? x + y - wordMask : x - y) - less;
        less = result >> 63;
        StoreWord(out + i, result & wordMask);
    }
    if (even < n) {
        const unsigned int x = a[even];
        const unsigned int y = b[even];
        const unsigned int result =
            (adds ? x + y - digitMask : x - y) - static_cast<unsigned int>(less);
        less = result >> 31;
        out[even] = result & digitMask;
    }
    return adds ? less ^ 1 : less;
}

/// Takes a carry on through the digits [first, last), as far as it goes; returns what is left.
template <Operation operation>
ZVMATH_INLINE Word PassOn(unsigned int* digits, size_t first, size_t last, Word carry)
{
    if (carry == 0)
        return 0;
    constexpr bool adds = operation == Operation::add;
    constexpr Word full = adds ? wordMask : 0;
    for (; first + 2 <= last && LoadWord(digits + first) == full; first += 2)
        StoreWord(digits + first, full ^ wordMask);
    for (; first < last; ++first) {
        const unsigned int result = adds ? digits[first] + 1 : digits[first] - 1;
        digits[first] = result & digitMask;
        if (result <= digitMask)
            return 0;
    }
    return 1;
}

/// { before[7], own[0], ..., own[6] }
ZVMATH_INLINE void MoveUp(Digits& moved, const Digits& before, const Digits& own)
{
#ifdef __clang__
    moved = __builtin_shufflevector(before, own, 7, 8, 9, 10, 11, 12, 13, 14);
#else
    moved = __builtin_shuffle(before, own, Digits{7, 8, 9, 10, 11, 12, 13, 14});
#endif
}

/// x + y or x - y, and to each digit the carry of the one below it, to the first one the last of
/// `carries`, which become this vector's. `spilt` collects the results' bits: there must be none
/// above the digits'.
template <Operation operation>
ZVMATH_INLINE void CombineVector(Digits& result, Digits& carries, Digits& spilt, const Digits& x,
                                 const Digits& y)
{
    constexpr bool adds = operation == Operation::add;
    const Digits raw = adds ? x + y : x - y;
    const Digits own = raw >> (adds ? digitBits : 31);
    Digits moved;
    MoveUp(moved, carries, own);
    const Digits kept = raw & digitMask;
    result = adds ? kept + moved : kept - moved;
    spilt |= result;
    carries = own;
}

/// Four vectors; or nothing, and false, if a carry would have to run on.
template <Operation operation>
ZVMATH_INLINE bool CombineFour(unsigned int* out, const unsigned int* a, const unsigned int* b,
                               Digits& carries)
{
    Digits result[4];
    Digits last = carries;
    Digits spilt = {};
    for (size_t k = 0; k < 4; ++k) {
        const Digits x = DigitsAt(a + k * lanes).v;
        const Digits y = DigitsAt(b + k * lanes).v;
        CombineVector<operation>(result[k], last, spilt, x, y);
    }
    if (HasAny(spilt, ~digitMask))
        return false;
    for (size_t k = 0; k < 4; ++k)
        DigitsAt(out + k * lanes).v = result[k];
    carries = last;
    return true;
}

/// Two vectors, with only the first n digits of b (or all); else as CombineFour.
template <Operation operation>
ZVMATH_INLINE bool CombineTwo(unsigned int* out, const unsigned int* a, const unsigned int* b,
                              size_t n, Digits& carries)
{
    const int count = n < 2 * lanes ? static_cast<int>(n) : static_cast<int>(2 * lanes);
    const Bits8 isLow = Bits8{0, 1, 2, 3, 4, 5, 6, 7} < count;
    const Bits8 isHigh = Bits8{8, 9, 10, 11, 12, 13, 14, 15} < count;
    const Digits xLow = DigitsAt(a).v;
    const Digits xHigh = DigitsAt(a + lanes).v;
    const Digits yLow = DigitsAt(b).v & (Digits)isLow;
    const Digits yHigh = DigitsAt(b + lanes).v & (Digits)isHigh;
    Digits low;
    Digits high;
    Digits last = carries;
    Digits spilt = {};
    CombineVector<operation>(low, last, spilt, xLow, yLow);
    CombineVector<operation>(high, last, spilt, xHigh, yHigh);
    if (HasAny(spilt, ~digitMask))
        return false;
    DigitsAt(out).v = low;
    DigitsAt(out + lanes).v = high;
    carries = last;
    return true;
}

/// How far a sum or difference has come: the digits below `place` are done, this is their carry.
struct Progress
{
    size_t place;
    Word carry;
};

/// out = a + b or a - b over n digits from `from` on, which is a multiple of 16 places behind where
/// the arrays begin. Goes to the next multiple of 16 after n, with b's digits from n on for 0; or
/// ends earlier, where a carry has to run on.
template <Operation operation>
ZVMATH_INLINE Progress CombineSideBySide(unsigned int* out, const unsigned int* a,
                                         const unsigned int* b, size_t n, Progress from)
{
    Digits carries = {0, 0, 0, 0, 0, 0, 0, static_cast<unsigned int>(from.carry)};
    size_t i = from.place;
    while (i + 4 * lanes <= n && CombineFour<operation>(out + i, a + i, b + i, carries))
        i += 4 * lanes;
    while (i < n && CombineTwo<operation>(out + i, a + i, b + i, n - i, carries))
        i += 2 * lanes;
    return {i, carries[lanes - 1]};
}

ZVMATH_CLONES Progress AddSideBySide(unsigned int* out, const unsigned int* a,
                                     const unsigned int* b, size_t n, Progress from)
{
    return CombineSideBySide<Operation::add>(out, a, b, n, from);
}

ZVMATH_CLONES Progress SubtractSideBySide(unsigned int* out, const unsigned int* a,
                                          const unsigned int* b, size_t n, Progress from)
{
    return CombineSideBySide<Operation::subtract>(out, a, b, n, from);
}

/// Goes on to n, or to the next multiple of 16.
template <Operation operation>
Progress CombineOn(unsigned int* out, const unsigned int* a, const unsigned int* b, size_t n,
                   Progress from)
{
    // A multiple of 16. Where one carry runs on others will; there, trying again each time would
    // take longer than going in turn.
    constexpr size_t stretch = 256;
    while (from.place < n) {
        const size_t i = from.place;
        const size_t count = std::min(n - i, stretch);
        from = {i + count, CombineInTurn<operation>(out + i, a + i, b + i, count, from.carry)};
        if (from.place < n)
            from = operation == Operation::add ? AddSideBySide(out, a, b, n, from)
                                               : SubtractSideBySide(out, a, b, n, from);
    }
    return from;
}

/// Up to so many digits, to go in turn is faster.
constexpr size_t fewDigits = 20;

/// out = a + b or a - b over n digits, or to the next multiple of 16, see CombineSideBySide.
template <Operation operation>
Progress Combine(unsigned int* out, const unsigned int* a, const unsigned int* b, size_t n)
{
    if (n <= fewDigits)
        return {n, CombineInTurn<operation>(out, a, b, n, 0)};
    const Progress start = {0, 0};
    return CombineOn<operation>(out, a, b, n,
                                operation == Operation::add
                                    ? AddSideBySide(out, a, b, n, start)
                                    : SubtractSideBySide(out, a, b, n, start));
}

/// The digits in use that exist.
size_t CountDigits(const Number& number)
{
    return std::min<size_t>(number.used, number.digits.size());
}

/// Takes the zeros at the top of n digits out of use.
void Clamp(Number& number, size_t n)
{
    while (n > 0 && number.digits[n - 1] == 0)
        --n;
    number.used = static_cast<unsigned int>(n);
    if (n == 0)
        number.sign = positive;
}

/// What is left to be done after something was added to n digits, or subtracted from them.
template <Operation operation> ZVMATH_INLINE void Finish(Number& number, size_t n, Progress ended)
{
    constexpr bool adds = operation == Operation::add;
    unsigned int* const own = number.digits.data();
    if (ended.place <= n) {
        const Word carry = PassOn<operation>(own, ended.place, n, ended.carry);
        if (adds)
            own[n] = static_cast<unsigned int>(carry);
    } else if (!adds && own[n] != 0) {
        // Less than zero. The borrow has gone beyond the number, and is returned.
        PassOn<Operation::add>(own, n, ended.place, 1);
    }
    if (adds && own[n] != 0)
        number.used = static_cast<unsigned int>(n + 1);
    else if (n == 0 || own[n - 1] == 0)
        Clamp(number, n);
}

/// Accumulate, in turn from the beginning or from where a carry had to run on. (Not inlined: what
/// is seldom done would take registers from what always is.)
template <Operation operation>
__attribute__((noinline)) void AccumulateOn(Number& number, const Number& right, size_t n,
                                            size_t count, Progress from)
{
    unsigned int* const own = number.digits.data();
    const unsigned int* const others = right.digits.data();
    // What is not 0 above the number, where it should be, would mix with the carry: then vectors,
    // which reach beyond it, can't be used.
    if (n < number.digits.size() && own[n] != 0) {
        const Word carry =
            CombineInTurn<operation>(own + from.place, own + from.place, others + from.place,
                                     count - from.place, from.carry);
        from = {count, carry};
    } else {
        from = CombineOn<operation>(own, own, others, count, from);
    }
    Finish<operation>(number, n, from);
}

template <Operation operation>
ZVMATH_INLINE void AccumulateSideBySide(Number& number, const Number& right, size_t n, size_t count)
{
    unsigned int* const own = number.digits.data();
    if (n < number.digits.size() && own[n] != 0)
        return AccumulateOn<operation>(number, right, n, count, {0, 0});
    const Progress ended =
        CombineSideBySide<operation>(own, own, right.digits.data(), count, {0, 0});
    if (ended.place < count)
        return AccumulateOn<operation>(number, right, n, count, ended);
    Finish<operation>(number, n, ended);
}

ZVMATH_CLONES void AddManyTo(Number& number, const Number& right, size_t n, size_t count)
{
    AccumulateSideBySide<Operation::add>(number, right, n, count);
}

ZVMATH_CLONES void SubtractManyFrom(Number& number, const Number& right, size_t n, size_t count)
{
    AccumulateSideBySide<Operation::subtract>(number, right, n, count);
}

/// |number| += |right| or |number| -= |right|: n digits, and `count` of right's, not more. For a
/// sum there is room for another one. (Not inlined: of few digits it needs the registers for
/// itself.)
template <Operation operation>
__attribute__((noinline)) void Accumulate(Number& number, const Number& right, size_t n,
                                          size_t count)
{
    if (count > fewDigits)
        return operation == Operation::add ? AddManyTo(number, right, n, count)
                                           : SubtractManyFrom(number, right, n, count);
    unsigned int* const own = number.digits.data();
    const Word carry = CombineInTurn<operation>(own, own, right.digits.data(), count, 0);
    Finish<operation>(number, n, {count, carry});
}

/// How many digits are allocated for n that find fewer.
size_t Allotment(size_t n)
{
    const size_t allotment = n / step * step + 2 * step;
    if (allotment > std::numeric_limits<unsigned int>::max())
        throw std::bad_alloc();
    return allotment;
}

void Allocate(Number& number, size_t n)
{
    if (n > number.digits.size())
        number.digits.resize(Allotment(n));
}

void Increment(Number& number, const Number& right)
{
    const size_t n = CountDigits(number);
    const size_t count = CountDigits(right);
    if (n < count)
        return;
    Allocate(number, n + 1);
    Accumulate<Operation::add>(number, right, n, count);
}

void Decrement(Number& number, const Number& right)
{
    const size_t n = CountDigits(number);
    const size_t count = CountDigits(right);
    if (n >= count)
        Accumulate<Operation::subtract>(number, right, n, count);
}

/// Fewer digits than n by a multiple of 32: above, the digits are the same.
ZVMATH_CLONES size_t SkipEqual(const unsigned int* a, const unsigned int* b, size_t n)
{
    constexpr size_t group = 4 * lanes;
    for (; n >= group; n -= group) {
        Digits different = {};
        for (size_t i = n - group; i < n; i += lanes)
            different |= DigitsAt(a + i).v ^ DigitsAt(b + i).v;
        if (HasAny(different, ~0u))
            break;
    }
    return n;
}

/// -1, 0 or 1, by the first of n digits from the top that differs.
int CompareDigits(const unsigned int* a, const unsigned int* b, size_t n)
{
    if (n > fewDigits && a[n - 1] == b[n - 1])
        n = SkipEqual(a, b, n);
    if (n % 2 != 0) {
        --n;
        if (a[n] != b[n])
            return a[n] < b[n] ? -1 : 1;
    }
    for (; n > 0; n -= 2) {
        const Word x = LoadWord(a + n - 2);
        const Word y = LoadWord(b + n - 2);
        if (x != y)
            return x < y ? -1 : 1;
    }
    return 0;
}

int CompareMagnitudes(const Number& left, const Number& right)
{
    const size_t n = CountDigits(left);
    const size_t count = CountDigits(right);
    if (n != count)
        return n < count ? -1 : 1;
    return CompareDigits(left.digits.data(), right.digits.data(), n);
}

/// The number becomes what a copy of `right`, a larger one, would be after the number's being added
/// to it or subtracted from it; but for the sign, which is given.
template <Operation operation>
void CombineWithLarger(Number& number, const Number& right, unsigned int sign)
{
    constexpr bool adds = operation == Operation::add;
    const size_t count = CountDigits(number);
    const size_t n = CountDigits(right);
    const size_t copied = right.digits.size();
    const size_t allocated = adds && n >= copied ? Allotment(n + 1) : copied;
    number.digits.resize(allocated);
    unsigned int* const own = number.digits.data();
    const unsigned int* const others = right.digits.data();
    Progress ended = Combine<operation>(own, others, own, count);
    // A carry may have gone beyond n digits already.
    if (ended.place > n)
        ended = {n, own[n] != others[n] ? Word{1} : Word{0}};
    std::copy(others + ended.place, others + copied, own + ended.place);
    std::fill(own + copied, own + allocated, 0u);
    number.used = static_cast<unsigned int>(n);
    number.sign = sign;
    Finish<operation>(number, n, ended);
}

/// number += right, as if that had the sign `rightSign`.
__attribute__((noinline)) void AddAny(Number& number, const Number& right, unsigned int rightSign)
{
    const bool adds = number.sign == rightSign;
    if (CompareMagnitudes(number, right) >= 0)
        return adds ? Increment(number, right) : Decrement(number, right);
    return adds ? CombineWithLarger<Operation::add>(number, right, rightSign)
                : CombineWithLarger<Operation::subtract>(number, right, rightSign);
}

/// The same. For small numbers it takes most of the time to find out what is to be done: so the
/// usual case, a larger number with digits to spare, comes first.
ZVMATH_INLINE void Add(Number& number, const Number& right, unsigned int rightSign)
{
    const size_t n = number.used;
    const size_t count = right.used;
    const unsigned int* const own = number.digits.data();
    const unsigned int* const others = right.digits.data();
    if (n >= number.digits.size() || count > right.digits.size() || n < count ||
        (n == count && (n == 0 || own[n - 1] <= others[n - 1])))
        AddAny(number, right, rightSign);
    else if (number.sign == rightSign)
        Accumulate<Operation::add>(number, right, n, count);
    else
        Accumulate<Operation::subtract>(number, right, n, count);
}

/// out = in * 2^bits over n digits, bits < 28, without what the last one loses. `out` may be `in`
/// or overlap it from above.
ZVMATH_CLONES void ShiftUp(unsigned int* out, const unsigned int* in, size_t n, unsigned int bits)
{
    // From the top, where nothing is overwritten that is still to be read.
    const unsigned int rest = digitBits - bits;
    for (; n > lanes; n -= lanes) {
        const size_t i = n - lanes;
        const Digits high = DigitsAt(in + i).v << bits;
        const Digits low = DigitsAt(in + i - 1).v >> rest;
        DigitsAt(out + i).v = (high | low) & digitMask;
    }
    for (; n > 1; --n)
        out[n - 1] = (in[n - 1] << bits | in[n - 2] >> rest) & digitMask;
    if (n > 0)
        out[0] = in[0] << bits & digitMask;
}

/// Halves n digits.
ZVMATH_CLONES void Halve(unsigned int* digits, size_t n)
{
    size_t i = 0;
    for (; i + lanes < n; i += lanes) {
        const Digits low = DigitsAt(digits + i).v >> 1;
        const Digits high = DigitsAt(digits + i + 1).v << (digitBits - 1);
        DigitsAt(digits + i).v = (high | low) & digitMask;
    }
    for (; i + 1 < n; ++i)
        digits[i] = (digits[i + 1] << (digitBits - 1) | digits[i] >> 1) & digitMask;
    if (i < n)
        digits[i] >>= 1;
}

/// The number times 2^(28 places + bits), bits < 28, with room for `spare` digits more.
void Shift(Number& number, size_t places, unsigned int bits, size_t spare)
{
    const size_t n = CountDigits(number);
    Allocate(number, n + places + spare);
    unsigned int* const own = number.digits.data();
    number.used = static_cast<unsigned int>(n + places);
    if (n > 0) {
        const unsigned int carry = own[n - 1] >> (digitBits - bits);
        ShiftUp(own + places, own, n, bits);
        if (carry != 0)
            own[number.used++] = carry;
    }
    std::fill_n(own, places, 0u);
}

}  // namespace

ZVMultPrecIntImpl::ZVMultPrecIntImpl() : number{0, positive, std::vector<unsigned int>(step)}
{
}

ZVMultPrecIntImpl::ZVMultPrecIntImpl(int value) : ZVMultPrecIntImpl()
{
    // In unsigned arithmetic the most negative int has a magnitude too.
    const unsigned int bits = static_cast<unsigned int>(value);
    number.sign = value < 0 ? negative : positive;
    number.digits[0] = (value < 0 ? 0 - bits : bits) & digitMask;
    number.used = number.digits[0] != 0 ? 1 : 0;
}

ZVMultPrecIntImpl& ZVMultPrecIntImpl::operator=(const ZVMultPrecIntImpl& other)
{
    number.digits = other.number.digits;  // what may fail comes first
    number.used = other.number.used;
    number.sign = other.number.sign;
    return *this;
}

ZVMultPrecIntImpl& ZVMultPrecIntImpl::operator=(int value)
{
    ZVMultPrecIntImpl fresh(value);
    std::swap(number, fresh.number);
    return *this;
}

std::unique_ptr<ZVMultPrecIntImpl> ZVMultPrecIntImpl::CreateCopy() const
{
    return std::make_unique<ZVMultPrecIntImpl>(*this);
}

void ZVMultPrecIntImpl::SetNumAllocDigits(unsigned int count)
{
    Allocate(number, count);
}

void ZVMultPrecIntImpl::SetSignPositive()
{
    number.sign = positive;
}

void ZVMultPrecIntImpl::SetSignNegative()
{
    number.sign = negative;
}

void ZVMultPrecIntImpl::Clear()
{
    number = {0, positive, {}};
}

void ZVMultPrecIntImpl::Zero()
{
    number.used = 0;
    number.sign = positive;
    std::fill(number.digits.begin(), number.digits.end(), 0u);
}

void ZVMultPrecIntImpl::ClampDigits()
{
    Clamp(number, CountDigits(number));
}

int ZVMultPrecIntImpl::CompareMagnitude(const ZVMultPrecIntImpl& right) const
{
    return CompareMagnitudes(number, right.number);
}

int ZVMultPrecIntImpl::Compare(const ZVMultPrecIntImpl& right) const
{
    if (number.sign != right.number.sign)
        return number.sign == positive ? 1 : -1;
    const int order = CompareMagnitudes(number, right.number);
    return number.sign == positive ? order : -order;
}

ZVSystem::ZVIter<unsigned int> ZVMultPrecIntImpl::GetDigits()
{
    unsigned int* const first = number.digits.data();
    return ZVSystem::MakeAdaptorIter(first, first + number.digits.size());
}

ZVSystem::ZVIter<const unsigned int> ZVMultPrecIntImpl::GetDigits() const
{
    const unsigned int* const first = number.digits.data();
    return ZVSystem::MakeAdaptorIter(first, first + number.digits.size());
}

ZVMultPrecIntImpl ZVMultPrecIntImpl::operator-() const
{
    ZVMultPrecIntImpl negated(*this);
    negated.number.sign = number.sign == positive ? negative : positive;
    return negated;
}

void ZVMultPrecIntImpl::IncrementDigitsByRHS(const ZVMultPrecIntImpl& right)
{
    Increment(number, right.number);
}

void ZVMultPrecIntImpl::DecrementDigitsByRHS(const ZVMultPrecIntImpl& right)
{
    Decrement(number, right.number);
}

void ZVMultPrecIntImpl::IncrementByRHS(const ZVMultPrecIntImpl& right)
{
    Add(number, right.number, right.number.sign);
}

void ZVMultPrecIntImpl::DecrementByRHS(const ZVMultPrecIntImpl& right)
{
    Add(number, right.number, right.number.sign == positive ? negative : positive);
}

void ZVMultPrecIntImpl::MultiplyBy2()
{
    Shift(number, 0, 1, 1);
}

void ZVMultPrecIntImpl::DivideBy2()
{
    Halve(number.digits.data(), CountDigits(number));
    ClampDigits();
}

void ZVMultPrecIntImpl::MultiplyByDigitToPower(unsigned int k)
{
    if (k != 0)
        Shift(number, k, 0, 0);
}

void ZVMultPrecIntImpl::DivideByDigitToPower(unsigned int k)
{
    if (k == 0)
        return;
    const size_t n = CountDigits(number);
    if (n <= k)
        return Zero();
    unsigned int* const own = number.digits.data();
    std::copy(own + k, own + n, own);
    std::fill_n(own + (n - k), k, 0u);
    Clamp(number, n - k);
}

void ZVMultPrecIntImpl::MultiplyBy2ToPower(unsigned int bits)
{
    Shift(number, bits / digitBits, bits % digitBits, 1);
    ClampDigits();
}

}  // namespace ZVMath
