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
// mu        the fit so far, x * beta
// c         the correlations x^T (y - mu)
// gram      x^T x of the columns that are active, and here of all columns with those
// w         the direction in which the active coefficients move
// u         x * w over the active columns: a unit vector at equal angles with all of them
// h         x^T u
// gamma     how far a step goes

/// Rows are taken in blocks: what a step needs of a block, it needs several times, and reads from
/// memory once.
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

ZVMATH_CLONES void AddProductsWithOne(double* sums, const double* x, size_t stride, size_t p,
                                      const double* side, size_t n)
{
    AddAllProducts<1>(&sums, x, stride, p, &side, n);
}

ZVMATH_CLONES void AddProductsWithTwo(double* const* sums, const double* x, size_t stride, size_t p,
                                      const double* const* sides, size_t n)
{
    AddAllProducts<2>(sums, x, stride, p, sides, n);
}

/// out[r] += factors[0] * columns[0][r], then factors[1] * columns[1][r] and so on.
template <size_t count>
ZVMATH_INLINE void AddMultiples(double* out, const double* const* columns, size_t offset,
                                const double* factors, size_t n)
{
    // Copies, which can't be changed through `out`, stay in registers.
    const double* column[count];
    Vec4 factor[count];
    for (size_t k = 0; k < count; ++k) {
        column[k] = columns[k] + offset;
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

/// out[r] = the sum of factors[i] * columns[i][offset + r], i ascending, from zero.
ZVMATH_CLONES void Combine(double* out, const std::vector<const double*>& columns, size_t offset,
                           const std::vector<double>& factors, size_t n)
{
    constexpr size_t group = 8;
    std::fill_n(out, n, 0.0);
    size_t i = 0;
    for (; i + group <= factors.size(); i += group)
        AddMultiples<group>(out, columns.data() + i, offset, factors.data() + i, n);
    for (; i < factors.size(); ++i)
        AddMultiples<1>(out, columns.data() + i, offset, factors.data() + i, n);
}

struct Problem
{
    const double* x;
    size_t n;
    size_t p;
    const double* y;

    const double* Column(size_t j) const { return x + j * n; }
};

/// The path of one fit.
class Path
{
public:
    explicit Path(const Problem& fitted)
        : problem(fitted), lastStep(std::min(fitted.n - 1, fitted.p) - 1), mu(fitted.n),
          c(fitted.p), h(fitted.p)
    {
        for (size_t j = 0; j < problem.p; ++j)
            inactive.push_back(static_cast<unsigned int>(j));
    }

    void Run(size_t steps);

    std::vector<std::vector<double>> coefficients;
    std::vector<unsigned int> actives;

private:
    size_t MostCorrelated() const;
    void Activate(size_t j, std::vector<double> gramColumn);
    void ExtendFactor();
    void ComputeSigns();
    double ComputeDirection();
    double ChooseStep(double largest, double A);
    void MoveCoefficients(double gamma);
    std::vector<double> MoveFit(double gamma);

    /// Row i of the lower triangular Cholesky factor of the active part of the Gram matrix.
    double* FactorRow(size_t i) { return factor.data() + i * (i + 1) / 2; }

    const Problem& problem;
    const size_t lastStep;  // the one that goes to the least-squares fit
    std::vector<double> mu, c, h;
    std::vector<unsigned int> inactive;  // ascending
    unsigned int entering = 0;

    // For each active variable:
    std::vector<const double*> activeColumns;
    std::vector<std::vector<double>> gramColumns;  // with all p columns
    std::vector<const double*> gramPointers;
    std::vector<double> factor;  // row after row, each as long as it is
    std::vector<double> signs;
    std::vector<double> halfSolved;  // factor^-1 * signs
    std::vector<double> w;
    std::vector<double> beta;
};

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

void Path::Run(size_t steps)
{
    if (steps == 0)
        return;
    const auto correlate = [this](double* sums, const double* side) {
        for (size_t begin = 0; begin < problem.n; begin += rowsPerBlock)
            AddProductsWithOne(sums, problem.x + begin, problem.n, problem.p, side + begin,
                               std::min(rowsPerBlock, problem.n - begin));
    };
    correlate(c.data(), problem.y);
    entering = static_cast<unsigned int>(MostCorrelated());
    std::vector<double> gramColumn(problem.p);
    correlate(gramColumn.data(), problem.Column(entering));
    for (size_t step = 0;; ++step) {
        Activate(entering, std::move(gramColumn));
        ExtendFactor();
        ComputeSigns();
        const double A = ComputeDirection();
        const double largest = std::fabs(c[MostCorrelated()]);
        const double gamma = step == lastStep ? largest / A : ChooseStep(largest, A);
        MoveCoefficients(gamma);
        if (step + 1 == steps)
            return;
        gramColumn = MoveFit(gamma);
    }
}

void Path::Activate(size_t j, std::vector<double> gramColumn)
{
    actives.push_back(static_cast<unsigned int>(j));
    inactive.erase(std::find(inactive.begin(), inactive.end(), j));
    activeColumns.push_back(problem.Column(j));
    gramColumns.push_back(std::move(gramColumn));
    gramPointers.push_back(gramColumns.back().data());
    beta.push_back(0.0);
}

/// The row of the newest variable. A pivot that is not positive makes it NaN or infinite.
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
void Path::ComputeSigns()
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

/// w = A G^-1 signs; returns A.
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

/// The smallest positive gamma with which an inactive variable catches up; that variable enters
/// next. (There is one: with none left, the step before was the last.)
double Path::ChooseStep(double largest, double A)
{
    Combine(h.data(), gramPointers, 0, w, problem.p);
    double gamma = 0.0;  // no candidate yet
    entering = inactive.back();
    for (const unsigned int m : inactive)
        for (const double candidate :
             {(largest + c[m]) / (A + h[m]), (largest - c[m]) / (A - h[m])})
            if (candidate > 0.0 && (gamma == 0.0 || gamma > candidate)) {
                gamma = candidate;
                entering = m;
            }
    return gamma;
}

void Path::MoveCoefficients(double gamma)
{
    AddScaled(beta.data(), gamma, w.data(), w.size());
    coefficients.push_back(beta);
}

/// Moves the fit, and computes in the same reading of x the correlations and the entering
/// variable's column of the Gram matrix, which is the result.
std::vector<double> Path::MoveFit(double gamma)
{
    std::vector<double> gramColumn(problem.p);
    std::fill(c.begin(), c.end(), 0.0);
    double* const sums[] = {c.data(), gramColumn.data()};
    double residual[rowsPerBlock];
    for (size_t begin = 0; begin < problem.n; begin += rowsPerBlock) {
        const size_t n = std::min(rowsPerBlock, problem.n - begin);
        Combine(residual, activeColumns, begin, w, n);  // u at first
        for (size_t i = 0; i < n; ++i) {
            mu[begin + i] += gamma * residual[i];
            residual[i] = problem.y[begin + i] - mu[begin + i];
        }
        const double* const sides[] = {residual, problem.Column(entering) + begin};
        AddProductsWithTwo(sums, problem.x + begin, problem.n, problem.p, sides, n);
    }
    return gramColumn;
}

}  // namespace

bool ZVLasso::FitColumns(const double* x, unsigned int rows, unsigned int columns, const double* y,
                         size_t ySize, unsigned int maxSteps)
{
    std::vector<std::vector<double>> newCoefficients;
    std::vector<unsigned int> newActives;
    if (rows > 1 && columns > 0 && ySize >= rows) {
        const Problem problem{x, rows, columns, y};
        Path path(problem);
        path.Run(std::min({size_t{maxSteps}, problem.n - 1, problem.p}));
        newCoefficients.swap(path.coefficients);
        newActives.swap(path.actives);
    }
    coefficients.swap(newCoefficients);
    actives.swap(newActives);
    return true;
}

}  // namespace ZVMath
