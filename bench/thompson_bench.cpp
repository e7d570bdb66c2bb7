#include "bench.h"
#include "zvmath/thompson.h"

#ifdef ZVMATH_HAVE_BOOST
#include <boost/random/beta_distribution.hpp>
#include <boost/random/discrete_distribution.hpp>
#include <boost/random/mersenne_twister.hpp>
#include <boost/random/uniform_real_distribution.hpp>
#endif
#ifdef ZVMATH_HAVE_GSL
#define HAVE_INLINE  // a call of the library for each output otherwise
#include <gsl/gsl_randist.h>
#include <gsl/gsl_rng.h>
#endif
#ifdef ZVMATH_HAVE_PYTHON
#include "python_peer.h"
#endif

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <set>

// All peers draw from MT19937, as ours does. NumPy fills an array in one call, since a call for
// each draw would be a time of Python's: "NumPy" is its legacy `RandomState`, "NumPy Generator" the
// newer class, which has faster algorithms.

namespace
{

using ZVMath::Mt32Traits;
using ZVMath::MtRng;
using ZVMath::ZVBetaDistribution;
using ZVMath::ZVBetaThompson;
using ZVMath::ZVMultiThompson;
using ZVMath::ZVRouletteThompson;

constexpr size_t numDraws = 1000;
constexpr double wordToUnit = 2.3283064365386963e-10;  // 2^-32

/// The means of the first to fourth powers of a random number.
struct Moments
{
    double power[4] = {};
};

Moments BetaMoments(double alpha, double beta)
{
    Moments moments;
    double product = 1.0;
    for (int i = 0; i < 4; ++i)
        moments.power[i] = product *= (alpha + i) / (alpha + beta + i);
    return moments;
}

/// Whether the mean of values * unit, and that of the squares, is within six standard errors of
/// what it should be.
template <class Values> bool HaveMoments(const Values& values, double unit, const Moments& expected)
{
    double sum = 0.0, sumOfSquares = 0.0;
    for (const auto value : values) {
        const double x = unit * static_cast<double>(value);
        sum += x;
        sumOfSquares += x * x;
    }
    const auto isNear = [n = static_cast<double>(values.size())](double total, double mean,
                                                                 double meanSquare) {
        return std::fabs(total / n - mean) <= 6.0 * std::sqrt((meanSquare - mean * mean) / n);
    };
    return values.size() == numDraws && isNear(sum, expected.power[0], expected.power[1]) &&
           isNear(sumOfSquares, expected.power[1], expected.power[3]);
}

#ifdef ZVMATH_HAVE_GSL
std::shared_ptr<gsl_rng> NewGslEngine()
{
    return {gsl_rng_alloc(gsl_rng_mt19937), gsl_rng_free};
}
#endif

/// A row of the table: a thousand draws from one distribution.
struct DrawRow
{
    std::string workload;
    Moments moments;  // of a draw, which is between 0 and 1

    /// Adds a cell. `draw` returns one draw, in units of `unit`.
    template <class Draw>
    void Add(const std::string& column, const Draw& draw, double unit = 1.0) const
    {
        struct Contestant
        {
            Draw draw;
            std::vector<decltype(std::declval<Draw>()())> values;
        };
        const auto contestant = std::make_shared<Contestant>(Contestant{draw, {}});
        contestant->values.resize(numDraws);
        AddBenchmark(
            workload + ", 1000 draws", column,
            [contestant]() -> Contestant& { return *contestant; },
            [](Contestant & c) -> const auto& {
                for (auto& value : c.values)
                    value = c.draw();
                return c.values;
            },
            [expected = moments, unit](const Contestant&, const auto& values) {
                return HaveMoments(values, unit, expected);
            });
    }

    /// Adds a cell for an expression that draws all at once from `random`.
    void AddNumPy([[maybe_unused]] const std::string& column,
                  [[maybe_unused]] const std::string& random,
                  [[maybe_unused]] const std::string& expression,
                  [[maybe_unused]] double unit = 1.0) const
    {
#ifdef ZVMATH_HAVE_PYTHON
        if (PythonVersion("numpy").empty())
            return;
        const auto function = std::make_shared<PythonFunction>(
            "random = np.random." + random, std::vector<PythonArray>(), "random." + expression);
        AddBenchmark(
            workload + ", 1000 draws", column,
            [function]() -> PythonFunction& { return *function; },
            [](const PythonFunction& call) { return call(); },
            [expected = moments, unit](const PythonFunction&, const PythonObject& result) {
                return HaveMoments(result.Numbers("result"), unit, expected);
            });
#endif
    }
};

constexpr const char* legacy = "RandomState(1)";
constexpr const char* newer = "Generator(np.random.MT19937(1))";

/// Ours drops the last of the 32 bits.
void AddIntegers()
{
    const DrawRow row{"random integer", BetaMoments(1.0, 1.0)};
    row.Add(
        "zvmath", [engine = MtRng<Mt32Traits>(1)]() mutable { return engine.getUnsigned(); },
        2.0 * wordToUnit);
    row.Add(
        "std", [engine = std::mt19937(1)]() mutable { return static_cast<uint32_t>(engine()); },
        wordToUnit);
#ifdef ZVMATH_HAVE_BOOST
    row.Add(
        "Boost", [engine = boost::random::mt19937(1)]() mutable { return engine(); }, wordToUnit);
#endif
#ifdef ZVMATH_HAVE_GSL
    row.Add(
        "GSL",
        [engine = NewGslEngine()] { return static_cast<uint32_t>(gsl_rng_get(engine.get())); },
        wordToUnit);
#endif
    row.AddNumPy("NumPy", legacy, "randint(0, 1 << 32, 1000, dtype=np.uint32)", wordToUnit);
}

/// Of one output, like ours, with Boost and GSL; of two and 53 bits with the others.
void AddUnitDoubles()
{
    const DrawRow row{"unit double", BetaMoments(1.0, 1.0)};
    row.Add("zvmath", [engine = MtRng<Mt32Traits>(1)]() mutable { return engine.getUnitDouble(); });
    row.Add("std", [engine = std::mt19937(1),
                    uniform = std::uniform_real_distribution<double>()]() mutable {
        return uniform(engine);
    });
#ifdef ZVMATH_HAVE_BOOST
    row.Add("Boost", [engine = boost::random::mt19937(1),
                      uniform = boost::random::uniform_real_distribution<double>()]() mutable {
        return uniform(engine);
    });
#endif
#ifdef ZVMATH_HAVE_GSL
    row.Add("GSL", [engine = NewGslEngine()] { return gsl_rng_uniform(engine.get()); });
#endif
    row.AddNumPy("NumPy", legacy, "random_sample(1000)");
    row.AddNumPy("NumPy Generator", newer, "random(1000)");
}

void AddBetas(const std::string& alphaText, const std::string& betaText)
{
    const double alpha = std::stod(alphaText), beta = std::stod(betaText);
    const std::string parameters = '(' + alphaText + ", " + betaText;
    const DrawRow row{"Beta" + parameters + ')', BetaMoments(alpha, beta)};
    row.Add("zvmath", [distribution = ZVBetaDistribution(alpha, beta)]() mutable {
        return distribution.Rand();
    });
    row.Add("std", [engine = std::mt19937(1), x = std::gamma_distribution<double>(alpha),
                    y = std::gamma_distribution<double>(beta)]() mutable {
        const double drawX = x(engine);
        return drawX / (drawX + y(engine));
    });
#ifdef ZVMATH_HAVE_BOOST
    row.Add("Boost", [engine = boost::random::mt19937(1),
                      distribution = boost::random::beta_distribution<double>(
                          alpha, beta)]() mutable { return distribution(engine); });
#endif
#ifdef ZVMATH_HAVE_GSL
    row.Add("GSL", [engine = NewGslEngine(), alpha, beta] {
        return gsl_ran_beta(engine.get(), alpha, beta);
    });
#endif
    row.AddNumPy("NumPy", legacy, "beta" + parameters + ", 1000)");
    row.AddNumPy("NumPy Generator", newer, "beta" + parameters + ", 1000)");
}

/// What is seeded again and again: engines, or a sampler with as many.
template <class Engines> struct Seeding
{
    Engines engines;
    unsigned int seed = 0;
};

/// Adds a cell. `setSeed(engines, seed)` gives engine k the seed `seed` + k + 1; `isSeeded` tells
/// whether it did.
template <class Engines, class SetSeed, class IsSeeded>
void AddSeeding(size_t count, const std::string& column, const Engines& engines, SetSeed setSeed,
                IsSeeded isSeeded)
{
    using Input = Seeding<Engines>;
    const auto seeding = std::make_shared<Input>(Input{engines});
    AddBenchmark(
        "seeding engines n=" + std::to_string(count), column,
        [seeding]() -> Input& { return *seeding; },
        [setSeed](Input& input) {
            setSeed(input.engines, ++input.seed);
            benchmark::ClobberMemory();
            return input.seed;
        },
        [isSeeded](Input& input, unsigned int seed) { return isSeeded(input.engines, seed); });
}

/// The arm of the largest first draw, when arms draw from Beta(1, 1).
unsigned int FirstChoice(unsigned int numArms, unsigned int seed)
{
    std::vector<uint64_t> draws;
    for (unsigned int arm = 0; arm < numArms; ++arm) {
        std::mt19937 engine(seed + arm + 1);
        const uint64_t high = engine() >> 1;
        draws.push_back(high << 31 | engine() >> 1);
    }
    return static_cast<unsigned int>(std::max_element(draws.begin(), draws.end()) - draws.begin());
}

void AddSeedings(unsigned int count)
{
    const auto eachSeeded = [](auto output) {
        return [output](auto& engines, unsigned int seed) {
            for (auto& engine : engines)
                if (output(engine) != std::mt19937(++seed)())
                    return false;
            return true;
        };
    };
    const auto outputOf = [](auto& engine) { return engine(); };
    const auto seedEach = [](auto& engines, unsigned int seed) {
        for (auto& engine : engines)
            engine.seed(++seed);
    };
    if (count == 1)
        AddSeeding(
            count, "zvmath", MtRng<Mt32Traits>(),
            [](MtRng<Mt32Traits>& engine, unsigned int seed) {
                engine = MtRng<Mt32Traits>(seed + 1);
            },
            [](MtRng<Mt32Traits>& engine, unsigned int seed) {
                return engine.getUnsigned() == std::mt19937(seed + 1)() >> 1;
            });
    else
        AddSeeding(
            count, "zvmath", ZVBetaThompson(count),
            [](ZVBetaThompson& sampler, unsigned int seed) { sampler.Seed(seed); },
            [](ZVBetaThompson& sampler, unsigned int seed) {
                return sampler.Sample() == FirstChoice(sampler.NumArms(), seed);
            });
    AddSeeding(count, "std", std::vector<std::mt19937>(count), seedEach, eachSeeded(outputOf));
#ifdef ZVMATH_HAVE_BOOST
    AddSeeding(count, "Boost", std::vector<boost::random::mt19937>(count), seedEach,
               eachSeeded(outputOf));
#endif
#ifdef ZVMATH_HAVE_GSL
    std::vector<std::shared_ptr<gsl_rng>> engines(count);
    std::generate(engines.begin(), engines.end(), NewGslEngine);
    AddSeeding(
        count, "GSL", engines,
        [](auto& each, unsigned int seed) {
            for (auto& engine : each)
                gsl_rng_set(engine.get(), ++seed);
        },
        eachSeeded([](auto& engine) { return gsl_rng_get(engine.get()); }));
#endif
}

/// The counts of a bandit after a while.
struct Bandit
{
    explicit Bandit(unsigned int numArms)
    {
        std::mt19937 random(1);
        for (unsigned int arm = 0; arm < numArms; ++arm) {
            const double rate = 0.5 * wordToUnit * static_cast<double>(random());
            std::binomial_distribution<int> successes(20 + static_cast<int>(random() % 200), rate);
            alphas.push_back(1.0 + successes(random));
            betas.push_back(2.0 + successes.t() - alphas.back());
            means.push_back(alphas.back() / (alphas.back() + betas.back()));
        }
    }

    template <class Sampler> Sampler Make() const
    {
        Sampler sampler(static_cast<unsigned int>(alphas.size()));
        for (unsigned int arm = 0; arm < sampler.NumArms(); ++arm) {
            for (double count = 1.0; count < alphas[arm]; ++count)
                sampler.UpdateSuccess(arm);
            for (double count = 1.0; count < betas[arm]; ++count)
                sampler.UpdateFailure(arm);
        }
        return sampler;
    }

    std::vector<double> alphas;
    std::vector<double> betas;
    std::vector<double> means;
};

/// The probability of each arm to have the largest draw: the integral of its density times the
/// distribution functions of all others, by the midpoint rule.
std::vector<double> ThompsonProbabilities(const Bandit& bandit)
{
    constexpr size_t numPoints = 5000;
    const size_t numArms = bandit.alphas.size();
    std::vector<std::vector<double>> densities(numArms), functions(numArms);
    std::vector<double> products(numPoints, 1.0);
    for (size_t arm = 0; arm < numArms; ++arm) {
        const double a = bandit.alphas[arm], b = bandit.betas[arm];
        const double logBeta = std::lgamma(a) + std::lgamma(b) - std::lgamma(a + b);
        double sum = 0.0;
        for (size_t i = 0; i < numPoints; ++i) {
            const double x = (static_cast<double>(i) + 0.5) / numPoints;
            const double share =
                std::exp((a - 1.0) * std::log(x) + (b - 1.0) * std::log1p(-x) - logBeta) /
                numPoints;
            densities[arm].push_back(share);
            functions[arm].push_back(sum + 0.5 * share);
            products[i] *= functions[arm].back();
            sum += share;
        }
    }
    std::vector<double> probabilities(numArms);
    for (size_t arm = 0; arm < numArms; ++arm)
        for (size_t i = 0; i < numPoints; ++i)
            if (products[i] > 0.0)
                probabilities[arm] += products[i] / functions[arm][i] * densities[arm][i];
    return probabilities;
}

/// Of the posterior mean of the arm that is chosen, with a probability in proportion to its weight.
Moments ChoiceMoments(const Bandit& bandit, const std::vector<double>& weights)
{
    Moments moments;
    double total = 0.0;
    for (const double weight : weights)
        total += weight;
    for (size_t arm = 0; arm < weights.size(); ++arm) {
        double term = weights[arm] / total;
        for (double& power : moments.power)
            power += term *= bandit.means[arm];
    }
    return moments;
}

double BestOf(unsigned int arm)
{
    return arm;
}

double BestOf(const std::vector<unsigned int>& arms)
{
    return arms[0];
}

#ifdef ZVMATH_HAVE_PYTHON
double BestOf(const PythonObject& result)
{
    return result.Number();
}
#endif

/// A row of the table: a choice of an arm, or of several, the best first.
struct ChoiceRow
{
    std::string workload;
    const Bandit& bandit;
    Moments moments;  // of the posterior mean of the best

    /// Adds a cell. A thousand choices more are made for the check.
    template <class Choose> void Add(const std::string& column, const Choose& choose) const
    {
        const auto contestant = std::make_shared<Choose>(choose);
        AddBenchmark(
            workload, column, [contestant]() -> Choose& { return *contestant; },
            [](Choose& of) { return of(); },
            [expected = moments, means = bandit.means](Choose& of, const auto&) {
                std::vector<double> ofChosen;
                while (ofChosen.size() < numDraws) {
                    const double arm = BestOf(of());
                    if (!(arm < static_cast<double>(means.size())))
                        return false;
                    ofChosen.push_back(means[static_cast<size_t>(arm)]);
                }
                return HaveMoments(ofChosen, 1.0, expected);
            });
    }

    /// Adds a cell for an expression over the parameters and `random`.
    void AddNumPy([[maybe_unused]] const std::string& column,
                  [[maybe_unused]] const std::string& random,
                  [[maybe_unused]] const std::string& expression) const
    {
#ifdef ZVMATH_HAVE_PYTHON
        if (PythonVersion("numpy").empty())
            return;
        const std::vector<PythonArray> arrays = {{"a", bandit.alphas.data(), bandit.alphas.size()},
                                                 {"b", bandit.betas.data(), bandit.betas.size()}};
        const auto function =
            std::make_shared<PythonFunction>("random = np.random." + random, arrays, expression);
        Add(column, [function] { return (*function)(); });
#endif
    }
};

#ifdef ZVMATH_HAVE_GSL
/// The draws of all arms are kept: the two best are wanted.
std::vector<unsigned int> BestTwo(gsl_rng* engine, const Bandit& bandit)
{
    std::vector<std::pair<double, unsigned int>> draws;
    draws.reserve(bandit.alphas.size());
    for (unsigned int arm = 0; arm < bandit.alphas.size(); ++arm)
        draws.emplace_back(gsl_ran_beta(engine, bandit.alphas[arm], bandit.betas[arm]), arm);
    std::partial_sort(draws.begin(), draws.begin() + 2, draws.end(), std::greater<>());
    return {draws[0].second, draws[1].second};
}

unsigned int Best(gsl_rng* engine, const Bandit& bandit)
{
    unsigned int best = 0;
    double largest = -1.0;
    for (unsigned int arm = 0; arm < bandit.alphas.size(); ++arm) {
        const double draw = gsl_ran_beta(engine, bandit.alphas[arm], bandit.betas[arm]);
        if (draw > largest) {
            largest = draw;
            best = arm;
        }
    }
    return best;
}
#endif

void AddThompson()
{
    static const Bandit bandit(100);
    const Moments moments = ChoiceMoments(bandit, ThompsonProbabilities(bandit));
    const ChoiceRow one{"Thompson choice n=100", bandit, moments};
    one.Add("zvmath",
            [sampler = bandit.Make<ZVBetaThompson>()]() mutable { return sampler.Sample(); });
#ifdef ZVMATH_HAVE_GSL
    one.Add("GSL", [engine = NewGslEngine()] { return Best(engine.get(), bandit); });
#endif
    one.AddNumPy("NumPy", legacy, "random.beta(a, b).argmax()");
    one.AddNumPy("NumPy Generator", newer, "random.beta(a, b).argmax()");

    const ChoiceRow two{"Thompson choice of two n=100", bandit, moments};
    two.Add("zvmath",
            [sampler = bandit.Make<ZVBetaThompson>()]() mutable { return sampler.SampleN(2); });
#ifdef ZVMATH_HAVE_GSL
    two.Add("GSL", [engine = NewGslEngine()] { return BestTwo(engine.get(), bandit); });
#endif
    const std::string bestOfTwo = "random.beta(a, b).argpartition((-2, -1))[:-3:-1][0]";
    two.AddNumPy("NumPy", legacy, bestOfTwo);
    two.AddNumPy("NumPy Generator", newer, bestOfTwo);
}

/// Boost and GSL have tables of aliases: a choice takes them a time that doesn't depend on n.
void AddRoulette(unsigned int n)
{
    const Bandit bandit(n);
    const std::vector<double>& means = bandit.means;
    const std::string size = " n=" + std::to_string(n);
    const ChoiceRow row{"roulette choice" + size, bandit, ChoiceMoments(bandit, means)};
    row.Add("zvmath",
            [sampler = bandit.Make<ZVRouletteThompson>()]() mutable { return sampler.Sample(); });
    using StdDiscrete = std::discrete_distribution<unsigned int>;
    row.Add("std", [engine = std::mt19937(1),
                    discrete = StdDiscrete(means.begin(), means.end())]() mutable {
        return discrete(engine);
    });
#ifdef ZVMATH_HAVE_BOOST
    using BoostDiscrete = boost::random::discrete_distribution<unsigned int>;
    row.Add("Boost", [engine = boost::random::mt19937(1),
                      discrete = BoostDiscrete(means.begin(), means.end())]() mutable {
        return discrete(engine);
    });
#endif
#ifdef ZVMATH_HAVE_GSL
    const auto newTable = [](const std::vector<double>& weights) {
        return std::shared_ptr<gsl_ran_discrete_t>(
            gsl_ran_discrete_preproc(weights.size(), weights.data()), gsl_ran_discrete_free);
    };
    row.Add("GSL", [engine = NewGslEngine(), table = newTable(means)] {
        return static_cast<unsigned int>(gsl_ran_discrete(engine.get(), table.get()));
    });
#endif

    // The arm is given the counts that it has. The peers begin anew.
    const ChoiceRow updated{"update, roulette choice" + size, bandit, row.moments};
    updated.Add("zvmath",
                [sampler = bandit.Make<ZVRouletteThompson>(), arm = 0u, bandit]() mutable {
                    sampler.AssignPrior(arm, bandit.alphas[arm], bandit.betas[arm]);
                    arm = (arm + 37) % sampler.NumArms();
                    return sampler.Sample();
                });
    updated.Add("std", [engine = std::mt19937(1), means]() mutable {
        return StdDiscrete(means.begin(), means.end())(engine);
    });
#ifdef ZVMATH_HAVE_BOOST
    updated.Add("Boost", [engine = boost::random::mt19937(1), means]() mutable {
        return BoostDiscrete(means.begin(), means.end())(engine);
    });
#endif
#ifdef ZVMATH_HAVE_GSL
    updated.Add("GSL", [engine = NewGslEngine(), newTable, means] {
        return static_cast<unsigned int>(gsl_ran_discrete(engine.get(), newTable(means).get()));
    });
#endif
}

using Combination = std::vector<unsigned int>;

constexpr unsigned int numPositions = 20;
constexpr unsigned int numExpanded = 16;
constexpr unsigned int armsPerPosition = 10;
constexpr size_t numCombinations = size_t{1} << numExpanded;

struct Search
{
    Search() : sampler(Combination(numPositions, armsPerPosition), 1)
    {
        sampler.SetupBatchDraw(numExpanded);
    }

    /// Draws a batch and hands each combination of it to `visit`.
    template <class Visit> void TakeBatch(Visit visit)
    {
        sampler.Draw();
        while (sampler.GetNext(combination))
            visit(combination);
    }

    ZVMultiThompson sampler;
    Combination combination;
};

/// A batch that is made at once and kept in a list.
struct PlainSearch
{
    template <class Visit> void TakeBatch(Visit visit)
    {
        std::vector<Combination> batch(1);
        unsigned int expanded = 0;
        for (unsigned int p = 0; p < numPositions; ++p) {
            const bool expands =
                random() % (numPositions - p) < numExpanded - expanded;  // selection sampling
            const Combination options = samplers[p].SampleN(expands ? 2 : 1);
            expanded += expands ? 1 : 0;
            std::vector<Combination> longer;
            longer.reserve(batch.size() * options.size());
            for (const Combination& begun : batch)
                for (const unsigned int option : options) {
                    longer.push_back(begun);
                    longer.back().push_back(option);
                }
            batch.swap(longer);
        }
        while (!batch.empty()) {
            combination = std::move(batch.back());
            batch.pop_back();
            visit(combination);
        }
    }

    std::vector<ZVBetaThompson> samplers =
        std::vector<ZVBetaThompson>(numPositions, ZVBetaThompson(armsPerPosition));
    std::mt19937 random;
    Combination combination;
};

/// Whether they are different, and all that their options can make.
bool AreComplete(const std::vector<Combination>& combinations)
{
    size_t product = 1;
    for (unsigned int p = 0; p < numPositions; ++p) {
        std::set<unsigned int> options;
        for (const Combination& combination : combinations)
            options.insert(combination.at(p));
        product *= *options.rbegin() < armsPerPosition ? options.size() : 0;
    }
    const std::set<Combination> different(combinations.begin(), combinations.end());
    return combinations.size() == numCombinations && different.size() == numCombinations &&
           product == numCombinations;
}

template <class AnySearch> void AddBatch(const std::string& column)
{
    const auto search = std::make_shared<AnySearch>();
    AddBenchmark(
        "batch of 65536 combinations of 20", column, [search]() -> AnySearch& { return *search; },
        [](AnySearch& of) {
            of.TakeBatch([](Combination& c) { benchmark::DoNotOptimize(c.data()); });
            return of.combination.size();
        },
        [](AnySearch& of, size_t) {
            std::vector<Combination> combinations;
            of.TakeBatch([&](const Combination& c) { combinations.push_back(c); });
            return AreComplete(combinations);
        });
}

}  // namespace

void AddThompsonBenchmarks()
{
#ifdef _GLIBCXX_RELEASE
    peerVersions.push_back("std: libstdc++ " + std::to_string(_GLIBCXX_RELEASE));
#endif
    AddIntegers();
    AddUnitDoubles();
    const struct
    {
        const char* alpha;
        const char* beta;
    } parameters[] = {{"1", "1"}, {"2", "3"}, {"10", "90"}, {"1000", "10"}, {"0.5", "0.5"}};
    for (const auto& p : parameters)
        AddBetas(p.alpha, p.beta);
    for (const unsigned int count : {1u, 100u})
        AddSeedings(count);
    AddThompson();
    for (const unsigned int n : {100u, 10'000u})
        AddRoulette(n);
    AddBatch<Search>("zvmath");
    AddBatch<PlainSearch>("plain");
}
