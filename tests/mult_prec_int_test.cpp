#include "zvmath/mult_prec_int.h"

#include "allocations.h"
#include "check.h"
#include "mult_prec_int_impl.h"
#include "references/mult_prec_int_reference.h"

#include <algorithm>
#include <climits>
#include <functional>
#include <new>
#include <tuple>
#include <type_traits>

using namespace ZVMath;
using namespace ZVTest;

namespace
{

using Impl = ZVMultPrecIntImpl;
using Digits = std::vector<unsigned int>;

constexpr unsigned int most = 268435455;

Digits AllDigits(const Impl& number)
{
    const auto digits = number.GetDigits();
    return Digits(digits.begin(), digits.end());
}

bool IsNegative(const Impl& number)
{
    return number.Compare(Impl()) < 0;  // a zero may be, too
}

/// Digits in use and allocated, sign, and the digits to the last that is not 0 of all allocated.
using Contents = std::tuple<unsigned int, unsigned int, bool, Digits>;

Contents Read(const Impl& number)
{
    Digits digits = AllDigits(number);
    EXPECT_EQ(digits.size(), number.GetNumAllocDigits());
    while (!digits.empty() && digits.back() == 0)
        digits.pop_back();
    return {number.GetNumUsedDigits(), number.GetNumAllocDigits(), IsNegative(number), digits};
}

/// Writes the digits, the least significant first, and takes the first `used` in use.
void Write(Impl& number, const Digits& digits, size_t used)
{
    number.Zero();
    number.SetNumAllocDigits(static_cast<unsigned int>(digits.size()));
    auto place = number.GetDigits();
    for (const unsigned int digit : digits) {
        *place = digit;
        ++place;
    }
    number.SetNumUsedDigits(static_cast<unsigned int>(used));
}

TEST(MultPrecIntImpl, KeepsTheLowBitsOfAnInt)
{
    const struct
    {
        int value;
        Contents expected;
    } cases[] = {
        {0, {0, 32, false, {}}},           {-268435455, {1, 32, true, {most}}},
        {268435456, {0, 32, false, {}}},   {-268435456, {0, 32, true, {}}},
        {INT_MAX, {1, 32, false, {most}}}, {INT_MIN, {0, 32, true, {}}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Read(c.value), c.expected) << c.value;
        Impl assigned;
        assigned.SetNumAllocDigits(33);
        EXPECT_EQ(Read(assigned = c.value), c.expected) << c.value;
    }
}

/// SplitMix64.
struct Words
{
    uint64_t state;

    unsigned int Below(uint64_t n)
    {
        state += 0x9E3779B97F4A7C15;
        uint64_t z = state;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
        return static_cast<unsigned int>((z ^ (z >> 31)) % n);
    }
};

/// Runs of zeros, of digits with all bits set, and of any digits: carries and borrows run on.
Digits RandomDigits(Words& random, size_t n)
{
    Digits digits;
    while (digits.size() < n) {
        const unsigned int kind = random.Below(4);
        const size_t run = 1 + random.Below(40);
        for (const size_t end = std::min(digits.size() + run, n); digits.size() < end;) {
            const unsigned int digit = random.Below(most + 1);
            digits.push_back(kind == 0 ? 0 : kind == 1 ? most : digit);
        }
    }
    return digits;
}

void Refill(Words& random, Impl& number)
{
    const bool isNegative = IsNegative(number);
    const size_t n = random.Below(600);
    Write(number, RandomDigits(random, n), n);
    if (isNegative)
        number.SetSignNegative();
    number.ClampDigits();
}

/// As in the script that made the digests.
const std::function<void(Words&, Impl&, const Impl&)> changes[] = {
    [](Words&, Impl& x, const Impl& y) { x.IncrementByRHS(y); },
    [](Words&, Impl& x, const Impl& y) { x.DecrementByRHS(y); },
    [](Words&, Impl& x, const Impl& y) { x.IncrementDigitsByRHS(y); },
    [](Words&, Impl& x, const Impl& y) { x.DecrementDigitsByRHS(y); },
    [](Words&, Impl& x, const Impl&) { x.MultiplyBy2(); },
    [](Words&, Impl& x, const Impl&) { x.DivideBy2(); },
    [](Words& random, Impl& x, const Impl&) { x.MultiplyByDigitToPower(random.Below(40)); },
    [](Words& random, Impl& x, const Impl&) { x.DivideByDigitToPower(random.Below(40)); },
    [](Words& random, Impl& x, const Impl&) { x.MultiplyBy2ToPower(random.Below(1200)); },
    [](Words&, Impl& x, const Impl& y) { x = y; },
    [](Words&, Impl& x, const Impl& y) { x = -y; },
    [](Words& random, Impl& x, const Impl&) {
        x = static_cast<int>(random.Below(uint64_t{1} << 32));
    },
    [](Words& random, Impl& x, const Impl&) { x = static_cast<int>(random.Below(5)) - 2; },
    [](Words& random, Impl& x, const Impl&) { Refill(random, x); },
    [](Words& random, Impl& x, const Impl&) { x.SetNumAllocDigits(random.Below(300)); },
    [](Words&, Impl& x, const Impl&) { x.Clear(); },
    [](Words&, Impl& x, const Impl&) { x.Zero(); },
    [](Words&, Impl& x, const Impl&) { x.ClampDigits(); },
    [](Words&, Impl& x, const Impl&) { x.SetSignPositive(); },
    [](Words&, Impl& x, const Impl&) { x.SetSignNegative(); },
};

TEST(MultPrecIntImpl, AgreesWithPythonsIntegers)
{
    for (const MultPrecIntReference& reference : multPrecIntReferences) {
        Words random = {reference.seed};
        Impl numbers[5];
        uint64_t hash = 0;
        const auto add = [&](uint64_t value) { hash = (hash ^ value) * 0x100000001B3; };
        for (size_t step = 1; step <= 100 * reference.digests.size(); ++step) {
            Impl& x = numbers[random.Below(5)];
            const Impl& y = numbers[random.Below(5)];
            const unsigned int kind = random.Below(26);  // the first two are those of most
            if (x.GetNumUsedDigits() > 700)
                x.DivideByDigitToPower(1 + random.Below(x.GetNumUsedDigits()));
            else
                changes[kind < 8 ? kind / 4 : kind - 6](random, x, y);
            const auto [used, allocated, isNegative, digits] = Read(x);
            add(used), add(allocated), add(isNegative);
            add(x.Compare(y) < 0 ? 0 : x.Compare(y) == 0 ? 1 : 2);
            for (const unsigned int digit : digits)
                add(digit);
            if (step % 100 == 0) {
                ASSERT_EQ(hash, reference.digests[step / 100 - 1])
                    << "seed " << reference.seed << ", in the 100 steps to " << step;
            }
        }
    }
}

using Operation = std::function<void(Impl&, const Impl&)>;

/// Whatever may need memory, for a number of 32 digits that has none to spare, and a longer one.
const Operation growing[] = {
    [](Impl& x, const Impl&) { x.MultiplyBy2(); },
    [](Impl& x, const Impl&) { x.MultiplyByDigitToPower(1); },
    [](Impl& x, const Impl&) { x.MultiplyBy2ToPower(1); },
    [](Impl& x, const Impl&) { x.SetNumAllocDigits(33); },
    [](Impl& x, const Impl&) { x.IncrementByRHS(x); },
    [](Impl& x, const Impl&) { x.IncrementDigitsByRHS(1); },
    [](Impl& x, const Impl& longer) { x.IncrementByRHS(longer); },
    [](Impl& x, const Impl& longer) { x.DecrementByRHS(longer); },
    [](Impl& x, const Impl& longer) { x = longer; },
    [](Impl& x, const Impl&) { x = 5; },
    [](Impl& x, const Impl&) { x = *x.CreateCopy(); },
    [](Impl& x, const Impl&) { x = -x; },
};

TEST(MultPrecIntImpl, OnlyDigitsInUseThatAreAllocatedCount)
{
    std::vector<Operation> operations(std::begin(growing), std::end(growing));
    operations.push_back([](Impl& x, const Impl&) { x.ClampDigits(); });
    operations.push_back([](Impl& x, const Impl&) { x.DivideBy2(); });
    operations.push_back([](Impl& x, const Impl&) { x.DivideByDigitToPower(7); });
    operations.push_back([](Impl& x, const Impl&) { x.DecrementByRHS(x); });
    operations.push_back([](Impl& x, const Impl&) { x.DecrementDigitsByRHS(1); });
    Impl full, longer;
    Write(full, Digits(32, most), 32);
    longer.SetNumAllocDigits(33);
    Write(longer, Digits(96, most), 96);
    for (size_t i = 0; i < operations.size(); ++i) {
        Impl expected(full), excessive(full), excessiveLonger(longer);
        excessive.SetNumUsedDigits(4294967295);
        excessiveLonger.SetNumUsedDigits(4294967295);
        EXPECT_EQ(excessive.Compare(full), 0);
        EXPECT_EQ(excessive.Compare(excessiveLonger), -1);
        operations[i](expected, longer);
        operations[i](excessive, excessiveLonger);
        EXPECT_EQ(AllDigits(excessive), AllDigits(expected)) << i;
    }

    Impl expected(longer), sum(longer), right(full);
    expected.IncrementByRHS(right);
    right.SetNumUsedDigits(50);
    sum.IncrementByRHS(right);
    EXPECT_EQ(Read(sum), Read(expected));
    Impl one(1), replaced;
    replaced.SetNumAllocDigits(33);
    Write(replaced, Digits(96, 1), 1);
    one.IncrementByRHS(full);
    replaced.IncrementByRHS(full);
    EXPECT_EQ(Read(replaced), Read(one));

    // Digits above those in use stay, but for the first, which takes the carry of a sum.
    Words random = {1};
    for (unsigned int trial = 0; trial < 2000; ++trial) {
        const unsigned int adds = trial % 2, n = random.Below(trial % 10 < 8 ? 90 : 600);
        const unsigned int count = n - random.Below(n + 1) / 2;
        Digits digits = RandomDigits(random, n + 33);
        Impl clean, stale;
        Write(stale, digits, n);
        Write(right, RandomDigits(random, n + 33), count);
        Write(clean, Digits(digits.begin(), digits.begin() + n), n);
        for (Impl* number : {&clean, &stale})
            adds ? number->IncrementDigitsByRHS(right) : number->DecrementDigitsByRHS(right);
        const Digits result = AllDigits(clean);
        EXPECT_EQ(std::count(result.begin() + n + adds, result.end(), 0),
                  result.end() - (result.begin() + n + adds));
        std::copy_n(result.begin(), n + adds, digits.begin());
        digits.resize(stale.GetNumAllocDigits());
        EXPECT_EQ(AllDigits(stale), digits) << trial;
        EXPECT_EQ(stale.GetNumUsedDigits(), clean.GetNumUsedDigits()) << trial;
    }
}

TEST(MultPrecIntImpl, ASingleBitDecides)
{
    Words random = {1};
    for (const unsigned int n : {1u, 20u, 21u, 100u})
        for (unsigned int place = 0; place < n; ++place)
            for (const unsigned int bit : {1u, 1u << 27}) {
                Digits digits = RandomDigits(random, n);
                digits.back() = 1;
                Impl one, other;
                Write(one, digits, n);
                const bool wasSet = (digits[place] & bit) != 0;
                digits[place] ^= bit;
                Write(other, digits, n);
                EXPECT_EQ(one.CompareMagnitude(one), 0);
                EXPECT_EQ(one.CompareMagnitude(other), wasSet ? 1 : -1) << place << " of " << n;
                EXPECT_EQ(other.Compare(one), wasSet ? -1 : 1) << place << " of " << n;
            }
}

TEST(MultPrecIntImpl, WithoutMemoryKeepsItsValue)
{
    Impl full, longer;
    Write(full, Digits(32, most), 32);
    full.SetSignNegative();
    Write(longer, Digits(160, most), 160);
    for (const Operation& operation : growing)
        for (int successes = 0, isFailing = 1; isFailing; ++successes) {
            Impl number(full);
            ASSERT_EQ(number.GetNumAllocDigits(), 32u);
            try {
                const FailingAllocation failing(successes);
                operation(number, longer);
                isFailing = 0;
            } catch (const std::bad_alloc&) {
            }
            EXPECT_TRUE(isFailing ? Read(number) == Read(full) : successes > 0);
        }
    // More digits than can be counted are refused at once.
    Impl number(5);
    EXPECT_THROW(number.SetNumAllocDigits(4294967295), std::bad_alloc);
    EXPECT_THROW(number.SetNumAllocDigits(4294967232), std::bad_alloc);
    EXPECT_THROW(number.MultiplyByDigitToPower(4294967295), std::bad_alloc);
    EXPECT_EQ(Read(number), Read(5));
}

TEST(MultPrecInt, IsAValue)
{
    ZVMultPrecInt x(3), y = -4, sum = x + y, difference = x - y;
    EXPECT_TRUE(sum == -1 && difference == 7 && x == 3 && y == -4);
    EXPECT_TRUE(MpAbsVal(y) == 4 && y == -4 && ZVMultPrecInt() == 0);
    EXPECT_EQ(&((x += y) -= 5), &x);
    EXPECT_TRUE(x == -6);
    ZVMultPrecInt copy(x);
    ZVMultPrecIntImpl* const impl = x.GetImpl();
    x = *&x;
    EXPECT_EQ(x.GetImpl(), impl);
    x += x;
    EXPECT_TRUE(x == -12 && copy == -6);
    x -= *&x;
    EXPECT_EQ(Read(*x.GetImpl()), Read(0));
    y = copy;
    copy = 268435461;
    EXPECT_TRUE(y == -6 && copy == 5);
    EXPECT_FALSE(std::is_nothrow_move_constructible_v<ZVMultPrecInt>);  // it copies
    EXPECT_FALSE(std::is_nothrow_move_constructible_v<Impl>);

    ZVMultPrecInt big(5);
    for (int bit = 0; bit < 30; ++bit)
        big += big;
    const ZVMultPrecInt ascending[] = {0 - big, -2, -1, -268435456, 0, 1, most, big, big + big};
    for (const ZVMultPrecInt& a : ascending)
        for (const ZVMultPrecInt& b : ascending) {
            EXPECT_EQ(a < b, &a < &b);
            EXPECT_EQ(a <= b, &a <= &b);
            EXPECT_EQ(a == b, &a == &b);
            EXPECT_EQ(a >= b, &a >= &b);
            EXPECT_EQ(a > b, &a > &b);
        }
}

TEST(MultPrecInt, WithoutMemoryKeepsItsValue)
{
    const std::function<void(ZVMultPrecInt&, const ZVMultPrecInt&)> growingHandle[] = {
        [](ZVMultPrecInt& x, const ZVMultPrecInt& longer) { x = longer; },
        [](ZVMultPrecInt& x, const ZVMultPrecInt&) { x = 5; },
        [](ZVMultPrecInt& x, const ZVMultPrecInt& longer) { x += longer; },
        [](ZVMultPrecInt& x, const ZVMultPrecInt& longer) { x = longer - x; },
        [](ZVMultPrecInt& x, const ZVMultPrecInt&) { x = ZVMultPrecInt(); },
    };
    ZVMultPrecInt longer(1);
    longer.GetImpl()->MultiplyByDigitToPower(40);
    for (const auto& operation : growingHandle)
        for (int successes = 0, isFailing = 1; isFailing; ++successes) {
            ZVMultPrecInt number(3);
            try {
                const FailingAllocation failing(successes);
                operation(number, longer);
                isFailing = 0;
            } catch (const std::bad_alloc&) {
            }
            EXPECT_EQ(number == 3, isFailing != 0);
            EXPECT_TRUE(isFailing || successes > 0);
        }
}

}  // namespace
