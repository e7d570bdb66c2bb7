#include "zvmath/stats.h"

#include "multiversion.h"
#include "partial_sums.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace ZVMath
{

namespace
{

// What is summed up or selected from, element by element or four at a time.

struct Values
{
    using Group = FourTerms;
    const double* values;

    ZVMATH_INLINE void One(double* term, size_t i) const { *term = values[i]; }
    ZVMATH_INLINE void Four(Group& terms, size_t i) const
    {
        terms.first = ZVMath::Four(values + i).v;
    }
};

struct AbsDeviations
{
    using Group = FourTerms;
    const double* reference;
    const double* prediction;

    ZVMATH_INLINE void One(double* term, size_t i) const
    {
        *term = std::fabs(reference[i] - prediction[i]);
    }
    ZVMATH_INLINE void Four(Group& terms, size_t i) const
    {
        typedef int64_t Bits4 __attribute__((vector_size(32)));
        const Vec4 difference = ZVMath::Four(reference + i).v - ZVMath::Four(prediction + i).v;
        terms.first = (Vec4)((Bits4)difference & std::numeric_limits<int64_t>::max());
    }
};

struct SquareDeviations
{
    using Group = FourTerms;
    const double* reference;
    const double* prediction;

    ZVMATH_INLINE void One(double* term, size_t i) const
    {
        const double difference = reference[i] - prediction[i];
        *term = difference * difference;
    }
    ZVMATH_INLINE void Four(Group& terms, size_t i) const
    {
        const Vec4 difference = ZVMath::Four(reference + i).v - ZVMath::Four(prediction + i).v;
        terms.first = difference * difference;
    }
};

/// Two terms: the square deviation from the prediction, and that from the mean.
struct Variances
{
    using Group = TwiceFourTerms;
    SquareDeviations residual;
    double mean;

    ZVMATH_INLINE void One(double* terms, size_t i) const
    {
        const double distance = residual.reference[i] - mean;
        residual.One(terms, i);
        terms[1] = distance * distance;
    }
    ZVMATH_INLINE void Four(Group& terms, size_t i) const
    {
        const Vec4 distance = ZVMath::Four(residual.reference + i).v - mean;
        FourTerms squares;
        residual.Four(squares, i);
        terms = {squares.first, distance * distance};
    }
};

// The sums over one block or two. (A template can't be compiled for several processors.)

ZVMATH_CLONES void SumOverBlocks(double* total, const Values& terms, size_t begin, size_t end)
{
    SumBlocks(total, begin, end, terms);
}

ZVMATH_CLONES void SumOverBlocks(double* total, const AbsDeviations& terms, size_t begin,
                                 size_t end)
{
    SumBlocks(total, begin, end, terms);
}

ZVMATH_CLONES void SumOverBlocks(double* total, const SquareDeviations& terms, size_t begin,
                                 size_t end)
{
    SumBlocks(total, begin, end, terms);
}

ZVMATH_CLONES void SumOverBlocks(double* totals, const Variances& terms, size_t begin, size_t end)
{
    SumBlocks(totals, begin, end, terms);
}

/// The sum of the first n terms over n; of none 0.0.
template <class Terms> double Mean(size_t n, const Terms& terms)
{
    if (n == 0)
        return 0.0;
    const double sum = SumOfBlocks(0, n, [&terms](size_t begin, size_t end) {
        double total;
        SumOverBlocks(&total, terms, begin, end);
        return total;
    });
    return sum / static_cast<double>(n);
}

/// The numerator and the denominator of the share of variance that is not explained.
struct SumsOfSquares
{
    double sums[2];

    void operator+=(const SumsOfSquares& other)
    {
        sums[0] += other.sums[0];
        sums[1] += other.sums[1];
    }
};

/// Term i of such as have one.
template <class Terms> ZVMATH_INLINE double One(const Terms& terms, size_t i)
{
    double term;
    terms.One(&term, i);
    return term;
}

// The median: the values of one or two neighbouring ranks. Two values of a sample, one below and
// one above its own median, are very likely bounds of them. One pass counts what lies below, at and
// between the bounds and keeps what is between; the ranks are then selected from those few.

/// Up to so many values are selected from directly.
constexpr size_t fewValues = 256;
constexpr size_t largestSample = 65536;
/// The pass makes room for so many values at a time.
constexpr size_t valuesPerPass = 32768;

/// A function object of this file, or the standard library's templates would be weak symbols, to be
/// replaced by those of a program with other flags.
struct Less
{
    bool operator()(double a, double b) const { return a < b; }
};

/// The values of two ranks that are equal or neighbours.
struct Middle
{
    double lower;
    double upper;
};

/// From n values without a NaN, which are rearranged.
Middle SelectFrom(double* values, size_t n, size_t lowerRank, size_t upperRank)
{
    double* const upper = values + upperRank;
    std::nth_element(values, upper, values + n, Less());
    return {lowerRank == upperRank ? *upper : *std::max_element(values, upper, Less()), *upper};
}

struct Bounds
{
    double low;
    double high;
};

/// How many values lie where.
struct Counts
{
    size_t below = 0;
    size_t atLow = 0;
    size_t between = 0;
    size_t atHigh = 0;
    size_t above = 0;
};

typedef int64_t Count4 __attribute__((vector_size(32)));

ZVMATH_INLINE size_t Total(const Count4& counts)
{
    return static_cast<size_t>(counts[0] + counts[1] + counts[2] + counts[3]);
}

/// Counts the values of [begin, end), and appends those between the bounds to `kept`, which has
/// room for all of them.
template <class Terms>
ZVMATH_INLINE void InlineClassify(Counts& counts, double* kept, const Bounds& bounds,
                                  const Terms& terms, size_t begin, size_t end)
{
    constexpr size_t group = 16;
    const double low = bounds.low;
    const double high = bounds.high;
    Count4 below = {}, atLow = {}, atHigh = {}, above = {};
    size_t between = counts.between;
    size_t i = begin;
    for (; i + group <= end; i += group) {
        Count4 anyBetween = {};
        for (size_t q = 0; q < group; q += 4) {
            FourTerms values;
            terms.Four(values, i + q);
            const Vec4 four = values.first;
            // True is -1.
            below -= four < low;
            atLow -= four == low;
            atHigh -= four == high;
            above -= four > high;
            anyBetween |= (four > low) & (four < high);
        }
        if (Total(anyBetween) != 0)
            for (size_t j = i; j < i + group; ++j) {
                const double value = One(terms, j);
                kept[between] = value;
                between += static_cast<size_t>((value > low) & (value < high));
            }
    }
    for (; i < end; ++i) {
        const double value = One(terms, i);
        below[0] += value < low;
        atLow[0] += value == low;
        atHigh[0] += value == high;
        above[0] += value > high;
        kept[between] = value;
        between += static_cast<size_t>((value > low) & (value < high));
    }
    counts.below += Total(below);
    counts.atLow += Total(atLow);
    counts.between = between;
    counts.atHigh += Total(atHigh);
    counts.above += Total(above);
}

ZVMATH_CLONES void Classify(Counts& counts, double* kept, const Bounds& bounds, const Values& terms,
                            size_t begin, size_t end)
{
    InlineClassify(counts, kept, bounds, terms, begin, end);
}

ZVMATH_CLONES void Classify(Counts& counts, double* kept, const Bounds& bounds,
                            const AbsDeviations& terms, size_t begin, size_t end)
{
    InlineClassify(counts, kept, bounds, terms, begin, end);
}

/// Two values of a sample that have very likely the ranks around n / 2 between them.
template <class Terms> Bounds SampleBounds(size_t n, const Terms& terms, std::vector<double>& work)
{
    // Many for tight bounds, few for a short selection: the best number goes with n^(2/3).
    size_t size = 64;
    while (size < largestSample && size * size * size / n < n)
        size *= 2;
    const size_t stride = n / size;
    work.resize(size);
    uint32_t random = 1;  // so that no period of the values meets that of the sample
    for (size_t j = 0; j < size; ++j) {
        random = random * 1664525u + 1013904223u;
        work[j] = One(terms, j * stride + ((random >> 16) * stride >> 16));
        if (std::isnan(work[j]))
            return {work[j], work[j]};
    }
    // Of the sample, the number below the median has a standard deviation of sqrt(size) / 2.
    const size_t deviations = static_cast<size_t>(1.5 * std::sqrt(static_cast<double>(size)));
    double* const low = work.data() + (size / 2 - deviations);
    double* const high = work.data() + (size / 2 + deviations);
    std::nth_element(work.data(), low, work.data() + size, Less());
    std::nth_element(low + 1, high, work.data() + size, Less());
    return {*low, *high};
}

/// -0.0 comes before +0.0: the zero that has `rank`.
template <class Terms> double ZeroOfRank(size_t n, const Terms& terms, size_t rank)
{
    size_t before = 0;  // negative numbers and negative zeros
    for (size_t i = 0; i < n; ++i)
        before += std::signbit(One(terms, i));
    return rank < before ? -0.0 : 0.0;
}

/// The ranks of the middle of n > 0 values: the same one if n is odd.
size_t LowerRank(size_t n)
{
    return (n - 1) / 2;
}

size_t UpperRank(size_t n)
{
    return n / 2;
}

/// Of n > 0 values; both NaN if there is a NaN among them. The sign of zeros is open.
template <class Terms> Middle MiddleOf(size_t n, const Terms& terms)
{
    const size_t lowerRank = LowerRank(n);
    const size_t upperRank = UpperRank(n);
    constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
    if (n <= fewValues) {
        double few[fewValues];
        bool isNaN = false;
        for (size_t i = 0; i < n; ++i) {
            few[i] = One(terms, i);
            isNaN |= std::isnan(few[i]);
        }
        return isNaN ? Middle{NaN, NaN} : SelectFrom(few, n, lowerRank, upperRank);
    }

    std::vector<double> kept;
    const Bounds bounds = SampleBounds(n, terms, kept);
    Counts counts;
    for (size_t begin = 0; begin < n; begin += valuesPerPass) {
        const size_t end = std::min(begin + valuesPerPass, n);
        if (kept.size() < counts.between + (end - begin))
            kept.resize(counts.between + (end - begin));
        Classify(counts, kept.data(), bounds, terms, begin, end);
    }
    if (bounds.low == bounds.high)
        counts.atHigh = 0;  // they are counted at the low one
    const size_t first = counts.below + counts.atLow;
    const size_t last = first + counts.between;
    if (last + counts.atHigh + counts.above < n)
        return {NaN, NaN};  // compares with nothing
    if (lowerRank < counts.below || upperRank >= last + counts.atHigh) {
        kept.resize(n);
        for (size_t i = 0; i < n; ++i)
            kept[i] = One(terms, i);
        return SelectFrom(kept.data(), n, lowerRank, upperRank);
    }
    const auto isKept = [&](size_t rank) { return rank >= first && rank < last; };
    const auto bound = [&](size_t rank) { return rank < first ? bounds.low : bounds.high; };
    Middle middle{bound(lowerRank), bound(upperRank)};
    if (isKept(lowerRank) && isKept(upperRank))
        return SelectFrom(kept.data(), counts.between, lowerRank - first, upperRank - first);
    if (isKept(lowerRank))
        middle.lower = *std::max_element(kept.data(), kept.data() + counts.between, Less());
    if (isKept(upperRank))
        middle.upper = *std::min_element(kept.data(), kept.data() + counts.between, Less());
    return middle;
}

template <class Terms> double MedianOf(size_t n, const Terms& terms)
{
    if (n == 0)
        return 0.0;
    Middle middle = MiddleOf(n, terms);
    if (middle.lower == 0.0 && middle.upper == 0.0)
        middle = {ZeroOfRank(n, terms, LowerRank(n)), ZeroOfRank(n, terms, UpperRank(n))};
    return n % 2 == 1 ? middle.upper : (middle.upper + middle.lower) * 0.5;
}

/// Deviations are counted in 32 bits. Never past the end of the shorter vector.
size_t NumPairs(const std::vector<double>& reference, const std::vector<double>& prediction)
{
    return std::min(size_t{static_cast<uint32_t>(reference.size())}, prediction.size());
}

ZVMATH_CLONES void Evaluate(double* out, const AbsDeviations& terms, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        out[i] = One(terms, i);
}

ZVMATH_CLONES void Evaluate(double* out, const SquareDeviations& terms, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        out[i] = One(terms, i);
}

template <class Terms> std::vector<double> Evaluated(const Terms& terms, size_t n)
{
    std::vector<double> result(n);
    Evaluate(result.data(), terms, n);
    return result;
}

}  // namespace

double ZVMean(const std::vector<double>& values)
{
    return Mean(values.size(), Values{values.data()});
}

double ZVMedian(const std::vector<double>& values)
{
    return MedianOf(values.size(), Values{values.data()});
}

std::vector<double> ZVAbsDeviations(const std::vector<double>& reference,
                                    const std::vector<double>& prediction)
{
    return Evaluated(AbsDeviations{reference.data(), prediction.data()},
                     NumPairs(reference, prediction));
}

std::vector<double> ZVSquareDeviations(const std::vector<double>& reference,
                                       const std::vector<double>& prediction)
{
    return Evaluated(SquareDeviations{reference.data(), prediction.data()},
                     NumPairs(reference, prediction));
}

double ZVMeanAbsDeviation(const std::vector<double>& reference,
                          const std::vector<double>& prediction)
{
    return Mean(NumPairs(reference, prediction),
                AbsDeviations{reference.data(), prediction.data()});
}

double ZVMedianAbsDeviation(const std::vector<double>& reference,
                            const std::vector<double>& prediction)
{
    return MedianOf(NumPairs(reference, prediction),
                    AbsDeviations{reference.data(), prediction.data()});
}

double ZVMeanSquareDeviation(const std::vector<double>& reference,
                             const std::vector<double>& prediction)
{
    return Mean(NumPairs(reference, prediction),
                SquareDeviations{reference.data(), prediction.data()});
}

double ZVRMSE(const std::vector<double>& reference, const std::vector<double>& prediction)
{
    return std::sqrt(ZVMeanSquareDeviation(reference, prediction));
}

double ZVRSquared(const std::vector<double>& reference, const std::vector<double>& prediction)
{
    const size_t n = std::min(reference.size(), prediction.size());
    if (n == 0)
        return std::numeric_limits<double>::quiet_NaN();
    const Variances terms{{reference.data(), prediction.data()}, Mean(n, Values{reference.data()})};
    const SumsOfSquares squares = SumOfBlocks(0, n, [&terms](size_t begin, size_t end) {
        SumsOfSquares block;
        SumOverBlocks(block.sums, terms, begin, end);
        return block;
    });
    return 1.0 - squares.sums[0] / squares.sums[1];
}

}  // namespace ZVMath
