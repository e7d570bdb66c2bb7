#include "zvmath/lasso.h"

#include "allocations.h"
#include "check.h"
#include "lasso_naive.h"
#include "references/lasso_reference.h"

#include <array>
#include <new>
#include <set>
#include <utility>

using namespace ZVMath;
using namespace ZVTest;
using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

namespace
{

/// Each step's entering variable and coefficients.
using Path = std::vector<std::pair<unsigned int, std::vector<double>>>;

Path PathOf(const ZVLasso& model)
{
    const std::vector<unsigned int> actives = model.GetActives();
    EXPECT_EQ(actives.size(), model.GetCoefficients().size());
    EXPECT_EQ(std::set<unsigned int>(actives.begin(), actives.end()).size(), actives.size());
    Path path;
    for (const unsigned int j : actives) {
        path.emplace_back(j, model.GetCoefficients().at(path.size()));
        EXPECT_EQ(path.back().second.size(), path.size());
    }
    return path;
}

struct Problem
{
    MatrixXd x;
    VectorXd y;

    Path Fit(size_t maxSteps = 4294967295) const
    {
        ZVLasso model;
        EXPECT_TRUE(model.Fit(x, y, static_cast<unsigned int>(maxSteps)));
        return PathOf(model);
    }
};

Problem Random(std::mt19937& random, Index rows, Index columns)
{
    const auto uniform = [&] { return Uniform(random); };
    const VectorXd y = VectorXd::NullaryExpr(rows, uniform);
    return {MatrixXd::NullaryExpr(rows, columns, uniform), y};
}

double Largest(const std::vector<double>& values)
{
    return VectorXd::Map(values.data(), static_cast<Index>(values.size())).cwiseAbs().maxCoeff();
}

void ExpectReference(const LassoReference& r, const Problem& problem, double slack)
{
    SCOPED_TRACE(r.name);
    const Path path = problem.Fit(r.path.size());
    // The amplification was measured with the same steps in another order of rounding, so it tells
    // the size of the errors and not their limit.
    for (size_t s = 0; s < r.path.size(); ++s) {
        EXPECT_EQ(path.at(s).first, r.actives[s]);
        EXPECT_TRUE(Near(path[s].second, r.path[s],
                         8 * r.amplification * epsilon * Largest(r.path[s]) + slack));
    }
}

TEST(Lasso, MatchesReferences)
{
    for (const LassoReference& r : lassoReferences) {
        const auto n = static_cast<Index>(r.y.size()), p = static_cast<Index>(r.x.size()) / n;
        ExpectReference(r, {MatrixXd::Map(r.x.data(), n, p), VectorXd::Map(r.y.data(), n)}, 0);
    }
    // Columns of mean 0 and standard deviation 1, and a response of mean 0.
    const std::vector<std::vector<double>> rows = ReadTable("diabetes.tsv");
    MatrixXd x(rows.size(), 11);
    for (Index i = 0; i < x.rows(); ++i)
        x.row(i) = VectorXd::Map(rows[static_cast<size_t>(i)].data(), 11).transpose();
    x.rowwise() -= x.colwise().mean().eval();
    for (Index j = 0; j < 10; ++j)
        x.col(j) /= std::sqrt(x.col(j).squaredNorm() / static_cast<double>(x.rows()));
    // Half a unit of the table's last place, and the peer's own error.
    ExpectReference(lassoPeer, {x.leftCols(10), x.col(10)}, 5e-11 + 1e-11);
}

TEST(Lasso, MatchesTheNaiveSteps)
{
    std::mt19937 random(1);
    std::vector<std::pair<Index, Index>> sizes = {{1000, 20}, {200, 100}, {60, 150}, {40, 39}};
    for (const Index rows : {2, 3, 4, 5, 9, 127, 128, 129, 258})
        for (const Index columns : {1, 2, 3, 4, 5, 8, 9, 17})
            sizes.emplace_back(rows, columns);
    for (const auto& [rows, columns] : sizes) {
        SCOPED_TRACE(testing::Message() << rows << " x " << columns);
        const Problem problem = Random(random, rows, columns);
        const Path path = problem.Fit();
        const NaiveLasso<long double> exact(problem.x, problem.y, columns);
        const NaiveLasso<double> rough(problem.x, problem.y, columns);
        ASSERT_EQ(rough.actives, exact.actives);
        double error = 2 * epsilon;  // of the naive steps in the same arithmetic
        for (size_t s = 0; s < exact.path.size(); ++s) {
            const std::vector<double> expected(exact.path[s].begin(), exact.path[s].end());
            const double size = Largest(expected);
            for (size_t i = 0; i <= s; ++i)
                error = std::max(error, std::abs(rough.path[s][i] - expected[i]) / size);
            ASSERT_EQ(path.at(s).first, exact.actives[s]) << s;
            ASSERT_TRUE(Near(path[s].second, expected, 8 * error * size)) << s;
        }
    }
}

TEST(Lasso, EveryStepKeepsTheCorrelationsOfActiveVariablesEqual)
{
    std::mt19937 random(2);
    for (const auto& [rows, columns] : {std::pair<Index, Index>{30, 8}, {300, 60}, {25, 70}}) {
        const Problem problem = Random(random, rows, columns);
        const Path path = problem.Fit();
        std::vector<double> former(path.size());
        double terms = problem.y.norm();  // the lengths of all that adds up to the residual
        for (size_t s = 0; s < path.size(); ++s) {
            SCOPED_TRACE(testing::Message() << rows << " x " << columns << ", step " << s);
            const bool last = s + 1 == path.size();
            EXPECT_EQ(problem.Fit(s + 1), Path(path.data(), path.data() + s + 1));
            Eigen::Matrix<long double, Eigen::Dynamic, 1> rest = problem.y.cast<long double>();
            for (size_t i = 0; i <= s; ++i) {
                const VectorXd column = problem.x.col(path[i].first);
                const double beta = path[s].second[i];
                rest -= beta * column.cast<long double>();
                terms += std::abs(beta - former[i]) * column.norm();
                former[i] = beta;
            }
            const VectorXd c = (problem.x.cast<long double>().transpose() * rest).cast<double>();
            // The last step goes on to the least-squares fit.
            const double C = last ? 0.0 : std::abs(c(path[0].first));
            // Sums over the rows twice, in u and x^T u; in the Cholesky factor and the two
            // solutions with it sums of at most s + 1 terms.
            const double bound = static_cast<double>(2 * rows + 3 * static_cast<Index>(s + 1)) *
                                 epsilon * problem.x.colwise().norm().maxCoeff() * terms;
            for (size_t i = 0; i <= s; ++i)
                EXPECT_TRUE(Near(std::abs(c(path[i].first)), C, bound)) << path[i].first;
            EXPECT_TRUE(last || c.cwiseAbs().maxCoeff() <= C + bound);
        }
    }
}

TEST(Lasso, DefinedCases)
{
    std::mt19937 random(3);
    const Problem problem = Random(random, 12, 4);
    const Path whole = Problem{problem.x.topRows(10), problem.y}.Fit();
    // Rows, columns, values of y, maxSteps, steps.
    const std::array<unsigned int, 5> cases[] = {
        {10, 4, 10, 4, 4}, {10, 4, 12, ~0u, 4}, {10, 4, 10, 3, 3}, {10, 4, 10, 0, 0},
        {3, 4, 3, 4, 2},   {2, 4, 2, 4, 1},     {1, 4, 1, 4, 0},   {10, 0, 10, 4, 0},
        {0, 4, 0, 4, 0},   {0, 0, 0, 4, 0},     {10, 4, 9, 4, 0},  {10, 4, 0, 4, 0}};
    ZVLasso model;
    EXPECT_EQ(PathOf(model), Path());
    for (const auto& [rows, columns, values, maxSteps, steps] : cases) {
        SCOPED_TRACE(testing::Message() << rows << " x " << columns << ", " << values);
        EXPECT_TRUE(model.Fit(problem.x, problem.y));  // leaves no trace in the next one
        EXPECT_TRUE(
            model.Fit(problem.x.topLeftCorner(rows, columns), problem.y.head(values), maxSteps));
        ASSERT_EQ(PathOf(model).size(), steps);
        EXPECT_TRUE(rows < 10 || PathOf(model) == Path(whole.begin(), whole.begin() + steps));
    }
    // Where nothing is a candidate, the last one enters and nothing moves.
    EXPECT_EQ((Problem{problem.x, VectorXd::Zero(12)}.Fit()),
              (Path{{0, {0}}, {3, {0, 0}}, {2, {0, 0, 0}}, {1, {0, 0, 0, 0}}}));
    MatrixXd withNaN = problem.x;
    withNaN(5, 3) = NaN;
    model.Fit(withNaN, VectorXd::Zero(12));
    EXPECT_EQ(model.GetActives(), (std::vector<unsigned int>{0, 2, 1, 3}));
}

TEST(Lasso, ColumnsOfZerosOrWithNaNComeLast)
{
    std::mt19937 random(5);
    for (const auto& [rows, columns] : {std::pair<Index, Index>{9, 5}, {5, 9}})
        for (Index i = 0; i < (rows + 1) * columns; ++i) {
            const Index row = i / columns, column = i % columns;  // row = rows: a column of zeros
            SCOPED_TRACE(testing::Message() << rows << " rows: " << row << ", " << column);
            Problem problem = Random(random, rows, columns);
            Problem without = {MatrixXd(rows, columns - 1), problem.y};
            without.x << problem.x.leftCols(column), problem.x.rightCols(columns - 1 - column);
            problem.x.col(column) *= row < rows ? 1.0 : 0.0;
            problem.x(std::min(row, rows - 1), column) *= row < rows ? NaN : 0.0;
            const size_t steps = static_cast<size_t>(std::min(rows - 1, columns));
            Path expected = without.Fit();
            for (auto& step : expected)
                step.first += step.first >= column ? 1 : 0;
            if (expected.size() < steps) {
                if (row < rows) {  // the NaN doesn't tell the step before how far to go
                    expected.back().second = expected[steps - 3].second;
                    expected.back().second.push_back(0.0);
                }
                expected.emplace_back(column, std::vector<double>(steps, NaN));
            }
            const Path path = problem.Fit();
            ASSERT_EQ(path.size(), steps);
            for (size_t s = 0; s < steps; ++s) {
                EXPECT_EQ(path[s].first, expected[s].first) << s;
                EXPECT_TRUE(SameBits(path[s].second, expected[s].second)) << s;
            }
        }
}

TEST(Lasso, EndsOnAnyInput)
{
    std::mt19937 random(6);
    const struct
    {
        const char* name;
        bool meaningless;  // from the first step on
        void (*harm)(Problem&, Index, Index);
    } cases[] = {
        {"zeros", true, [](Problem& q, Index, Index) { q.x.setZero(); }},
        {"infinity in x", true, [](Problem& q, Index i, Index j) { q.x(i, j) = inf; }},
        {"-infinity in x", true, [](Problem& q, Index i, Index j) { q.x(i, j) = -inf; }},
        {"all NaN", true, [](Problem& q, Index, Index) { q.x.setConstant(NaN); }},
        {"NaN in y", true, [](Problem& q, Index i, Index) { q.y(i) = NaN; }},
        {"infinity in y", false, [](Problem& q, Index i, Index) { q.y(i) = -inf; }},
        {"squares overflow", true, [](Problem& q, Index, Index) { q.x *= 1e200; }},
        {"squares vanish", true, [](Problem& q, Index, Index) { q.x *= 1e-200; }},
        {"duplicate", false, [](Problem& q, Index i, Index j) { q.x.col(i % 5) = q.x.col(j); }},
        {"negative", false, [](Problem& q, Index i, Index j) { q.x.col(i % 5) = -q.x.col(j); }},
        {"constant", false, [](Problem& q, Index, Index) { q.x.setConstant(3); }},
        {"sum", false, [](Problem& q, Index, Index j) { q.x.col(j) = q.x.rowwise().sum(); }},
        {"exact fit", false, [](Problem& q, Index, Index j) { q.y = 3 * q.x.col(j); }},
    };
    for (const auto& c : cases)
        for (const auto& [rows, columns] : {std::pair<Index, Index>{9, 5}, {5, 9}})
            for (Index i = 0; i < rows * columns; ++i) {
                SCOPED_TRACE(testing::Message() << c.name << ' ' << rows << ": " << i);
                Problem problem = Random(random, rows, columns);
                c.harm(problem, i % rows, i / rows);
                const Path path = problem.Fit();
                EXPECT_EQ(path.size(), static_cast<size_t>(std::min(rows - 1, columns)));
                for (const auto& [entered, coefficients] : path) {
                    EXPECT_LT(entered, columns);
                    for (const double beta : coefficients)
                        EXPECT_TRUE(!c.meaningless || !std::isfinite(beta)) << beta;
                }
            }
}

TEST(Lasso, KeepsThePathWhenMemoryRunsOut)
{
    std::mt19937 random(7);
    const Problem problem = Random(random, 12, 9);
    ZVLasso model;
    EXPECT_TRUE(model.Fit(problem.x, problem.y, 3));
    int failures = 0;
    for (bool fitted = false; !fitted; failures += fitted ? 0 : 1) {
        ASSERT_LT(failures, 1000);
        try {
            const FailingAllocation failing(failures);
            fitted = model.Fit(problem.x, problem.y);
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(PathOf(model), problem.Fit(3));
        }
    }
    EXPECT_GT(failures, 9);
    EXPECT_EQ(PathOf(model), problem.Fit());
}

}  // namespace
