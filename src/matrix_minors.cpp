#include "matrix_minors.h"

#include <algorithm>
#include <array>
#include <vector>

// The determinant of the minor that is left after expanding the rows above it depends only on which
// columns S are left: det(S). The tables here hold det(S) for every set S of m out of n columns,
// over m given rows, in colexicographic order of S = {s0 < s1 < ...}: the place of S is
// sum of binomial(s_i, i + 1). A table for m rows gives the one with another row on top.

namespace ZVMath
{

namespace
{

using Binomials = std::array<std::array<size_t, maxTableColumns + 2>, maxTableColumns + 1>;

constexpr Binomials MakeBinomials()
{
    Binomials b{};
    for (size_t n = 0; n < b.size(); ++n) {
        b[n][0] = 1;
        for (size_t k = 1; k <= n; ++k)
            b[n][k] = b[n - 1][k - 1] + b[n - 1][k];
    }
    return b;
}

/// binomials[n][k] = n choose k, 0 for k > n.
constexpr Binomials binomials = MakeBinomials();

double Determinant2(double a00, double a01, double a10, double a11)
{
    return a11 * a00 - a10 * a01;
}

/// The expansion along a row of three elements, given the determinants of the three minors.
double Expand3(const double* row, double minor0, double minor1, double minor2)
{
    return 0.0 + minor0 * row[0] - minor1 * row[1] + minor2 * row[2];
}

/// The determinants over two rows of four columns: of columns {0,1}, {0,2}, {1,2}, {0,3}, {1,3},
/// {2,3}.
std::array<double, 6> Pairs(const double* upper, const double* lower)
{
    const auto pair = [=](size_t j, size_t k) {
        return Determinant2(upper[j], upper[k], lower[j], lower[k]);
    };
    return {pair(0, 1), pair(0, 2), pair(1, 2), pair(0, 3), pair(1, 3), pair(2, 3)};
}

/// The determinants over a row of four columns above two others, without column 0, 1, 2, 3.
std::array<double, 4> Triples(const double* row, const std::array<double, 6>& pairs)
{
    const double without0[] = {row[1], row[2], row[3]};
    const double without1[] = {row[0], row[2], row[3]};
    const double without2[] = {row[0], row[1], row[3]};
    return {Expand3(without0, pairs[5], pairs[4], pairs[2]),
            Expand3(without1, pairs[5], pairs[3], pairs[1]),
            Expand3(without2, pairs[4], pairs[3], pairs[0]),
            Expand3(row, pairs[2], pairs[1], pairs[0])};
}

double Determinant3(const double* a)
{
    return Expand3(a, Determinant2(a[4], a[5], a[7], a[8]), Determinant2(a[3], a[5], a[6], a[8]),
                   Determinant2(a[3], a[4], a[6], a[7]));
}

/// The expansion along a row of four elements, given the determinants of the four minors.
double Expand4(const double* row, const double* minors)
{
    return 0.0 + minors[0] * row[0] - minors[1] * row[1] + minors[2] * row[2] - minors[3] * row[3];
}

double Determinant4(const double* a)
{
    return Expand4(a, Triples(a + 4, Pairs(a + 8, a + 12)).data());
}

void Minors2(double* minors, const double* a)
{
    std::reverse_copy(a, a + 4, minors);
}

void Minors3(double* minors, const double* a)
{
    const double* const row[] = {a, a + 3, a + 6};
    for (size_t i = 0; i < 3; ++i) {
        const double* upper = row[i == 0 ? 1 : 0];
        const double* lower = row[i == 2 ? 1 : 2];
        *minors++ = Determinant2(upper[1], upper[2], lower[1], lower[2]);
        *minors++ = Determinant2(upper[0], upper[2], lower[0], lower[2]);
        *minors++ = Determinant2(upper[0], upper[1], lower[0], lower[1]);
    }
}

void Minors4(double* minors, const double* a)
{
    const double* const row[] = {a, a + 4, a + 8, a + 12};
    const std::array<double, 6> lowest = Pairs(row[2], row[3]);
    const std::array<double, 4> all[] = {Triples(row[1], lowest), Triples(row[0], lowest),
                                         Triples(row[0], Pairs(row[1], row[3])),
                                         Triples(row[0], Pairs(row[1], row[2]))};
    for (const auto& ofRow : all)
        minors = std::copy(ofRow.begin(), ofRow.end(), minors);
}

/// Determinants over some of a matrix's rows, for every set of as many columns.
class MinorTable
{
public:
    explicit MinorTable(size_t columns) : n(columns) {}

    /// Puts `row` on top of the rows so far.
    void AddRowOnTop(const double* row)
    {
        ++m;
        next.resize(binomials[n][m]);
        if (m == 1)
            std::copy_n(row, n, next.begin());
        else if (m == 2)
            AddSecondRow(row);
        else
            AddFurtherRow(row);
        det.swap(next);
    }

    /// det of all columns, when there are n rows; of all but column j, when there are n - 1.
    double OfAll() const { return det[0]; }
    double Without(size_t j) const { return det[n - 1 - j]; }

private:
    void AddSecondRow(const double* row)
    {
        size_t place = 0;
        for (size_t s1 = 1; s1 < n; ++s1)
            for (size_t s0 = 0; s0 < s1; ++s0)
                next[place++] = Determinant2(row[s0], row[s1], det[s0], det[s1]);
    }

    void AddFurtherRow(const double* row)
    {
        std::array<size_t, maxTableColumns + 1> s;
        for (size_t i = 0; i < m; ++i)
            s[i] = i;
        s[m] = n;
        auto result = next.begin();
        for (;;) {
            // Without s0, the elements above it stand one position lower, whatever s0 is.
            size_t withoutLowest = 0;
            for (size_t i = 1; i < m; ++i)
                withoutLowest += binomials[s[i]][i];
            for (s[0] = 0; s[0] < s[1]; ++s[0])
                *result++ = ExpandSet(row, s.data(), withoutLowest);

            // The next set above s0: the lowest element that has room moves up, and those below it
            // start again.
            size_t i = 1;
            for (; i < m && s[i] + 1 == s[i + 1]; ++i)
                s[i] = i;
            if (i == m)
                return;
            ++s[i];
        }
    }

    double ExpandSet(const double* row, const size_t* s, size_t withoutLowest) const
    {
        double sum = 0.0;
        size_t place = withoutLowest;
        for (size_t j = 0;; ++j) {
            const double term = det[place] * row[s[j]];
            sum = j % 2 == 0 ? sum + term : sum - term;
            if (j + 1 == m)
                return sum;
            // s_j comes back at position j, where s_(j+1) stood.
            place += binomials[s[j]][j + 1] - binomials[s[j + 1]][j + 1];
        }
    }

    size_t n;
    size_t m = 0;
    std::vector<double> det;
    std::vector<double> next;
};

/// The transposed matrix of the minors, with alternating signs, times 1 / determinant. False when
/// that is 0.0.
bool DivideAdjugate(double* inverse, const double* minors, size_t n, double determinant)
{
    if (determinant == 0.0)
        return false;
    const double reciprocal = 1.0 / determinant;
    for (size_t i = 0; i < n; ++i)
        for (size_t j = 0; j < n; ++j) {
            const double minor = minors[i * n + j];
            inverse[j * n + i] = ((i + j) % 2 == 0 ? minor : -minor) * reciprocal;
        }
    return true;
}

/// The determinant without row i and column j, of a matrix that the tables are too small for.
double DeterminantWithout(const double* matrix, size_t n, size_t i, size_t j, size_t tableColumns)
{
    std::vector<double> minor((n - 1) * (n - 1));
    CopyWithout(minor.data(), matrix, n, i, j);
    return LaplaceDeterminant(minor.data(), n - 1, tableColumns);
}

}  // namespace

void CopyWithout(double* minor, const double* matrix, size_t n, size_t i, size_t j)
{
    for (size_t r = 0; r < n; ++r, matrix += n)
        if (r != i) {
            minor = std::copy_n(matrix, j, minor);
            minor = std::copy(matrix + j + 1, matrix + n, minor);
        }
}

double LaplaceDeterminant(const double* matrix, size_t n, size_t tableColumns)
{
    if (n == 4)  // the most frequent by far, and so quick that the order of the tests counts
        return Determinant4(matrix);
    if (n == 3)
        return Determinant3(matrix);
    if (n == 2)
        return Determinant2(matrix[0], matrix[1], matrix[2], matrix[3]);
    if (n < 2)
        return n == 0 ? 0.0 : matrix[0];
    if (n > tableColumns) {
        double sum = 0.0;
        for (size_t j = 0; j < n; ++j) {
            const double term = DeterminantWithout(matrix, n, 0, j, tableColumns) * matrix[j];
            sum = j % 2 == 0 ? sum + term : sum - term;
        }
        return sum;
    }
    MinorTable table(n);
    for (size_t r = n; r-- > 0;)
        table.AddRowOnTop(matrix + r * n);
    return table.OfAll();
}

void LaplaceMinors(double* minors, const double* matrix, size_t n, size_t tableColumns)
{
    if (n <= 4) {
        const auto minorsOf = n == 2 ? Minors2 : n == 3 ? Minors3 : Minors4;
        minorsOf(minors, matrix);
        return;
    }
    if (n > tableColumns) {
        for (size_t i = 0; i < n; ++i)
            for (size_t j = 0; j < n; ++j)
                *minors++ = DeterminantWithout(matrix, n, i, j, tableColumns);
        return;
    }
    // The minors without row i share the rows below it; only those above are added for each i.
    MinorTable below(n);
    for (size_t i = n; i-- > 0;) {
        MinorTable table(below);
        for (size_t r = i; r-- > 0;)
            table.AddRowOnTop(matrix + r * n);
        for (size_t j = 0; j < n; ++j)
            minors[i * n + j] = table.Without(j);
        below.AddRowOnTop(matrix + i * n);
    }
}

bool LaplaceInverse(double* inverse, const double* matrix, size_t n)
{
    if (n == 4) {
        double minors[16];
        Minors4(minors, matrix);
        return DivideAdjugate(inverse, minors, 4, Expand4(matrix, minors));
    }
    const double determinant = LaplaceDeterminant(matrix, n);
    if (determinant == 0.0)
        return false;
    // A minor of 1 x 1 is an empty matrix, whose determinant counts as 1 here and nowhere else.
    std::vector<double> minors(n * n, 1.0);
    if (n > 1)
        LaplaceMinors(minors.data(), matrix, n);
    return DivideAdjugate(inverse, minors.data(), n, determinant);
}

}  // namespace ZVMath
