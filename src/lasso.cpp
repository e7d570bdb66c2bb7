#include "zvmath/lasso.h"

#include "multiversion.h"
#include "vector_loops.h"

#include <algorithm>
#include <cmath>

namespace ZVMath
{

namespace
{

// The symbols of Efron, Hastie, Johnstone and Tibshirani (2004):
// x         the n x p matrix of the variables, column by column
// c         the correlations x^T (y - x * beta)
// G         the Gram matrix x^T x, or such columns of it as are needed
// w         the direction in which the active coefficients move
// h         x^T x * w over the active columns: what c loses on the way
// gamma     how far a step goes
//
// c is updated, c - gamma * h, rather than computed anew from what is left of y: that takes no more
// reading of x, and adds up fewer roundings.

/// Products of columns are summed block by block, so that what is needed several times stays in the
/// cache, and rounding errors stay small.
constexpr size_t rowsPerBlock = 256;

/// sums[k][j] += column j * side k, for columns and sides of n elements. Four partial sums, element
/// i into sum i % 4; at the end (0 + 2) + (1 + 3). Meanwhile memory is asked for what lies `ahead`.
template <size_t numColumns, size_t numSides>
ZVMATH_INLINE void AddProducts(double* const* sums, const double* const* columns,
                               const double* const* sides, size_t n, size_t ahead)
{
    Vec4 lanes[numSides][numColumns] = {};
    size_t i = 0;
    for (; i + 4 <= n; i += 4)
        for (size_t j = 0; j < numColumns; ++j) {
            __builtin_prefetch(columns[j] + i + ahead);
            const Vec4 x = Four(columns[j] + i).v;
            for (size_t k = 0; k < numSides; ++k)
                lanes[k][j] += x * Four(sides[k] + i).v;
        }
    for (size_t lane = 0; i < n; ++i, ++lane)
        for (size_t j = 0; j < numColumns; ++j)
            for (size_t k = 0; k < numSides; ++k)
                lanes[k][j][lane] += columns[j][i] * sides[k][i];
    for (size_t k = 0; k < numSides; ++k)
        for (size_t j = 0; j < numColumns; ++j) {
            const Vec4& sum = lanes[k][j];
            sums[k][j] += (sum[0] + sum[2]) + (sum[1] + sum[3]);
        }
}

/// The same for p columns of which each begins `stride` elements after the one before.
template <size_t numSides>
ZVMATH_INLINE void AddAllProducts(double* const* sums, const double* x, size_t stride, size_t p,
                                  const double* const* sides, size_t n)
{
    constexpr size_t group = 4;
    double* next[numSides];
    std::copy_n(sums, numSides, next);
    size_t j = 0;
    for (; j + group <= p; j += group) {
        const double* columns[group];
        for (size_t k = 0; k < group; ++k)
            columns[k] = x + (j + k) * stride;
        const size_t ahead = j + 2 * group <= p ? group * stride : 0;
        AddProducts<group, numSides>(next, columns, sides, n, ahead);
        for (double*& sum : next)
            sum += group;
    }
    for (; j < p; ++j) {
        const double* column = x + j * stride;
        AddProducts<1, numSides>(next, &column, sides, n, 0);
        for (double*& sum : next)
            ++sum;
    }
}

struct Problem
{
    const double* x;
    size_t n;
    size_t p;
    const double* y;

    const double* Column(size_t j) const { return x + j * n; }
};

/// out[j] = column j of x times `side`.
ZVMATH_CLONES void MultiplyColumns(double* out, const Problem& problem, const double* side)
{
    std::fill_n(out, problem.p, 0.0);
    for (size_t begin = 0; begin < problem.n; begin += rowsPerBlock) {
        const double* const part = side + begin;
        AddAllProducts<1>(&out, problem.x + begin, problem.n, problem.p, &part,
                          std::min(rowsPerBlock, problem.n - begin));
    }
}

/// All of G, which is zero at first, with the same bits as column by column.
ZVMATH_CLONES void ComputeGram(double* gram, const Problem& problem)
{
    const size_t p = problem.p;
    for (size_t begin = 0; begin < problem.n; begin += rowsPerBlock) {
        const size_t n = std::min(rowsPerBlock, problem.n - begin);
        size_t k = 0;
        for (; k + 2 <= p; k += 2) {
            double* const sums[] = {gram + k * p, gram + (k + 1) * p};
            const double* const sides[] = {problem.Column(k) + begin,
                                           problem.Column(k + 1) + begin};
            AddAllProducts<2>(sums, problem.x + begin, problem.n, k + 2, sides, n);
        }
        if (k < p) {
            double* const sums = gram + k * p;
            const double* const side = problem.Column(k) + begin;
            AddAllProducts<1>(&sums, problem.x + begin, problem.n, p, &side, n);
        }
    }
    for (size_t k = 0; k < p; ++k)
        for (size_t j = 0; j < k; ++j)
            gram[j * p + k] = gram[k * p + j];
}

/// out[r] += factors[0] * columns[0][r], then factors[1] * columns[1][r] and so on.
template <size_t count>
ZVMATH_INLINE void AddMultiples(double* out, const double* const* columns, const double* factors,
                                size_t n)
{
    // Copies, which can't be changed through `out`, stay in registers.
    const double* column[count];
    Vec4 factor[count];
    for (size_t k = 0; k < count; ++k) {
        column[k] = columns[k];
        factor[k] = Vec4{} + factors[k];
    }
    size_t r = 0;
    for (; r + 8 <= n; r += 8) {
        Vec4 low = Four(out + r).v;
        Vec4 high = Four(out + r + 4).v;
        for (size_t k = 0; k < count; ++k) {
            low += factor[k] * Four(column[k] + r).v;
            high += factor[k] * Four(column[k] + r + 4).v;
        }
        Four(out + r).v = low;
        Four(out + r + 4).v = high;
    }
    for (; r < n; ++r)
        for (size_t k = 0; k < count; ++k)
            out[r] += factors[k] * column[k][r];
}

/// out[r] = the sum of factors[i] * columns[i][r], i ascending, from zero.
ZVMATH_CLONES void Combine(double* out, const std::vector<const double*>& columns,
                           const std::vector<double>& factors, size_t n)
{
    constexpr size_t group = 8;
    std::fill_n(out, n, 0.0);
    size_t i = 0;
    for (; i + group <= factors.size(); i += group)
        AddMultiples<group>(out, columns.data() + i, factors.data() + i, n);
    for (; i < factors.size(); ++i)
        AddMultiples<1>(out, columns.data() + i, factors.data() + i, n);
}

/// The path of one fit.
class Path
{
public:
    /// Of `numSteps` > 0 steps.
    Path(const Problem& problem, size_t numSteps);

    std::vector<std::vector<double>> coefficients;
    std::vector<unsigned int> actives;

private:
    size_t MostCorrelated() const;
    void Activate(unsigned int j);
    void ExtendFactor();
    void UpdateSigns();
    double ComputeDirection();
    double ChooseStep(double largest, double A);
    void MoveCoefficients(double gamma);

    /// Row i of the lower triangular Cholesky factor of the active part of G.
    double* FactorRow(size_t i) { return factor.data() + i * (i + 1) / 2; }

    const Problem& problem;
    std::vector<double> c, h;
    std::vector<unsigned int> inactive;  // ascending
    unsigned int entering = 0;
    std::vector<double> gram;  // all of it, or nothing

    // For each active variable:
    std::vector<std::vector<double>> ownedColumns;  // of G, unless all of it is there
    std::vector<const double*> gramColumns;
    std::vector<double> factor;  // row after row, each as long as it is
    std::vector<double> signs;
    std::vector<double> halfSolved;  // factor^-1 * signs
    std::vector<double> w;
    std::vector<double> beta;
};

Path::Path(const Problem& fitted, size_t numSteps) : problem(fitted), c(fitted.p), h(fitted.p)
{
    const size_t p = problem.p;
    for (size_t j = 0; j < p; ++j)
        inactive.push_back(static_cast<unsigned int>(j));
    // Symmetric, G costs as much as half its columns.
    if (numSteps >= p - p / 2) {
        gram.resize(p * p);
        ComputeGram(gram.data(), problem);
    }
    MultiplyColumns(c.data(), problem, problem.y);
    entering = static_cast<unsigned int>(MostCorrelated());
    const size_t lastStep = std::min(problem.n - 1, p) - 1;  // the one to the least-squares fit
    for (size_t step = 0; step < numSteps; ++step) {
        Activate(entering);
        ExtendFactor();
        UpdateSigns();
        const double A = ComputeDirection();
        const double largest = std::fabs(c[MostCorrelated()]);
        if (step == lastStep) {
            MoveCoefficients(largest / A);
            break;
        }
        const double gamma = ChooseStep(largest, A);
        MoveCoefficients(gamma);
        AddScaled(c.data(), -gamma, h.data(), p);
    }
}

/// The largest |c_i|, of equal ones the first. A NaN is no correlation, unless there is nothing
/// else.
size_t Path::MostCorrelated() const
{
    size_t best = 0;
    for (size_t i = 1; i < problem.p; ++i)
        if (std::fabs(c[i]) > std::fabs(c[best]) || (std::isnan(c[best]) && !std::isnan(c[i])))
            best = i;
    return best;
}

void Path::Activate(unsigned int j)
{
    actives.push_back(j);
    inactive.erase(std::find(inactive.begin(), inactive.end(), j));
    beta.push_back(0.0);
    if (gram.empty()) {
        ownedColumns.emplace_back(problem.p);
        MultiplyColumns(ownedColumns.back().data(), problem, problem.Column(j));
        gramColumns.push_back(ownedColumns.back().data());
    } else
        gramColumns.push_back(gram.data() + j * problem.p);
}

/// By the row of the newest variable. A pivot that is not positive makes it NaN or infinite.
void Path::ExtendFactor()
{
    const size_t last = actives.size() - 1;
    factor.resize(factor.size() + actives.size());
    double* const row = FactorRow(last);
    for (size_t i = 0; i < last; ++i) {
        const double* const other = FactorRow(i);
        row[i] = (gramColumns[last][actives[i]] - Dot(other, row, i)) / other[i];
    }
    row[last] = std::sqrt(gramColumns[last][actives[last]] - Dot(row, row, last));
}

/// And what of the system depends on them: as signs rarely change, most of it stays as it is.
void Path::UpdateSigns()
{
    signs.push_back(0.0);
    halfSolved.push_back(0.0);
    size_t changed = actives.size() - 1;
    for (size_t i = 0; i < actives.size(); ++i) {
        const double correlation = c[actives[i]];
        const double sign = correlation >= 0.0 ? 1.0 : correlation < 0.0 ? -1.0 : 0.0;
        if (sign != signs[i])
            changed = std::min(changed, i);
        signs[i] = sign;
    }
    for (size_t i = changed; i < actives.size(); ++i) {
        const double* const row = FactorRow(i);
        halfSolved[i] = (signs[i] - Dot(row, halfSolved.data(), i)) / row[i];
    }
}

/// w = A * (active part of G)^-1 * signs; returns A.
double Path::ComputeDirection()
{
    w = halfSolved;
    for (size_t i = w.size(); i-- > 0;) {
        const double* const row = FactorRow(i);
        w[i] /= row[i];
        AddScaled(w.data(), -w[i], row, i);
    }
    const double A = 1.0 / std::sqrt(Dot(signs.data(), w.data(), w.size()));
    Scale(w.data(), A, w.size());
    return A;
}

/// Finds h, and the smallest positive gamma with which an inactive variable catches up; that
/// variable enters next. (There is one: with none left, the step before was the last.)
double Path::ChooseStep(double largest, double A)
{
    Combine(h.data(), gramColumns, w, problem.p);
    double gamma = 0.0;  // no positive candidate yet
    entering = inactive.back();
    for (const unsigned int m : inactive)
        for (const double candidate :
             {(largest + c[m]) / (A + h[m]), (largest - c[m]) / (A - h[m])}) {
            const bool isNext =
                gamma == 0.0 ? !std::isnan(candidate) : candidate > 0.0 && candidate < gamma;
            if (isNext) {
                gamma = candidate > 0.0 ? candidate : 0.0;
                entering = m;
            }
        }
    return gamma;
}

void Path::MoveCoefficients(double gamma)
{
    AddScaled(beta.data(), gamma, w.data(), w.size());
    coefficients.push_back(beta);
}

}  // namespace

bool ZVLasso::FitColumns(const double* x, unsigned int rows, unsigned int columns, const double* y,
                         size_t ySize, unsigned int maxSteps)
{
    std::vector<std::vector<double>> newCoefficients;
    std::vector<unsigned int> newActives;
    if (rows > 1 && columns > 0 && ySize >= rows && maxSteps > 0) {
        const Problem problem{x, rows, columns, y};
        Path path(problem, std::min({size_t{maxSteps}, problem.n - 1, problem.p}));
        newCoefficients.swap(path.coefficients);
        newActives.swap(path.actives);
    }
    coefficients.swap(newCoefficients);
    actives.swap(newActives);
    return true;
}

}  // namespace ZVMath
