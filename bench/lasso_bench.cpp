#include "bench.h"
#include "zvmath/lasso.h"

#ifdef ZVMATH_HAVE_PYTHON
#include "python_peer.h"
#endif

#include <Eigen/Core>

#include <cmath>
#include <fstream>
#include <limits>
#include <map>
#include <memory>
#include <random>

namespace
{

using Eigen::MatrixXd;
using Eigen::VectorXd;
using ZVMath::ZVLasso;

/// Columns of mean 0 and variance 1, and a response of mean 0.
struct Problem
{
    MatrixXd x;
    VectorXd y;
};

Problem Standardised(MatrixXd x, VectorXd y)
{
    x.rowwise() -= x.colwise().mean();
    for (Eigen::Index j = 0; j < x.cols(); ++j)
        x.col(j) *= std::sqrt(static_cast<double>(x.rows())) / x.col(j).norm();
    y.array() -= y.mean();
    return {std::move(x), std::move(y)};
}

const Problem& Diabetes()
{
    static const Problem problem = [] {
        MatrixXd x(442, 10);
        VectorXd y(442);
        std::ifstream file(ZVMATH_DATA_DIR "/diabetes.tsv");
        file.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
        for (Eigen::Index i = 0; i < x.rows(); ++i) {
            for (Eigen::Index j = 0; j < x.cols(); ++j)
                file >> x(i, j);
            file >> y[i];
        }
        return Standardised(std::move(x), std::move(y));
    }();
    return problem;
}

/// A response to all variables, and noise, with which no coefficient changes its sign on the path:
/// from there on scikit-learn's path is another, since it takes a step without a new variable.
const Problem& Random(Eigen::Index n, Eigen::Index p)
{
    static std::map<std::pair<Eigen::Index, Eigen::Index>, Problem> made;
    auto problem = made.find({n, p});
    if (problem == made.end()) {
        std::mt19937 random(6);
        std::normal_distribution<double> normal;
        const auto draw = [&](double) { return normal(random); };
        const MatrixXd x = MatrixXd::Zero(n, p).unaryExpr(draw);
        std::uniform_real_distribution<double> strength(1.0, 2.0);
        const VectorXd beta = VectorXd::Zero(p).unaryExpr(
            [&](double) { return random() % 2 == 0 ? strength(random) : -strength(random); });
        const VectorXd noise = VectorXd::Zero(n).unaryExpr(draw);
        problem = made.emplace(std::make_pair(n, p), Standardised(x, x * beta + noise)).first;
    }
    return problem->second;
}

/// The coefficients of all variables after each step, step by step as columns.
MatrixXd AllCoefficients(const ZVLasso& model, Eigen::Index p)
{
    const std::vector<std::vector<double>> path = model.GetCoefficients();
    const std::vector<unsigned int> actives = model.GetActives();
    MatrixXd all = MatrixXd::Zero(p, static_cast<Eigen::Index>(path.size()));
    for (size_t step = 0; step < path.size(); ++step)
        for (size_t k = 0; k < path[step].size(); ++k)
            all(actives[k], static_cast<Eigen::Index>(step)) = path[step][k];
    return all;
}

/// Whether after each step the variables that were active in it are the most correlated ones, all
/// equally, and at the end nothing correlates.
bool IsPath(const Problem& problem, const ZVLasso& model)
{
    const Eigen::Index p = problem.x.cols();
    const std::vector<unsigned int> actives = model.GetActives();
    const MatrixXd coefficients = AllCoefficients(model, p);
    if (coefficients.cols() != p)
        return false;
    const MatrixXd residuals = (-problem.x * coefficients).colwise() + problem.y;
    const MatrixXd correlations = (problem.x.transpose() * residuals).cwiseAbs();
    const double tolerance = 1e-9 * (problem.x.transpose() * problem.y).cwiseAbs().maxCoeff();
    for (Eigen::Index step = 0; step < p; ++step) {
        const double largest = step + 1 < p ? correlations.col(step).maxCoeff() : 0.0;
        for (Eigen::Index k = 0; k <= step; ++k)
            if (!(std::fabs(correlations(actives[static_cast<size_t>(k)], step) - largest) <=
                  tolerance))
                return false;
    }
    return true;
}

#ifdef ZVMATH_HAVE_PYTHON
/// Whether all steps have the coefficients of ours.
bool IsOurPath(const Problem& problem, const PythonObject& result)
{
    ZVLasso ours;
    ours.Fit(problem.x, problem.y);
    const Eigen::Index p = problem.x.cols();
    const MatrixXd expected = AllCoefficients(ours, p);
    // A row for each variable, a column for each step; the first is the start of the path.
    const std::vector<double> theirs = result.Numbers("result[2].T[1:].ravel()");
    if (theirs.size() != static_cast<size_t>(p * p))
        return false;
    const Eigen::Map<const MatrixXd> coefficients(theirs.data(), p, p);
    return (coefficients - expected).cwiseAbs().maxCoeff() <= 1e-9 * expected.cwiseAbs().maxCoeff();
}
#endif

template <class Input> void AddPath(const std::string& workload, Input input)
{
    AddBenchmark(
        workload, "zvmath", input,
        [](const Problem& problem) {
            ZVLasso model;
            model.Fit(problem.x, problem.y);
            return model;
        },
        IsPath);
#ifdef ZVMATH_HAVE_PYTHON
    if (PythonVersion("sklearn").empty())
        return;
    // It computes the Gram matrix first; without ('Gram=None') it is slower at all three sizes.
    const auto function = std::make_shared<std::unique_ptr<PythonFunction>>();
    AddBenchmark(
        workload, "scikit-learn", input,
        [function](const Problem& problem) {
            if (!*function) {
                const auto n = static_cast<size_t>(problem.x.rows());
                const auto p = static_cast<size_t>(problem.x.cols());
                *function = std::make_unique<PythonFunction>(
                    "from sklearn.linear_model import lars_path",
                    std::vector<PythonArray>{{"X", problem.x.data(), n, p},
                                             {"y", problem.y.data(), n}},
                    "lars_path(X, y, method='lar', Gram='auto')");
            }
            return (**function)();
        },
        IsOurPath);
#endif
}

}  // namespace

void AddLassoBenchmarks()
{
#ifdef ZVMATH_HAVE_PYTHON
    if (const std::string version = PythonVersion("sklearn"); !version.empty())
        peerVersions.push_back("scikit-learn " + version);
#endif
    AddPath("least-angle path, diabetes 442 x 10", Diabetes);
    AddPath("least-angle path 1000 x 500", []() -> const Problem& { return Random(1000, 500); });
    AddPath("least-angle path 5000 x 100", []() -> const Problem& { return Random(5000, 100); });
}
