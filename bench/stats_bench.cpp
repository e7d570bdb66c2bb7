#include "bench.h"
#include "zvmath/stats.h"

#ifdef ZVMATH_HAVE_ARMADILLO
#include <armadillo>
#endif
#ifdef ZVMATH_HAVE_BOOST
#include <boost/math/statistics/univariate_statistics.hpp>
#include <boost/version.hpp>
#endif
#ifdef ZVMATH_HAVE_GSL
#include <gsl/gsl_statistics.h>
#include <gsl/gsl_version.h>
#endif
#ifdef ZVMATH_HAVE_PYTHON
#include "python_peer.h"
#endif

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <random>

namespace
{

constexpr size_t largest = 10'000'000;

/// Values, and others close to them.
struct Sample
{
    size_t index;
    std::vector<double> reference;
    std::vector<double> prediction;
};

/// Samples of n values each, of which each call takes the next.
struct Samples
{
    Samples(size_t n, size_t count)
    {
        std::mt19937 random(static_cast<unsigned int>(n));
        std::normal_distribution<double> normal;
        for (size_t index = 0; index < count; ++index) {
            each.push_back({index, std::vector<double>(n), std::vector<double>(n)});
            for (size_t i = 0; i < n; ++i) {
                each.back().reference[i] = 1.0 + normal(random);
                each.back().prediction[i] = each.back().reference[i] + 0.5 * normal(random);
            }
        }
    }

    const Sample& Next()
    {
        current = current + 1 < each.size() ? current + 1 : 0;
        return each[current];
    }

    std::vector<Sample> each;
    size_t current = 0;
};

Samples& SamplesOf(size_t n, size_t count)
{
    static std::map<std::pair<size_t, size_t>, Samples> made;
    return made.try_emplace({n, count}, n, count).first->second;
}

double PlainSum(const std::vector<double>& values)
{
    long double sum = 0.0L;
    for (const double value : values)
        sum += value;
    return static_cast<double>(sum);
}

double Read(const std::vector<double>& values)
{
    return ReadAll(values.data(), values.size());
}

/// A row of the table: one function, of samples of one size.
struct Row
{
    std::string name;
    size_t n;
    size_t numSamples;
    double (*plain)(const Sample&);  // the formula in its plainest form

    /// Adds a cell; the result may differ from the expected one by another order of additions.
    template <class Compute, class Expected>
    void Add(const std::string& column, Compute compute, Expected expected) const
    {
        AddBenchmark(
            name + " n=" + std::to_string(n), column,
            [row = *this]() -> Samples& { return SamplesOf(row.n, row.numSamples); },
            [compute](Samples& samples) { return compute(samples.Next()); },
            [expected, known = std::make_shared<std::map<size_t, double>>()](const Samples& samples,
                                                                             double result) {
                auto value = known->find(samples.current);
                if (value == known->end())
                    value = known->emplace(samples.current, expected(samples.each[samples.current]))
                                .first;
                return std::fabs(result - value->second) <= 1e-9 * std::fabs(value->second);
            });
    }

    template <class Compute> void Add(const std::string& column, Compute compute) const
    {
        Add(column, compute, plain);
    }

    /// A cell for what must be read at least: the two vectors so many times each.
    void AddFloor(int references, int predictions) const
    {
        if (n < largest)
            return;
        const auto total = [=](const Sample& sample, auto sum) {
            double result = 0.0;
            for (int i = 0; i < references; ++i)
                result += sum(sample.reference);
            for (int i = 0; i < predictions; ++i)
                result += sum(sample.prediction);
            return result;
        };
        Add(
            "floor", [total](const Sample& sample) { return total(sample, Read); },
            [total](const Sample& sample) { return total(sample, PlainSum); });
    }

    /// A cell for an expression over the arrays r and p.
    void AddNumPy([[maybe_unused]] const std::string& expression) const
    {
#ifdef ZVMATH_HAVE_PYTHON
        if (PythonVersion("numpy").empty())
            return;
        const auto functions = std::make_shared<std::map<size_t, PythonFunction>>();
        Add("NumPy", [functions, expression](const Sample& sample) {
            auto function = functions->find(sample.index);
            if (function == functions->end()) {
                const std::vector<double>&r = sample.reference, &p = sample.prediction;
                const std::vector<PythonArray> arrays = {{"r", r.data(), r.size()},
                                                         {"p", p.data(), p.size()}};
                function =
                    functions->try_emplace(sample.index, std::string(), arrays, expression).first;
            }
            return function->second().Number();
        });
#endif
    }
};

double PlainMean(const Sample& sample)
{
    return PlainSum(sample.reference) / static_cast<double>(sample.reference.size());
}

double PlainMeanSquare(const Sample& sample)
{
    std::vector<double> squares;
    for (size_t i = 0; i < sample.reference.size(); ++i)
        squares.push_back(std::pow(sample.reference[i] - sample.prediction[i], 2));
    return PlainSum(squares) / static_cast<double>(squares.size());
}

double PlainRMSE(const Sample& sample)
{
    return std::sqrt(PlainMeanSquare(sample));
}

double PlainRSquared(const Sample& sample)
{
    const std::vector<double> mean(sample.reference.size(), PlainMean(sample));
    return 1.0 - PlainMeanSquare(sample) / PlainMeanSquare({0, sample.reference, mean});
}

double PlainMedian(const Sample& sample)
{
    std::vector<double> sorted = sample.reference;
    std::sort(sorted.begin(), sorted.end());
    return (sorted[(sorted.size() - 1) / 2] + sorted[sorted.size() / 2]) / 2.0;
}

#ifdef ZVMATH_HAVE_ARMADILLO
/// Armadillo's view of the same memory.
arma::vec View(const std::vector<double>& values)
{
    return arma::vec(const_cast<double*>(values.data()), values.size(), false, true);
}
#endif

void AddMean(size_t n)
{
    const Row row{"mean", n, 1, PlainMean};
    row.Add("zvmath", [](const Sample& s) { return ZVMath::ZVMean(s.reference); });
#ifdef ZVMATH_HAVE_ARMADILLO
    row.Add("Armadillo", [](const Sample& s) { return arma::mean(View(s.reference)); });
#endif
    row.AddNumPy("r.mean()");
#ifdef ZVMATH_HAVE_GSL
    row.Add("GSL", [](const Sample& s) {
        return gsl_stats_mean(s.reference.data(), 1, s.reference.size());
    });
#endif
#ifdef ZVMATH_HAVE_BOOST
    row.Add("Boost", [](const Sample& s) { return boost::math::statistics::mean(s.reference); });
#endif
    row.AddFloor(1, 0);
}

void AddRMSE(size_t n)
{
    const Row row{"RMSE", n, 1, PlainRMSE};
    row.Add("zvmath", [](const Sample& s) { return ZVMath::ZVRMSE(s.reference, s.prediction); });
#ifdef ZVMATH_HAVE_ARMADILLO
    row.Add("Armadillo", [](const Sample& s) {
        const arma::vec r = View(s.reference), p = View(s.prediction);
        return std::sqrt(arma::accu(arma::square(r - p)) / static_cast<double>(r.n_elem));
    });
#endif
    row.AddNumPy("math.sqrt((d := r - p) @ d / len(d))");
    row.AddFloor(1, 1);
}

void AddRSquared(size_t n)
{
    const Row row{"R squared", n, 1, PlainRSquared};
    row.Add("zvmath",
            [](const Sample& s) { return ZVMath::ZVRSquared(s.reference, s.prediction); });
#ifdef ZVMATH_HAVE_ARMADILLO
    row.Add("Armadillo", [](const Sample& s) {
        const arma::vec r = View(s.reference), p = View(s.prediction);
        return 1.0 - arma::accu(arma::square(r - p)) / arma::accu(arma::square(r - arma::mean(r)));
    });
#endif
    row.AddNumPy("1.0 - ((d := r - p) @ d) / ((e := r - r.mean()) @ e)");
    row.AddFloor(2, 1);
}

/// Like ours, the peers leave the values as they are: those that don't get a copy.
void AddMedian(size_t n)
{
    // A processor learns the comparisons of a short sample that comes again and again.
    const Row row{"median", n, n < largest ? size_t{200} : size_t{1}, PlainMedian};
    row.Add("zvmath", [](const Sample& s) { return ZVMath::ZVMedian(s.reference); });
#ifdef ZVMATH_HAVE_ARMADILLO
    row.Add("Armadillo", [](const Sample& s) { return arma::median(View(s.reference)); });
#endif
    row.AddNumPy("np.median(r)");
#ifdef ZVMATH_HAVE_GSL
    row.Add("GSL", [](const Sample& s) {
        std::vector<double> copy = s.reference;
        return gsl_stats_median(copy.data(), 1, copy.size());
    });
#endif
#ifdef ZVMATH_HAVE_BOOST
    row.Add("Boost", [](const Sample& s) {
        std::vector<double> copy = s.reference;
        return boost::math::statistics::median(copy);
    });
#endif
    row.AddFloor(1, 0);
}

}  // namespace

void AddStatsBenchmarks()
{
#ifdef ZVMATH_HAVE_PYTHON
    if (const std::string version = PythonVersion("numpy"); !version.empty())
        peerVersions.push_back("NumPy " + version);
#endif
#ifdef ZVMATH_HAVE_GSL
    peerVersions.push_back(std::string("GSL ") + gsl_version);
#endif
#ifdef ZVMATH_HAVE_BOOST
    peerVersions.push_back("Boost " + std::to_string(BOOST_VERSION / 100000) + '.' +
                           std::to_string(BOOST_VERSION / 100 % 1000) + '.' +
                           std::to_string(BOOST_VERSION % 100));
#endif
    for (const auto add : {AddMean, AddRMSE, AddRSquared})
        for (const size_t n : {size_t{1000}, largest})
            add(n);
    for (const size_t n : {size_t{10}, size_t{1000}, largest})
        AddMedian(n);
}
