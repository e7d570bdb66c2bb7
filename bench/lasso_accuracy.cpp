// Writes a table of docs/lasso.md: how far paths of least-angle regression are from the same steps
// in long double. Standard input: what tests/references/lasso.py --peer writes, random problems and
// another library's paths.

#include "../tests/lasso_naive.h"
#include "zvmath/lasso.h"

#include <cmath>
#include <cstdio>
#include <iostream>
#include <random>
#include <sstream>
#include <string>

namespace
{

struct Path
{
    std::vector<unsigned int> actives;
    std::vector<std::vector<double>> coefficients;
};

Path ReadPath(std::istream& stream)
{
    Path path;
    for (std::string line; std::getline(stream, line) && !line.empty();) {
        std::istringstream numbers(line);
        path.coefficients.emplace_back();
        numbers >> path.actives.emplace_back();
        for (double beta; numbers >> beta;)
            path.coefficients.back().push_back(beta);
    }
    return path;
}

using Exact = ZVTest::NaiveLasso<long double>;

/// The largest error of a coefficient after a step, over the largest coefficient.
double Error(const Path& path, const Exact& exact, size_t step)
{
    long double error = 0.0, size = 0.0;
    for (size_t i = 0; i <= step; ++i) {
        const long double beta = exact.path[step][i];
        error = std::max(error, std::fabs(path.coefficients[step][i] - beta));
        size = std::max(size, std::fabs(beta));
    }
    return static_cast<double>(error / size);
}

/// The worst error of all steps, and the step in which the path becomes another one, if it does.
void Print(const Path& path, const Exact& exact)
{
    double worst = 0.0;
    for (size_t step = 0; step < exact.path.size(); ++step) {
        if (step >= path.actives.size() || path.actives[step] != exact.actives[step] ||
            Error(path, exact, step) > 1e-6) {
            std::printf(" %.1e, another path from step %zu |", worst, step + 1);
            return;
        }
        worst = std::max(worst, Error(path, exact, step));
    }
    std::printf(" %.1e |", worst);
}

/// The first step that ends with a coefficient of another sign than before, counted from 1; or 0.
size_t FirstChangeOfSign(const Exact& exact)
{
    for (size_t step = 1; step < exact.path.size(); ++step)
        for (size_t i = 0; i < step; ++i)
            if ((exact.path[step][i] < 0) != (exact.path[step - 1][i] < 0))
                return step + 1;
    return 0;
}

}  // namespace

int main()
{
    std::printf("| problem | steps | zvmath | naive, double | scikit-learn | first change of "
                "sign |\n|---|--:|--:|--:|---|--:|\n");
    unsigned int seed = 0;
    for (Eigen::Index rows = 0, columns = 0; std::cin >> seed >> rows >> columns;) {
        std::cin.ignore();
        const Path peer = ReadPath(std::cin);
        std::mt19937 random(seed);
        const auto uniform = [&] { return std::ldexp(static_cast<double>(random()), -31) - 1.0; };
        const Eigen::VectorXd y = Eigen::VectorXd::NullaryExpr(rows, uniform);
        const Eigen::MatrixXd x = Eigen::MatrixXd::NullaryExpr(rows, columns, uniform);
        ZVMath::ZVLasso model;
        model.Fit(x, y);
        const Exact exact(x, y, columns);
        const ZVTest::NaiveLasso<double> naive(x, y, columns);
        std::printf("| %td x %td | %zu |", rows, columns, exact.path.size());
        Print({model.GetActives(), model.GetCoefficients()}, exact);
        Print({naive.actives, naive.path}, exact);
        Print(peer, exact);
        std::printf(" %zu |\n", FirstChangeOfSign(exact));
    }
}
