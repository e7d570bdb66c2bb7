#include "bench.h"
#include "mult_prec_int_impl.h"

#ifdef ZVMATH_HAVE_GMP
#include <gmp.h>
#endif

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>

namespace
{

constexpr unsigned int digitBits = 28;
constexpr unsigned int times = 100;
constexpr unsigned int shiftBits = 5;
constexpr unsigned int shifts = 112;
constexpr unsigned int shiftedDigits = shifts * shiftBits / digitBits;  // exactly

using Digits = std::vector<unsigned int>;

/// What is timed of ours and of a peer's, from digits of 28 bits and with room for more.
class Ours
{
public:
    explicit Ours(const Digits& digits)
    {
        ZVMath::ZVMultPrecIntImpl& impl = *number.GetImpl();
        const unsigned int count = static_cast<unsigned int>(digits.size());
        impl.SetNumAllocDigits(count + 2 * shiftedDigits);
        impl.SetNumUsedDigits(count);
        auto place = impl.GetDigits();
        for (const unsigned int digit : digits) {
            *place = digit;
            ++place;
        }
    }

    void operator+=(const Ours& right) { number += right.number; }
    void operator-=(const Ours& right) { number -= right.number; }
    bool operator==(const Ours& right) const
    {
        return number.GetImpl()->Compare(*right.number.GetImpl()) == 0;
    }
    void ShiftUp() { number.GetImpl()->MultiplyBy2ToPower(shiftBits); }
    void ShiftBack() { number.GetImpl()->DivideByDigitToPower(shiftedDigits); }

private:
    ZVMath::ZVMultPrecInt number;
};

#ifdef ZVMATH_HAVE_GMP
class Gmp
{
public:
    explicit Gmp(const Digits& digits)
    {
        mpz_init2(number, digitBits * (digits.size() + 2 * shiftedDigits));
        mpz_import(number, digits.size(), -1, sizeof digits[0], 0, 32 - digitBits, digits.data());
    }
    Gmp(const Gmp&) = delete;
    Gmp& operator=(const Gmp&) = delete;
    ~Gmp() { mpz_clear(number); }

    void operator+=(const Gmp& right) { mpz_add(number, number, right.number); }
    void operator-=(const Gmp& right) { mpz_sub(number, number, right.number); }
    bool operator==(const Gmp& right) const { return mpz_cmp(number, right.number) == 0; }
    void ShiftUp() { mpz_mul_2exp(number, number, shiftBits); }
    void ShiftBack() { mpz_tdiv_q_2exp(number, number, shifts * shiftBits); }

private:
    mpz_t number;
};
#endif

/// a + factor * b.
Digits PlusTimes(Digits a, const Digits& b, unsigned int factor)
{
    a.resize(std::max(a.size(), b.size()) + 1);
    uint64_t carry = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        carry += a[i] + uint64_t{factor} * (i < b.size() ? b[i] : 0);
        a[i] = static_cast<unsigned int>(carry % (1u << digitBits));
        carry >>= digitBits;
    }
    while (!a.empty() && a.back() == 0)
        a.pop_back();
    return a;
}

Digits WithZeros(Digits digits, size_t count)
{
    digits.insert(digits.begin(), count, 0);
    return digits;
}

/// A number, which each run brings back to its start, and what is added to it and subtracted.
template <class Number> struct Numbers
{
    Numbers(const Digits& first, const Digits& second)
        : number(first), start(first), term(second), total(PlusTimes({}, second, times)),
          sum(PlusTimes(first, second, times)), shifted(WithZeros(first, shiftedDigits))
    {
    }

    /// Whether it is back, and all operations do what they should.
    bool AreRight()
    {
        bool areRight = number == start;
        for (unsigned int i = 0; i < times; ++i)
            number += term;
        areRight = areRight && number == sum;
        number -= total;
        areRight = areRight && number == start;
        for (unsigned int i = 0; i < shifts; ++i)
            number.ShiftUp();
        areRight = areRight && number == shifted && !(number == start);
        number.ShiftBack();
        return areRight && number == start;
    }

    Number number, start, term, total, sum, shifted;
};

template <class Number> bool AddTimes(Numbers<Number>& numbers)
{
    for (unsigned int i = 0; i < times; ++i)
        numbers.number += numbers.term;
    numbers.number -= numbers.total;
    return true;
}

template <class Number> bool SubtractTimes(Numbers<Number>& numbers)
{
    for (unsigned int i = 0; i < times; ++i)
        numbers.number -= numbers.term;
    numbers.number += numbers.total;
    return true;
}

template <class Number> bool AddAndSubtractTimes(Numbers<Number>& numbers)
{
    for (unsigned int i = 0; i < times / 2; ++i) {
        numbers.number += numbers.term;
        numbers.number -= numbers.term;
    }
    return true;
}

template <class Number> bool ShiftTimes(Numbers<Number>& numbers)
{
    for (unsigned int i = 0; i < shifts; ++i)
        numbers.number.ShiftUp();
    numbers.number.ShiftBack();
    return true;
}

template <class Number> bool AreEqual(Numbers<Number>& numbers)
{
    return numbers.number == numbers.start;
}

/// The other digits at random.
Digits WithLast(unsigned int count, unsigned int last)
{
    std::mt19937 random(last);
    Digits digits;
    while (digits.size() + 1 < count)
        digits.push_back(static_cast<unsigned int>(random() >> (32 - digitBits)));
    digits.push_back(last);
    return digits;
}

template <class Number>
void AddAll(const std::string& workload, const char* column, const Digits& first,
            const Digits& second, bool (*compute)(Numbers<Number>&))
{
    const auto numbers = std::make_shared<Numbers<Number>>(first, second);
    AddBenchmark(
        workload, column, [numbers]() -> Numbers<Number>& { return *numbers; }, compute,
        [](Numbers<Number>& n, bool result) { return result && n.AreRight(); });
}

template <class Number> void AddColumn(const char* column)
{
    // Digits are so large that neither a hundred sums nor as many differences change their count.
    const auto add = [=](const char* what, unsigned int count, bool (*compute)(Numbers<Number>&)) {
        AddAll(what + std::to_string(count) + " digits", column, WithLast(count, 1u << 27),
               WithLast(count, 1u << 20), compute);
    };
    for (const unsigned int count : {10u, 100u, 1000u, 100'000u})
        add("100 sums, ", count, AddTimes<Number>);
    for (const unsigned int count : {10u, 100u, 1000u, 100'000u})
        add("100 differences, ", count, SubtractTimes<Number>);
    for (const unsigned int count : {10u, 100u, 1000u, 100'000u})
        add("112 shifts by 5 bits, ", count, ShiftTimes<Number>);
    for (const unsigned int count : {10u, 100u, 1000u, 100'000u})
        add("equality, ", count, AreEqual<Number>);
    // The carry of the first digit runs on to the last.
    Digits one(1000, 0);
    one.front() = one.back() = 1;
    AddAll("100 sums and differences with long carries, 1000 digits", column,
           Digits(1000, (1u << digitBits) - 1), one, AddAndSubtractTimes<Number>);
}

}  // namespace

void AddMultPrecIntBenchmarks()
{
    AddColumn<Ours>("zvmath");
#ifdef ZVMATH_HAVE_GMP
    AddColumn<Gmp>("GMP");
    peerVersions.push_back(std::string("GMP ") + gmp_version);
#endif
}
