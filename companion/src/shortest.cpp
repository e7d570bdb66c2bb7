// The shortest decimal of a binary floating-point number, after R. Giulietti: The Schubfach way to
// render doubles (2020).
//
//   c, q   the number is c * 2^q
//   k      the widest 10^k of whose multiples one must lie in the interval of the numbers that
//          read back to c * 2^q
//   s      its multiple next below the number

#include "shortest.h"

#include "powers_of_ten.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace ZVPlatform
{

namespace
{

__extension__ using Wide = unsigned __int128;

/// digits * 10^exponent
struct Decimal
{
    uint64_t digits;
    int exponent;
};

// powers_of_ten.py tests these for all numbers that come up.
int FloorLog10OfPowerOf2(int q)
{
    return (q * 315653) >> 20;
}

int FloorLog10OfThreeQuartersOfPowerOf2(int q)
{
    return (q * 315653 - 131237) >> 20;
}

int FloorLog2OfPowerOf10(int e)
{
    return (e * 1741647) >> 19;
}

/// c * 2^q / 10^k for several c: the integer part if there is no other, or else made odd. That
/// compares with even numbers as the exact quotient does.
class RoundedToOdd
{
public:
    RoundedToOdd(int q, int k)
        : power(powersOfTen[-k - leastPower]), shift(q + FloorLog2OfPowerOf10(-k) + 1)
    {
    }

    uint64_t operator()(uint64_t c) const
    {
        const Wide low = Wide{power[1]} * (c << shift);
        const Wide high = Wide{power[0]} * (c << shift) + static_cast<uint64_t>(low >> 64);
        // The fraction in 128 bits, of which the table's rounding has made up at most 60.
        const bool isInteger =
            static_cast<uint64_t>(high) == 0 && static_cast<uint64_t>(low) >> 60 == 0;
        return static_cast<uint64_t>(high >> 64) | (isInteger ? 0 : 1);
    }

private:
    const uint64_t* power;
    int shift;
};

/// `closeBelow`: the next smaller number is only half as far as the next larger one.
Decimal Shortest(uint64_t c, int q, bool closeBelow)
{
    const int k = closeBelow ? FloorLog10OfThreeQuartersOfPowerOf2(q) : FloorLog10OfPowerOf2(q);
    // In quarters of 10^k, where the interval's ends are integers times a power of two.
    const RoundedToOdd quarters(q, k);
    const uint64_t number = quarters(4 * c);
    // An even number gets what lies in the middle between two, so only then the ends belong to it.
    const uint64_t open = c % 2;
    const uint64_t lower = quarters(4 * c - (closeBelow ? 1 : 2)) + open;
    const uint64_t upper = quarters(4 * c + 2) - open;

    const uint64_t s = number / 4;
    // One multiple of 10^(k+1) at most lies in the interval; 0 never does.
    const uint64_t tens = s / 10 * 10;
    const bool tensBelow = lower <= 4 * tens;
    if (tensBelow || 4 * tens + 40 <= upper)
        return {s / 10 + (tensBelow ? 0 : 1), k + 1};
    const bool below = lower <= 4 * s;
    const bool above = 4 * s + 4 <= upper;
    if (below != above)
        return {s + (above ? 1 : 0), k};
    const uint64_t middle = 4 * s + 2;
    return {s + (number > middle || (number == middle && s % 2 == 1) ? 1 : 0), k};
}

constexpr uint64_t powers[] = {1,
                               10,
                               100,
                               1'000,
                               10'000,
                               100'000,
                               1'000'000,
                               10'000'000,
                               100'000'000,
                               1'000'000'000,
                               10'000'000'000,
                               100'000'000'000,
                               1'000'000'000'000,
                               10'000'000'000'000,
                               100'000'000'000'000,
                               1'000'000'000'000'000,
                               10'000'000'000'000'000,
                               100'000'000'000'000'000};
constexpr int mostDigits = 17;

/// The digits of a decimal: how many there are without zeros at the end, the power of ten of the
/// first, and the number that they are with zeros up to 17.
struct Digits
{
    explicit Digits(Decimal decimal)
    {
        if (decimal.digits % 10 == 0) {
            while (decimal.digits % powers[8] == 0)
                decimal = {decimal.digits / powers[8], decimal.exponent + 8};
            for (int zeros = 4; zeros > 0; zeros /= 2)
                if (decimal.digits % powers[zeros] == 0)
                    decimal = {decimal.digits / powers[zeros], decimal.exponent + zeros};
        }
        // log10(2) is a little more than 1233 / 4096.
        const int bits = 64 - __builtin_clzll(decimal.digits);
        count = (bits * 1233) >> 12;
        count += decimal.digits >= powers[count] ? 1 : 0;
        power = decimal.exponent + count - 1;
        number = decimal.digits * powers[mostDigits - count];
    }

    int count;
    int power;
    uint64_t number;
};

void WritePair(char* text, uint64_t value)
{
    static constexpr char pairs[] = "00010203040506070809101112131415161718192021222324"
                                    "25262728293031323334353637383940414243444546474849"
                                    "50515253545556575859606162636465666768697071727374"
                                    "75767778798081828384858687888990919293949596979899";
    std::memcpy(text, pairs + 2 * value, 2);
}

void Write8Digits(char* text, uint64_t value)
{
    const uint64_t high = value / 10000, low = value % 10000;
    WritePair(text, high / 100);
    WritePair(text + 2, high % 100);
    WritePair(text + 4, low / 100);
    WritePair(text + 6, low % 100);
}

void Write17Digits(char* text, uint64_t number)
{
    *text = static_cast<char>('0' + number / powers[16]);
    Write8Digits(text + 1, number / powers[8] % powers[8]);
    Write8Digits(text + 9, number % powers[8]);
}

char* WriteWithExponent(char* text, const Digits& digits)
{
    Write17Digits(text + 1, digits.number);
    text[0] = text[1];
    text[1] = '.';
    text += digits.count > 1 ? digits.count + 1 : 1;
    *text++ = 'e';
    *text++ = digits.power < 0 ? '-' : '+';
    auto size = static_cast<uint64_t>(std::abs(digits.power));
    if (size >= 100) {
        *text++ = static_cast<char>('0' + size / 100);
        size %= 100;
    }
    WritePair(text, size);
    return text + 2;
}

char* WritePlain(char* text, const Digits& digits)
{
    const int power = digits.power;
    if (power < 0) {
        std::copy_n("0.0000", 6, text);
        Write17Digits(text + 1 - power, digits.number);
        return text + 1 - power + digits.count;
    }
    if (power >= digits.count - 1) {
        Write17Digits(text, digits.number);
        return text + power + 1;
    }
    Write17Digits(text + 1, digits.number);
    for (int i = 0; i <= power; ++i)
        text[i] = text[i + 1];
    text[power + 1] = '.';
    return text + digits.count + 1;
}

/// An integer of at least 2^53 and below 10^22 to its last digit: no more characters than with
/// zeros behind the shortest digits, and nearer.
char* WriteLargeInteger(char* text, Wide number)
{
    char digits[2 * mostDigits];
    Write17Digits(digits, static_cast<uint64_t>(number / powers[mostDigits]));
    Write17Digits(digits + mostDigits, static_cast<uint64_t>(number % powers[mostDigits]));
    const char* first = digits;
    while (*first == '0')
        ++first;
    const auto count = static_cast<size_t>(digits + sizeof digits - first);
    std::memcpy(text, first, count);
    return text + count;
}

/// How many characters more the plain form has than one with an exponent of two digits. (Where the
/// exponent has three, it has many more.)
int ExcessOfPlain(const Digits& digits)
{
    const int power = digits.power;
    const int plain = power < 0                  ? digits.count + 1 - power
                      : power < digits.count - 1 ? digits.count + 1
                                                 : power + 1;
    return plain - (digits.count + (digits.count > 1 ? 1 : 0) + 4);
}

/// A number in IEEE 754's binary format with so many bits of fraction.
template <int fractionBits, int exponentBits> char* Write(char* text, uint64_t bits)
{
    constexpr uint64_t leadingBit = uint64_t{1} << fractionBits;
    constexpr int mostExponent = (1 << exponentBits) - 1;
    constexpr int leastQ = 2 - (1 << (exponentBits - 1)) - fractionBits;

    const uint64_t fraction = bits % leadingBit;
    const int exponent = static_cast<int>(bits >> fractionBits) & mostExponent;
    if (exponent == mostExponent && fraction != 0)
        return std::copy_n("nan", 3, text);
    if (bits >> (fractionBits + exponentBits) != 0)
        *text++ = '-';
    if (exponent == mostExponent)
        return std::copy_n("inf", 3, text);
    if (exponent == 0 && fraction == 0) {
        *text = '0';
        return text + 1;
    }

    const uint64_t c = exponent == 0 ? fraction : leadingBit + fraction;
    const int q = leastQ + (exponent == 0 ? 0 : exponent - 1);
    // No decimal of fewer digits reads back to an integer that is this small.
    const bool isSmallInteger = q <= 0 && q >= -fractionBits && c % (uint64_t{1} << -q) == 0;
    const Digits digits(isSmallInteger ? Decimal{c >> -q, 0}
                                       : Shortest(c, q, fraction == 0 && exponent > 1));
    if (ExcessOfPlain(digits) > 0)
        return WriteWithExponent(text, digits);
    if (q > 0)
        return WriteLargeInteger(text, Wide{c} << q);
    return WritePlain(text, digits);
}

}  // namespace

char* WriteShortest(char* text, double value)
{
    uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof value);
    return Write<52, 11>(text, bits);
}

char* WriteShortest(char* text, float value)
{
    uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof value);
    return Write<23, 8>(text, bits);
}

}  // namespace ZVPlatform
