// Which of ten measurements tell how far diabetes has progressed after a year? Lets them into a
// linear model one by one, by least-angle regression, and draws how their coefficients grow.

#include "table.h"

#include "zvmath/lasso.h"
#include "zvmath/stats.h"

#include <algorithm>
#include <numeric>

namespace
{

/// What the variables have to tell: standardised, so that correlations and coefficients of all can
/// be compared, and a response of mean 0, since the model has no intercept.
struct Problem
{
    Eigen::MatrixXd x;
    Eigen::VectorXd y;
};

Problem Prepared(Table& table)
{
    const std::vector<double> response = TakeLastColumn(table);
    const double mean = ZVMath::ZVMean(response);
    Standardise(table.rows, ScalesOf(table.rows));
    const auto n = static_cast<Eigen::Index>(table.rows.size());
    const auto p = static_cast<Eigen::Index>(table.names.size());
    Problem problem{Eigen::MatrixXd(n, p), Eigen::VectorXd(n)};
    for (Eigen::Index i = 0; i < n; ++i) {
        problem.x.row(i) = Eigen::RowVectorXd::Map(table.rows[static_cast<size_t>(i)].data(), p);
        problem.y(i) = response[static_cast<size_t>(i)] - mean;
    }
    return problem;
}

std::vector<double> Fitted(const Problem& problem, const std::vector<unsigned int>& actives,
                           const std::vector<double>& beta)
{
    Eigen::VectorXd fit = Eigen::VectorXd::Zero(problem.y.size());
    for (size_t i = 0; i < beta.size(); ++i)
        fit += beta[i] * problem.x.col(actives[i]);
    return {fit.data(), fit.data() + fit.size()};
}

/// Where to write the names beside the ends of the lines: lifted where they would overlap.
std::vector<double> Heights(const std::vector<double>& ends, double gap)
{
    std::vector<size_t> order(ends.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::sort(order.begin(), order.end(), [&](size_t a, size_t b) { return ends[a] < ends[b]; });
    std::vector<double> heights(ends);
    for (size_t i = 1; i < order.size(); ++i)
        heights[order[i]] = std::max(heights[order[i]], heights[order[i - 1]] + gap);
    return heights;
}

void Run(const std::string& data, const std::string& output)
{
    Table table = ReadTable(data + "/diabetes.tsv");
    const Problem problem = Prepared(table);
    const std::vector<double> measured(problem.y.data(), problem.y.data() + problem.y.size());
    ZVMath::ZVLasso model;
    model.Fit(problem.x, problem.y);
    const std::vector<std::vector<double>> path = model.GetCoefficients();
    const std::vector<unsigned int> actives = model.GetActives();

    std::printf("%zu patients, %zu measurements\n\n", table.rows.size(), table.names.size());
    std::printf("                            coefficients after the step\n");
    std::printf("step  enters      r    R^2 ");
    for (const unsigned int j : actives)
        std::printf("%7s", table.names[j].c_str());
    std::printf("\n");

    Eigen::VectorXd rest = problem.y;
    std::vector<ZVMath::ZVDataSeries> lines(path.size());  // coefficients by the sum of their sizes
    std::vector<double> entries = {0.0};
    for (size_t step = 0; step < path.size(); ++step) {
        const std::vector<double>& beta = path[step];
        // The correlation with what the variables before have left: the same for all of them.
        const auto enters = problem.x.col(actives[step]);
        const double correlation = enters.dot(rest) / (enters.norm() * rest.norm());
        const std::vector<double> fit = Fitted(problem, actives, beta);
        rest = problem.y - Eigen::VectorXd::Map(fit.data(), rest.size());
        std::printf("%4zu  %-6s %6.3f  %5.3f ", step + 1, table.names[actives[step]].c_str(),
                    correlation, ZVMath::ZVRSquared(measured, fit));
        double sum = 0.0;
        for (const double b : beta) {
            std::printf("%7.2f", b);
            sum += std::abs(b);
        }
        std::printf("\n");
        lines[step].AddPoint({entries.back(), 0.0});
        for (size_t i = 0; i < beta.size(); ++i)
            lines[i].AddPoint({sum, beta[i]});
        entries.push_back(sum);
    }

    std::ofstream file = OpenForWriting(output + "/lasso.dat");
    file << "# name, where it enters, height of its label\n";
    const std::vector<double> heights = Heights(path.back(), 3.2);
    for (size_t i = 0; i < actives.size(); ++i)
        file << table.names[actives[i]] << ' ' << entries[i] << ' ' << heights[i] << '\n';
    file << "\n\n";
    for (size_t i = 0; i < lines.size(); ++i) {
        lines[i].SetTitle("sum of the sizes, coefficient of " + table.names[actives[i]]);
        AddSeries(file, {&lines[i]});
    }
}

}  // namespace

int main(int argc, char** argv)
{
    return RunExample(argc, argv, Run);
}
