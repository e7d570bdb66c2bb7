#include "zvmath/matrix.h"

#include "allocations.h"
#include "check.h"
#include "matrix_minors.h"

#include <new>
#include <type_traits>
#include <utility>

namespace
{

using namespace ZVTest;
using namespace ZVMath;

testing::AssertionResult Is(const ZVMatrix& m, unsigned int rows, unsigned int columns,
                            const std::vector<double>& data)
{
    if (m.GetNumRows() != rows || m.GetNumColumns() != columns)
        return testing::AssertionFailure() << m.GetNumRows() << " x " << m.GetNumColumns();
    return SameBits(m.GetData(), data);
}

/// Dimensions and elements belong together.
bool Sound(const ZVMatrix& m)
{
    return m.GetData().size() == size_t{m.GetNumRows()} * m.GetNumColumns();
}

std::vector<double> NaiveProduct(const ZVMatrix& a, const ZVMatrix& b)
{
    const size_t inner = std::min(a.GetNumColumns(), b.GetNumRows());
    std::vector<double> product;
    for (size_t i = 0; i < a.GetNumRows(); ++i)
        for (size_t j = 0; j < b.GetNumColumns(); ++j) {
            double sum = 0.0;
            for (size_t k = 0; k < inner; ++k)
                sum +=
                    a.GetData()[i * a.GetNumColumns() + k] * b.GetData()[k * b.GetNumColumns() + j];
            product.push_back(sum);
        }
    return product;
}

double NaiveDeterminant(const ZVSquareMatrix& m)
{
    const std::vector<double>& a = m.GetData();
    const unsigned int n = m.GetNumRows();
    if (n == 0)
        return 0.0;
    if (n == 1)
        return a[0];
    if (n == 2)
        return a[3] * a[0] - a[2] * a[1];
    double sum = 0.0;
    for (unsigned int j = 0; j < n; ++j) {
        const double term = NaiveDeterminant(m.Minor(0, j)) * a[j];
        sum += j % 2 == 0 ? term : -term;
    }
    return sum;
}

std::vector<double> NaiveInverse(const ZVSquareMatrix& m)
{
    const unsigned int n = m.GetNumRows();
    std::vector<double> inverse(size_t{n} * n, 0.0);
    const double determinant = NaiveDeterminant(m);
    if (determinant == 0.0)
        return inverse;
    const double reciprocal = 1.0 / determinant;
    for (unsigned int i = 0; i < n; ++i)
        for (unsigned int j = 0; j < n; ++j) {
            const double minor = n == 1 ? 1.0 : NaiveDeterminant(m.Minor(i, j));
            inverse[j * n + i] = ((i + j) % 2 == 0 ? minor : -minor) * reciprocal;
        }
    return inverse;
}

/// Kinds of elements that take different ways through rounding, cancellation and overflow.
const struct Kind
{
    const char* name;
    double (*element)(std::mt19937&);
} kinds[] = {
    {"uniform", Uniform},
    {"small integers, often singular",
     [](std::mt19937& random) { return static_cast<double>(random() % 5) - 2.0; }},
    {"huge", [](std::mt19937& random) { return std::ldexp(Uniform(random), 500); }},
    {"tiny", [](std::mt19937& random) { return std::ldexp(Uniform(random), -400); }},
    {"all magnitudes",
     [](std::mt19937& random) {
         return std::ldexp(Uniform(random), static_cast<int>(random() % 400) - 200);
     }},
    {"zeros of both signs", [](std::mt19937& random) { return random() % 2 ? -0.0 : 0.0; }},
    {"some infinities",
     [](std::mt19937& random) {
         const double value = Uniform(random);
         return random() % 20 ? value : value > 0 ? inf : -inf;
     }},
    {"some NaNs", [](std::mt19937& random) { return random() % 40 ? Uniform(random) : NaN; }},
};

TEST(Matrix, ResizeKeepsTheSequence)
{
    ZVMatrix m = MakeMatrix(2, 3, [](unsigned int r, unsigned int c) { return 3 * r + c; });
    m.Resize(3, 3, 7.0);
    EXPECT_TRUE(Is(m, 3, 3, {0, 1, 2, 3, 4, 5, 7, 7, 7}));
    m.Resize(3, 2, 9.0);
    EXPECT_TRUE(Is(m, 3, 2, {0, 1, 2, 3, 4, 5}));
    m.Resize(1, 2);
    m.AddRow(4.0);
    EXPECT_TRUE(Is(m, 2, 2, {0, 1, 4, 4}));
    m.Clear();
    EXPECT_TRUE(Is(m, 0, 0, {}));
    m.AddRow(4.0);
    EXPECT_TRUE(Is(m, 1, 0, {}));
}

TEST(Matrix, WhatIsTooLargeChangesNothing)
{
    EXPECT_TRUE(Is(ZVMatrix(65536, 65536, 1.0), 0, 0, {}));
    ZVMatrix m(2, 2, 1.0);
    m.Resize(4294967295u, 2);
    EXPECT_TRUE(Is(m, 2, 2, {1, 1, 1, 1}));
    m.Resize(4294967295u, 0);
    m.AddRow();
    EXPECT_TRUE(Is(m, 4294967295u, 0, {}));
    EXPECT_TRUE(Is(m * ZVMatrix(0, 2), 0, 0, {}));
    EXPECT_TRUE(Is(ZVSquareMatrix(65536, 1.0), 0, 0, {}));
    ZVSquareMatrix square(1, 3.0);
    square.Resize(4294967295u);
    EXPECT_TRUE(Is(square, 1, 1, {3}));
}

TEST(Matrix, DerivedClassesKeepTheirShape)
{
    ZVSquareMatrix square(2, 1.0);
    square.Resize(5, 5, 1.0);
    square.AddRow(1.0);
    EXPECT_TRUE(Is(square, 2, 2, {1, 1, 1, 1}));
    square.Resize(3, 2.0);
    EXPECT_TRUE(Is(square, 3, 3, {1, 1, 1, 1, 2, 2, 2, 2, 2}));
    square.Resize(2, 0);
    EXPECT_TRUE(Is(square, 2, 2, {1, 1, 1, 1}));

    const std::vector<double> twos(16, 2.0);
    ZV4x4Matrix four(2.0);
    four.Clear();
    four.Resize(2, 0);
    four.Resize(2, 2, 0.0);
    four.AddRow();
    EXPECT_TRUE(Is(four, 4, 4, twos));
    const ZV4x4Matrix moved = static_cast<ZV4x4Matrix&&>(four);
    EXPECT_TRUE(Is(four, 4, 4, twos));
    EXPECT_TRUE(Is(moved, 4, 4, twos));
    EXPECT_TRUE(Is(ZV4x4Matrix(), 4, 4, std::vector<double>(16, 0.0)));

    const auto place = [](unsigned int r, unsigned int c) { return 10 * r + c; };
    EXPECT_TRUE(Is(ZV4x4Matrix(MakeMatrix(2, 3, place)), 4, 4,
                   {0, 1, 2, 0, 10, 11, 12, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_TRUE(Is(ZV4x4Matrix(MakeMatrix(5, 6, place)), 4, 4,
                   {0, 1, 2, 3, 10, 11, 12, 13, 20, 21, 22, 23, 30, 31, 32, 33}));
    EXPECT_TRUE(Is(ZV4x4Matrix(ZVMatrix()), 4, 4, std::vector<double>(16, 0.0)));

    ZVMatrix resizable(1, 1);
    resizable.Resize(2, 0);
    EXPECT_TRUE(Is(resizable, 2, 0, {}));
    EXPECT_FALSE((std::is_convertible_v<unsigned int, ZVSquareMatrix>));
}

TEST(Matrix, RowsAreSetWithinTheMatrix)
{
    ZVMatrix m(2, 3);
    m.SetRowData(1, {1, 2, 3, 4});
    m.SetRowData(0, {5});
    m.SetRowData(2, {6, 6, 6});
    m.SetRowData(4294967295u, {6, 6, 6});
    EXPECT_TRUE(Is(m, 2, 3, {5, 0, 0, 1, 2, 3}));
    m.SetRowData(0, m.GetData());
    EXPECT_TRUE(Is(m, 2, 3, {5, 0, 0, 1, 2, 3}));
    m.SetRowData(1, m.GetData());
    EXPECT_TRUE(Is(m, 2, 3, {5, 0, 0, 5, 0, 0}));
    ZVMatrix narrow(2, 0);
    narrow.SetRowData(1, {1});
    EXPECT_TRUE(Is(narrow, 2, 0, {}));
}

TEST(Matrix, CopiesAndMovesKeepDimensionsAndElementsTogether)
{
    ZVSquareMatrix square(2, 1.0);
    ZVMatrix& base = square;
    base = ZVMatrix(2, 3, 5.0);
    EXPECT_TRUE(Is(square, 2, 3, std::vector<double>(6, 5.0)));
    EXPECT_TRUE(SameBits(square.Determinant(), 0.0));
    EXPECT_TRUE(Is(square.Invert(), 2, 2, {0, 0, 0, 0}));
    EXPECT_TRUE(Is(square.Minor(0, 0), 0, 0, {}));

    ZVMatrix taken = std::move(base);
    EXPECT_TRUE(Is(taken, 2, 3, std::vector<double>(6, 5.0)));
    EXPECT_TRUE(Is(square, 0, 0, {}));
    ZVMatrix other(1, 1, 8.0);
    ZVMatrix& giver = taken;
    other = std::move(giver);
    EXPECT_TRUE(Is(taken, 0, 0, {}));
    ZVMatrix& same = other;
    other = std::move(same);
    same = other;
    EXPECT_TRUE(Is(other, 2, 3, std::vector<double>(6, 5.0)));
}

TEST(Matrix, RunningOutOfMemoryLeavesTheMatrix)
{
    const ZVMatrix large(30, 40, 3.0);
    const ZVSquareMatrix square =
        MakeSquare(6, [](unsigned int r, unsigned int c) { return r == c ? 2.0 : 1.0; });
    const struct
    {
        const char* name;
        void (*change)(ZVMatrix& m, const ZVMatrix& large, const ZVSquareMatrix& square);
    } changes[] = {
        {"assign", [](ZVMatrix& m, const ZVMatrix& l, const ZVSquareMatrix&) { m = l; }},
        {"resize",
         [](ZVMatrix& m, const ZVMatrix&, const ZVSquareMatrix&) { m.Resize(9, 9, 1.0); }},
        {"add row", [](ZVMatrix& m, const ZVMatrix&, const ZVSquareMatrix&) { m.AddRow(1.0); }},
        {"product",
         [](ZVMatrix& m, const ZVMatrix& l, const ZVSquareMatrix&) { m = l * l.Transpose(); }},
        {"inverse", [](ZVMatrix& m, const ZVMatrix&, const ZVSquareMatrix& s) { m = s.Invert(); }},
    };
    for (const auto& c : changes) {
        int failures = 0;
        for (bool failed = true; failed; ++failures) {
            ZVMatrix m(2, 2, 1.0);
            try {
                const FailingAllocation failing(failures);
                c.change(m, large, square);
                failed = false;
            } catch (const std::bad_alloc&) {
            }
            EXPECT_TRUE(!failed || Is(m, 2, 2, {1, 1, 1, 1})) << c.name;
            EXPECT_TRUE(Sound(m)) << c.name;
        }
        EXPECT_GT(failures, 1) << c.name << " never allocated";
    }
}

TEST(Matrix, SumsAndScalars)
{
    ZVMatrix m = MakeMatrix(2, 2, [](unsigned int r, unsigned int c) { return 2 * r + c + 1; });
    EXPECT_TRUE(Is(m * 0.5, 2, 2, {0.5, 1, 1.5, 2}));
    EXPECT_TRUE(Is(m + m, 2, 2, {2, 4, 6, 8}));
    EXPECT_TRUE(Is(m - m, 2, 2, {0, 0, 0, 0}));
    EXPECT_TRUE(Is(m + ZVMatrix(1, 1, 10.0), 2, 2, {11, 2, 3, 4}));
    EXPECT_TRUE(Is(ZVMatrix(1, 1, 10.0) - m, 1, 1, {9}));
    const ZVMatrix& itself = m;
    m += itself;
    m *= -1.0;
    EXPECT_TRUE(Is(m, 2, 2, {-2, -4, -6, -8}));
    m -= itself;
    EXPECT_TRUE(Is(m, 2, 2, {0, 0, 0, 0}));
    EXPECT_TRUE(
        Is(MakeMatrix(2, 3, [](unsigned int r, unsigned int c) { return 3 * r + c; }).Transpose(),
           3, 2, {0, 3, 1, 4, 2, 5}));
    EXPECT_TRUE(Is(ZVMatrix(0, 3).Transpose(), 3, 0, {}));
}

TEST(Matrix, ProductHasTheBitsOfThePlainLoops)
{
    // Rows, inner, columns: empty, plain loops, tiles whole and cut, several blocks each way.
    const unsigned int shapes[][3] = {{2, 0, 3}, {0, 2, 3},    {3, 2, 0},     {4, 4, 4},
                                      {8, 8, 8}, {9, 8, 8},    {1, 600, 1},   {6, 16, 8},
                                      {7, 9, 9}, {13, 11, 23}, {18, 300, 24}, {5, 520, 515}};
    for (const Kind& kind : kinds)
        for (const auto& shape : shapes) {
            std::mt19937 random(1);
            const auto element = [&](unsigned int, unsigned int) { return kind.element(random); };
            const ZVMatrix a = MakeMatrix(shape[0], shape[1], element);
            const ZVMatrix b = MakeMatrix(shape[1], shape[2], element);
            EXPECT_TRUE(Is(a * b, shape[0], shape[2], NaiveProduct(a, b)))
                << kind.name << ", " << shape[0] << " x " << shape[1] << " x " << shape[2];
        }
    // Inner dimensions that differ: the smaller one counts, on either side.
    std::mt19937 random(2);
    const auto element = [&](unsigned int, unsigned int) { return Uniform(random); };
    for (const unsigned int n : {3u, 40u}) {
        const ZVMatrix wide = MakeMatrix(n, n + 5, element);
        const ZVMatrix high = MakeMatrix(n + 2, n, element);
        EXPECT_TRUE(Is(wide * high, n, n, NaiveProduct(wide, high)));
        EXPECT_TRUE(Is(high * high, n + 2, n, NaiveProduct(high, high)));
    }
}

TEST(SquareMatrix, DeterminantAndInverseHaveTheBitsOfThePlainExpansion)
{
    for (const Kind& kind : kinds)
        for (unsigned int n = 0; n <= 8; ++n)
            for (unsigned int seed = 0; seed < (n < 7 ? 20 : 1); ++seed) {
                std::mt19937 random(seed);
                const auto m =
                    MakeSquare(n, [&](unsigned int, unsigned int) { return kind.element(random); });
                EXPECT_TRUE(SameBits(m.Determinant(), NaiveDeterminant(m)))
                    << kind.name << ", n = " << n << ", seed " << seed;
                EXPECT_TRUE(Is(m.Invert(), n, n, NaiveInverse(m)))
                    << kind.name << ", n = " << n << ", seed " << seed;
            }
}

TEST(SquareMatrix, RowsAboveTheTablesAreExpandedOneByOne)
{
    for (const size_t tableColumns : {size_t{2}, size_t{4}, size_t{5}}) {
        std::mt19937 random(3);
        const auto m = MakeSquare(7, [&](unsigned int, unsigned int) { return Uniform(random); });
        EXPECT_TRUE(
            SameBits(LaplaceDeterminant(m.GetData().data(), 7, tableColumns), NaiveDeterminant(m)));
        std::vector<double> minors(49);
        LaplaceMinors(minors.data(), m.GetData().data(), 7, tableColumns);
        for (unsigned int i = 0; i < 7; ++i)
            for (unsigned int j = 0; j < 7; ++j)
                EXPECT_TRUE(SameBits(minors[i * 7 + j], NaiveDeterminant(m.Minor(i, j))));
    }
}

TEST(SquareMatrix, KnownDeterminants)
{
    // The second difference matrix, 2 on the diagonal and -1 beside it, has n + 1; min(r, c) + 1
    // has 1. Every partial result is a small integer, so the values are exact.
    for (const unsigned int n : {25u, 20u, 12u, 7u, 5u}) {
        const auto difference = MakeSquare(n, [](unsigned int r, unsigned int c) {
            return r == c ? 2.0 : r == c + 1 || c == r + 1 ? -1.0 : 0.0;
        });
        EXPECT_TRUE(SameBits(difference.Determinant(), n + 1.0));
        const auto minimum =
            MakeSquare(n, [](unsigned int r, unsigned int c) { return std::min(r, c) + 1.0; });
        EXPECT_TRUE(SameBits(minimum.Determinant(), 1.0));
    }
    EXPECT_TRUE(Is(MakeSquare({1, 2, 3, 4}).Invert(), 2, 2, {-2, 1, 1.5, -0.5}));
    EXPECT_TRUE(Is(MakeSquare({1, 2, 3, 4, 5, 6, 7, 8, 9}).Minor(1, 0), 2, 2, {2, 3, 8, 9}));
    EXPECT_TRUE(Is(MakeSquare({1, 2, 3, 4}).Minor(2, 0), 0, 0, {}));
}

}  // namespace
