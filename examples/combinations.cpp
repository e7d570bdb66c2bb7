// A coating is mixed from a resin, a hardener and a filler, with 30 to choose from of each: 27,000
// mixtures, each of which takes a day to make and test. Looks for the best hundredth of them by
// Thompson sampling on the three ingredients, and counts how many must be tested.

#include "table.h"

#include "zvmath/thompson.h"

#include <algorithm>

using ZVMath::Mt32Traits;
using ZVMath::MtRng;
using ZVMath::ZVMultiThompson;

namespace
{

constexpr unsigned int options = 30;
constexpr unsigned int mixtures = options * options * options;
constexpr unsigned int sought = mixtures / 100;
constexpr unsigned int tests = 3000;
constexpr unsigned int testsBeforeRoulette = 1000;
constexpr int runs = 40;

// One after another would make most random streams of a run those of the run before.
constexpr unsigned int seedsPerRun = 1000;

/// The hardness of each mixture: what its three ingredients add, and a part of its own. Hidden from
/// the search.
std::vector<double> MakeMixtures(unsigned int seed)
{
    MtRng<Mt32Traits> engine(seed);
    const auto normal = [&engine] {  // nearly; and of mean 0 and standard deviation 1
        double sum = -6.0;
        for (int k = 0; k < 12; ++k)
            sum += engine.getUnitDouble();
        return sum;
    };
    std::vector<double> ingredients(3 * options);
    for (double& ingredient : ingredients)
        ingredient = normal();
    std::vector<double> hardness(mixtures);
    for (unsigned int i = 0; i < mixtures; ++i)
        hardness[i] = ingredients[i / (options * options)] +
                      ingredients[options + i / options % options] +
                      ingredients[2 * options + i % options] + normal();
    return hardness;
}

struct Search
{
    std::vector<double> tested;  // hardness, in the order of testing
    unsigned int drawn = 0;      // mixtures, many more than once
};

Search SearchFor(const std::vector<double>& hardness, unsigned int seed, bool endsByRoulette)
{
    ZVMultiThompson sampler({options, options, options}, 1);
    sampler.Seed(seed);
    // One mixture in ten will be called a success: a fairer start than the one in two of new arms.
    for (unsigned int ingredient = 0; ingredient < 3; ++ingredient)
        sampler.AssignPriors(std::vector<double>(options, 0.1), ingredient);
    sampler.SetupBatchDraw(3);  // two options of each ingredient, so eight mixtures a batch
    Search search;
    std::vector<bool> isTested(mixtures);
    std::vector<double> ascending;
    while (search.tested.size() < tests) {
        sampler.Draw();
        for (std::vector<unsigned int> mixture; sampler.GetNext(mixture);) {
            ++search.drawn;
            const unsigned int i = (mixture[0] * options + mixture[1]) * options + mixture[2];
            if (isTested[i] || search.tested.size() == tests)
                continue;  // testing it again would tell nothing new
            isTested[i] = true;
            const auto place = std::upper_bound(ascending.begin(), ascending.end(), hardness[i]);
            const auto harder = ascending.end() - place;
            ascending.insert(place, hardness[i]);
            search.tested.push_back(hardness[i]);
            // How hard a coating can get, nobody knows before. So a success is one that is among
            // the best tenth so far.
            if (harder * 10 < static_cast<std::ptrdiff_t>(ascending.size()))
                sampler.UpdateSuccess(mixture);
            else
                sampler.UpdateFailure(mixture);
            if (endsByRoulette && search.tested.size() == testsBeforeRoulette) {
                sampler.SwitchToRoulette();
                sampler.Seed(seed);  // or all runs would go on with the same stream
            }
        }
    }
    return search;
}

/// Adds the share of the sought that was found after each number of tests.
void AddShares(const std::vector<double>& tested, double least, std::vector<double>& shares)
{
    unsigned int found = 0;
    for (size_t n = 1; n <= tests; ++n) {
        found += tested[n - 1] >= least ? 1 : 0;
        shares[n] += static_cast<double>(found) / sought / runs;
    }
}

void Run(const std::string&, const std::string& output)
{
    std::ofstream file = OpenForWriting(output + "/combinations.dat");
    std::vector<double> thompson(tests + 1), roulette(tests + 1);
    double thompsonDrawn = 0.0, rouletteDrawn = 0.0;
    for (unsigned int run = 0; run < runs; ++run) {
        const unsigned int seed = run * seedsPerRun;
        const std::vector<double> hardness = MakeMixtures(seed + 500);
        std::vector<double> sorted = hardness;
        std::sort(sorted.begin(), sorted.end());
        const double least = sorted[mixtures - sought];
        const Search byThompson = SearchFor(hardness, seed, false);
        const Search byRoulette = SearchFor(hardness, seed, true);
        AddShares(byThompson.tested, least, thompson);
        AddShares(byRoulette.tested, least, roulette);
        thompsonDrawn += static_cast<double>(byThompson.drawn) / runs;
        rouletteDrawn += static_cast<double>(byRoulette.drawn) / runs;
        if (run == 0) {
            file << "# the first run: test, hardness, least of the best hundredth\n";
            for (size_t n = 0; n < tests; ++n)
                file << n + 1 << ' ' << byThompson.tested[n] << ' ' << least << '\n';
        }
    }

    std::printf("Share of the best %u of %u mixtures that is found, mean of %d runs\n\n", sought,
                mixtures, runs);
    std::printf("tested  Thompson  roulette from %u on  random\n", testsBeforeRoulette);
    for (const unsigned int n : {250u, 500u, 1000u, 1500u, 2000u, 2500u, 3000u})
        std::printf("%6u  %8.3f  %21.3f  %6.3f\n", n, thompson[n], roulette[n],
                    static_cast<double>(n) / mixtures);
    std::printf("\nMixtures drawn for %u different ones: %.0f, with roulette %.0f.\n", tests,
                thompsonDrawn, rouletteDrawn);

    file << "\n\n# tests, share found by Thompson sampling, by roulette in the end, at random\n";
    for (size_t n = 0; n <= tests; n += 25)
        file << n << ' ' << thompson[n] << ' ' << roulette[n] << ' '
             << static_cast<double>(n) / mixtures << '\n';
}

}  // namespace

int main(int argc, char** argv)
{
    return RunExample(argc, argv, Run);
}
