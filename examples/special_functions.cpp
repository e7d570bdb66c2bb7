// Fits a gamma distribution to the progression of diabetes after a year by maximum likelihood, and
// holds it against the shares of patients that were measured, with their confidence limits.

#include "table.h"

#include "zvmath/special_functions.h"

#include <algorithm>

using ZVMath::ZVDiGamma;
using ZVMath::ZVIncompleteBeta;
using ZVMath::ZVIncompleteGamma;
using ZVMath::ZVlgamma;
using ZVMath::ZVTriGamma;

namespace
{

constexpr double ln2Pi = 1.8378770664093454;

struct GammaDistribution
{
    double shape, scale;
};

/// The distribution under which the measured values are likeliest. Its mean is theirs, and its
/// shape k solves ln k - digamma(k) = ln(mean) - mean of ln, here by Newton's method.
GammaDistribution Fit(double mean, double meanLog)
{
    const double target = std::log(mean) - meanLog;
    double k = 0.5 / target;  // from ln k - digamma(k) = 1/2k + ..
    std::printf("step    shape\n");
    for (int step = 0;; ++step) {
        std::printf("%4d  %.12f\n", step, k);
        const double change = (std::log(k) - ZVDiGamma(k) - target) / (1.0 / k - ZVTriGamma(k));
        if (std::abs(change) < 1e-12 * k || step == 20)
            return {k, mean / k};
        k -= change;
    }
}

/// The p for which I_p(a, b) is `probability`, by bisection.
double BetaQuantile(double a, double b, double probability)
{
    double low = 0.0, high = 1.0;
    for (int step = 0; step < 50; ++step) {
        const double middle = 0.5 * (low + high);
        const double p = ZVIncompleteBeta(a, b, middle);
        if (!(std::fabs(p) < 2.0))  // an infinity would pass for less or more, unnoticed
            throw std::runtime_error("the incomplete beta function does not converge");
        (p < probability ? low : high) = middle;
    }
    return low;
}

struct Limits
{
    double low, high;
};

/// Limits of the share of all patients when `count` of `n` were seen, that are right in at least 95
/// of 100 cases (Clopper and Pearson 1934).
Limits LimitsOfShare(double count, double n)
{
    return {count == 0.0 ? 0.0 : BetaQuantile(count, n - count + 1.0, 0.025),
            count == n ? 1.0 : BetaQuantile(count + 1.0, n - count, 0.975)};
}

void Run(const std::string& data, const std::string& output)
{
    Table table = ReadTable(data + "/diabetes.tsv");
    std::vector<double> progression = TakeLastColumn(table);
    std::sort(progression.begin(), progression.end());
    const double n = static_cast<double>(progression.size());
    double mean = 0.0, meanLog = 0.0, variance = 0.0;
    for (const double value : progression) {
        mean += value / n;
        meanLog += std::log(value) / n;
    }
    for (const double value : progression)
        variance += (value - mean) * (value - mean) / n;

    const auto [k, theta] = Fit(mean, meanLog);
    // The variances of the estimates are the inverse of the Fisher information.
    const double trigamma = ZVTriGamma(k), information = n * (k * trigamma - 1.0);
    std::printf("\n%.0f patients: shape %.2f +- %.2f, scale %.1f +- %.1f\n", n, k,
                std::sqrt(k / information), theta, theta * std::sqrt(trigamma / information));
    const double gammaLikelihood =
        n * ((k - 1.0) * meanLog - mean / theta - k * std::log(theta) - ZVlgamma(k));
    const double normalLikelihood = -0.5 * n * (ln2Pi + std::log(variance) + 1.0);
    std::printf("log-likelihood %.1f; of the normal distribution %.1f\n\n", gammaLikelihood,
                normalLikelihood);

    std::ofstream file = OpenForWriting(output + "/special_functions.dat");
    file << "# progression, share at or below it, 95 % limits of the share, fitted P(k, x/theta)\n";
    std::printf("progression  measured  95 %% limits     fitted\n");
    double nextPrinted = 50.0;
    int scores = 0, outside = 0;
    for (size_t i = 0; i < progression.size(); ++i) {
        const double x = progression[i];
        if (i + 1 < progression.size() && progression[i + 1] == x)
            continue;  // the share counts all patients of this value
        const double count = static_cast<double>(i) + 1.0;
        const Limits limits = LimitsOfShare(count, n);
        const double fitted = ZVIncompleteGamma(k, x / theta);
        file << x << ' ' << count / n << ' ' << limits.low << ' ' << limits.high << ' ' << fitted
             << '\n';
        ++scores;
        outside += fitted < limits.low || fitted > limits.high ? 1 : 0;
        if (x >= nextPrinted) {
            std::printf("%11.0f  %8.3f  %.3f .. %.3f  %.3f\n", x, count / n, limits.low,
                        limits.high, fitted);
            nextPrinted += 50.0;
        }
    }
    std::printf("\nThe fitted share is outside the limits at %d of %d scores.\n", outside, scores);
}

}  // namespace

int main(int argc, char** argv)
{
    return RunExample(argc, argv, Run);
}
