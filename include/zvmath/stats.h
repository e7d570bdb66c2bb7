#pragma once

#include "zvmath/export.h"

#include <vector>

/// Location statistics of one vector, and error metrics of a vector of predictions p against a
/// vector of reference (observed) values r.
///
/// All read their arguments only. A metric uses the pairs (r_i, p_i), i = 0 .. n-1, n being the
/// length of `reference` modulo 2^32 (in `ZVRSquared` the length itself), or the length of
/// `prediction` if that is less.
///
/// Sums are the same to the bit on every machine. Element i of a block of 4096 goes into partial
/// sum i % 16. The partial sums, which start at +0.0, are added in pairs: j and j + 8, then j + 4,
/// j + 2, j + 1. The sums of the blocks are added in pairs too, left half and right half, the left
/// one the largest power of two of blocks that leaves something to the right.
///
/// Error: with E = (256 + log2(n)) * 2^-53, a mean differs from the exact one by at most E times
/// the mean of the absolute values of its terms, a term being r_i, |r_i - p_i| or (r_i - p_i)^2;
/// and by 2^-1074 more, for what falls below the normal numbers. This as long as the sum doesn't
/// overflow.
///
/// Where nothing else is said: the arguments are read once, no memory is allocated but that of a
/// vector returned, and a NaN, or infinities without a difference, give NaN.
namespace ZVMath
{

/// The arithmetic mean: the sum of `values` over their number. Empty: 0.0.
ZVMATH_EXPORT double ZVMean(const std::vector<double>& values);

/// The median of `values`: the middle one in ascending order, or of an even number half the sum of
/// the two in the middle, which overflows for two of 8.99e307.
///
/// Empty: 0.0. Any NaN: NaN. -0.0 comes before +0.0. `values` is left as it is.
/// Cost: time in proportion to their number, unless they are arranged against it. They are read
/// once, up to twice more if the median is zero. Memory for the values near the middle, in
/// unfavourable cases for all, and none up to 256 values. (A sample from fixed places bounds the
/// middle, one pass keeps what is between: Floyd and Rivest 1975.)
ZVMATH_EXPORT double ZVMedian(const std::vector<double>& values);

/// |r_i - p_i| for each pair.
ZVMATH_EXPORT std::vector<double> ZVAbsDeviations(const std::vector<double>& reference,
                                                  const std::vector<double>& prediction);

/// (r_i - p_i)^2 for each pair.
ZVMATH_EXPORT std::vector<double> ZVSquareDeviations(const std::vector<double>& reference,
                                                     const std::vector<double>& prediction);

/// The mean absolute error: `ZVMean` of `ZVAbsDeviations`, to the bit. No pairs: 0.0.
ZVMATH_EXPORT double ZVMeanAbsDeviation(const std::vector<double>& reference,
                                        const std::vector<double>& prediction);

/// The median absolute error: `ZVMedian` of `ZVAbsDeviations`, to the bit. No pairs: 0.0. It
/// compares two vectors; it is not the spread of one about its own median, though that is
/// `ZVMedianAbsDeviation(values, a vector filled with ZVMedian(values))`. Cost: as `ZVMedian`.
ZVMATH_EXPORT double ZVMedianAbsDeviation(const std::vector<double>& reference,
                                          const std::vector<double>& prediction);

/// The mean square error: `ZVMean` of `ZVSquareDeviations`, to the bit. No pairs: 0.0.
ZVMATH_EXPORT double ZVMeanSquareDeviation(const std::vector<double>& reference,
                                           const std::vector<double>& prediction);

/// The root mean square error: the square root of `ZVMeanSquareDeviation`. No pairs: 0.0. Squares
/// overflow from differences of 1.3408e154, and vanish below 1.57e-162.
/// Error: at most E / 2 of the result, and 2^-537 more.
ZVMATH_EXPORT double ZVRMSE(const std::vector<double>& reference,
                            const std::vector<double>& prediction);

/// The coefficient of determination, with m = `ZVMean` of the r_i:
///
///     1 - (sum of (r_i - p_i)^2) / (sum of (r_i - m)^2)
///
/// 1 for exact predictions, 0 for those that do as well as the mean, negative for worse ones. It is
/// not the squared correlation, and the order of the arguments matters. No pairs: NaN. All r_i
/// equal (and their mean exact): -infinity, or NaN if the predictions are exact too. Squares
/// overflow and vanish as in `ZVRMSE`.
/// Error: at most 2 * E + (e / s)^2 times 1 - R squared, with e the error of m and s the standard
/// deviation of the r_i, and 2^-53 of the result more; as long as no square over- or underflows.
/// Cost: one read of the reference, then one of both.
ZVMATH_EXPORT double ZVRSquared(const std::vector<double>& reference,
                                const std::vector<double>& prediction);

}  // namespace ZVMath
