#include "bench.h"
#include "zvmath/kernelpls.h"

#include <cmath>
#include <map>
#include <random>

namespace
{

using ZVMath::ZVKernelPLS;
using ZVMath::ZVSquareMatrix;

constexpr unsigned int numFeatures = 10;

/// A smooth function of random points in the unit cube, and their radial basis kernel.
struct Problem
{
    explicit Problem(unsigned int n) : kernel(n), response(n)
    {
        std::mt19937 random(n);
        std::uniform_real_distribution<double> uniform(0.0, 1.0);
        std::vector<double> x(n), y(n), z(n), row(n);
        for (unsigned int i = 0; i < n; ++i) {
            x[i] = uniform(random);
            y[i] = uniform(random);
            z[i] = uniform(random);
            response[i] = std::sin(6.0 * x[i]) + y[i] * y[i] - x[i] * z[i];
        }
        for (unsigned int i = 0; i < n; ++i) {
            for (unsigned int j = 0; j < n; ++j) {
                const double dx = x[i] - x[j], dy = y[i] - y[j], dz = z[i] - z[j];
                row[j] = std::exp(-4.0 * (dx * dx + dy * dy + dz * dz));
            }
            kernel.SetRowData(i, row);
        }
    }

    ZVSquareMatrix kernel;
    std::vector<double> response;
};

ZVKernelPLS Fitted(const Problem& problem)
{
    ZVKernelPLS model;
    model.Fit(problem.kernel, problem.response, numFeatures);
    return model;
}

/// Whether all features were used and explain all but a hundredth of the response.
bool Explains(const Problem& problem, const ZVKernelPLS& model)
{
    if (model.GetNumFeaturesUsed() != numFeatures)
        return false;
    const size_t n = problem.response.size();
    double residual = 0.0, total = 0.0;
    for (size_t i = 0; i < n; ++i) {
        const auto row = problem.kernel.GetData().begin() + static_cast<std::ptrdiff_t>(i * n);
        const std::vector<double> kernelRow(row, row + static_cast<std::ptrdiff_t>(n));
        residual += std::pow(problem.response[i] - model.Predict(kernelRow), 2);
        total += std::pow(problem.response[i], 2);
    }
    return residual < 0.01 * total;
}

/// Each feature reads the kernel once.
double ReadForEachFeature(const Problem& problem)
{
    const std::vector<double>& kernel = problem.kernel.GetData();
    double sum = 0.0;
    for (unsigned int feature = 0; feature < numFeatures; ++feature)
        sum += ReadAll(kernel.data(), kernel.size());
    return sum;
}

bool IsSum(const Problem& problem, double sum)
{
    double expected = 0.0;
    for (const double value : problem.kernel.GetData())
        expected += numFeatures * value;
    return std::fabs(sum - expected) <= 1e-9 * expected;
}

}  // namespace

void AddKernelplsBenchmarks()
{
    for (const unsigned int n : {500u, 1000u, 2000u}) {
        const std::string workload = "kernel PLS n=" + std::to_string(n) + ", 10 features";
        const auto problem = [n]() -> const Problem& {
            static std::map<unsigned int, Problem> made;
            return made.try_emplace(n, n).first->second;
        };
        AddBenchmark(workload, "zvmath", problem, Fitted, Explains);
        AddBenchmark(workload, "floor", problem, ReadForEachFeature, IsSum);
    }
}
