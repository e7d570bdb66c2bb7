#include "zvmath/tensor2mat.h"

#include "principal_axes_naive.h"
#include "tensor2mat_internal.h"

using namespace ZVMath;
using namespace ZVTest;

namespace
{

/// Those of ZVPMIFromInertialTensor; the result is its result.
int PlainMoments(double* moments, const Grid<double>& tensor)
{
    const double* T = tensor.m[0];
    const auto cleared = [](double x) { return std::fabs(x) < 1e-6 ? 0.0 : x; };
    const double b = cleared(-(T[8] + T[4] + T[0]));
    const double c =
        cleared((T[8] + T[4]) * T[0] + T[4] * T[8] - (T[1] * T[3] + T[5] * T[7] + T[6] * T[2]));
    const double e = cleared((T[8] * T[1] * T[3] + T[0] * T[5] * T[7] + T[4] * T[6] * T[2]) -
                             (T[2] * T[7] * T[3] + T[0] * T[4] * T[8] + T[6] * T[5] * T[1]));
    const double s = b / 3, q = 0.5 * ((0.6666666666666666 * b * s - c) * s + e);
    const double p = (c - b * s) * 0.3333333333333333, D = q * q + p * p * p;
    std::fill(moments, moments + 3, -s);
    if (D < 0 || D > 0)
        PlainRoots(moments, p, q, s, D > 0 ? 0 : 2.0943951023931953);
    unsigned order[3];
    PlainOrder(moments, order, true);
    return std::fabs(moments[0]) < 1e-9 ? -3 : 0;
}

TEST(Tensor, EqualsThePlainSteps)
{
    std::mt19937 random(1);
    int retries = 0;
    for (int trial = 0; trial < 20000; ++trial) {
        const Grid<double> a = AnyMatrix(random, Kind(trial % 9));
        SCOPED_TRACE(trial);
        Grid<double> rotation, rows;
        double moments[3], values[3], plain[3];
        Warnings warnings;
        std::vector<std::string> expected;
        const int result = PlainMoments(plain, a);
        if (result != 0)
            expected.push_back("No principle axes found during inertial alignment");
        ASSERT_EQ(ZVPMIFromInertialTensor(moments, a.m[0]), result);
        ASSERT_TRUE(SameBits(List(moments, 3), List(plain, 3)));
        ASSERT_EQ(warnings.messages, expected);

        // Diagonal but for one entry, however small or odd.
        Grid<double> single = {{{1, 0, 0}, {0, 2, 0}, {0, 0, 3}}};
        const int place = trial / 9 % 9;
        single.m[place / 3][place % 3] = a.m[0][0];
        EXPECT_EQ(MatrixIsDiagonal(single.m[0]), place % 4 == 0 || a.m[0][0] == 0);
        double diagonal[] = {a.m[0][0], a.m[1][1], a.m[2][2]},
               same[] = {diagonal[0], diagonal[1], diagonal[2]};
        unsigned order[3], sameOrder[3];
        OrderRoots(diagonal, order);
        PlainOrder(same, sameOrder, true);
        ASSERT_TRUE(SameBits(List(diagonal, 3), List(same, 3)));
        ASSERT_EQ(List(order, 3), List(sameOrder, 3));

        const bool isDiagonal = MatrixIsDiagonal(a.m[0]);
        if (isDiagonal) {
            std::copy(same, same + 3, plain);
            expected.clear();
        }
        const PlainAxes axes(a, plain, false);
        const bool hasNaN = !isDiagonal && axes.hasNaN;
        if (hasNaN)
            expected.push_back("NaN detected during inertial alignment diagonalization");
        const double one = isDiagonal && (order[0] + 1) % 3 != order[1] ? -1 : 1;
        for (unsigned i = 0; i < 9; ++i)
            rows.m[i / 3][i % 3] = one * ((isDiagonal ? order[i / 3] : i / 3) == i % 3 ? 1 : 0);
        Grid<double> inPlace = a;  // the results may go to where the tensor is
        ZVMakeRotationMatrix(values, inPlace.m[0], inPlace.m[0]);
        warnings.messages.clear();
        ASSERT_EQ(ZVMakeRotationMatrix(values, rotation.m[0], a.m[0]), hasNaN ? -4 : 0);
        ASSERT_EQ(warnings.messages, expected);
        ASSERT_TRUE(SameBits(List(values, 3), List(plain, 3)));
        ASSERT_TRUE(SameBits(List(inPlace), List(rotation)));
        ASSERT_TRUE(isDiagonal || hasNaN ? SameBits(List(rotation), List(rows))
                                         : AreAxes(rotation, axes.rows, a, plain, 1e-14));
        retries += !isDiagonal && axes.trials > 0 && AreSound({axes.rows, a}, plain);
        inPlace = a;
        ZVMakeRotationMatrix(inPlace.m[0], rotation.m[0], inPlace.m[0]);
        ASSERT_TRUE(SameBits(List(inPlace.m[0], 3), List(plain, 3)));
    }
    EXPECT_GT(retries, 0);
}

TEST(Tensor, GivesTheAxes)
{
    double moments[3];
    Grid<double> rotation;
    for (const AxesReference& r : axesReferences) {
        const Grid<double> a = Symmetric(r.entries);
        EXPECT_EQ(ZVMakeRotationMatrix(moments, rotation.m[0], a.m[0]), 0) << r.name;
        EXPECT_TRUE(AreExact(moments, rotation, r, 1e-12)) << r.name;
    }
    std::mt19937 random(2);
    for (int trial = 0; trial < 20000; ++trial) {
        Grid<double> a = AnyMatrix(random, Kind(trial % 7));
        const double scale = std::pow(10, 27 + 21 * Uniform(random));
        for (int i = 0; i < 9; ++i)
            a.m[i / 3][i % 3] *= scale;
        Warnings warnings;  // of the zero matrix
        SCOPED_TRACE(trial);
        ASSERT_EQ(ZVMakeRotationMatrix(moments, rotation.m[0], a.m[0]), 0);
        const Quality quality(rotation, a);
        if (quality.largest == 0)
            continue;
        ASSERT_LE(quality.skewness, 1e-9);
        ASSERT_LE(quality.offDiagonal, 1e-6);
        // Moments are the mean of all, which happens where two agree, or roots of a polynomial that
        // is off by some epsilon of its largest root's cube (by more at a large scale: 1/3 as a
        // double gives poor cube roots there). Those of R T R^T: to the square of what is off it.
        const double bound = (60 + std::log(scale)) * epsilon;
        for (const double moment : moments) {
            double rest = 1;
            for (const double value : quality.values)
                rest *= (moment - value * quality.largest) / moments[0];
            const double off = quality.offDiagonal;
            ASSERT_TRUE(moments[0] == moments[2] || Near(rest, 0, bound + off * off)) << rest;
        }
        const double trace = a.m[0][0] + a.m[1][1] + a.m[2][2];
        ASSERT_TRUE(Near(moments[0] + moments[1] + moments[2], trace, 3 * bound * quality.largest));
    }
}

}  // namespace
