// A machine has twenty settings, each of which makes a good part with a probability of its own,
// unknown. How many good parts does it cost to find the best setting, by Thompson sampling, by
// roulette, and by taking all settings as often?

#include "table.h"

#include "zvmath/thompson.h"

#include <algorithm>
#include <array>

using ZVMath::Mt32Traits;
using ZVMath::MtRng;
using ZVMath::ZVBetaThompson;
using ZVMath::ZVRouletteThompson;
using ZVMath::ZVThompson;

namespace
{

constexpr unsigned int settings = 20;
constexpr unsigned int bestSetting = 12;
constexpr size_t tries = 10000;
constexpr int runs = 200;

// One after another would make most random streams of a run those of the run before.
constexpr unsigned int seedsPerRun = 1000;

/// The best setting makes 60 good parts of 100, the others 5, 7.5, .. 50.
double ChanceOf(unsigned int setting)
{
    const unsigned int step = setting < bestSetting ? setting : setting - 1;
    return setting == bestSetting ? 0.6 : 0.05 + 0.025 * step;
}

/// What a way to choose comes to after each number of tries, as means over all runs.
struct Course
{
    std::vector<double> regret = std::vector<double>(tries + 1);  // good parts missed
    std::vector<double> share = std::vector<double>(tries + 1);   // of tries at the best setting
    double squares = 0.0;  // mean square of the regret in the end
};

/// Adds one run. Without a sampler, any setting is taken with the same probability.
void Play(ZVThompson* sampler, unsigned int seed, Course& course)
{
    if (sampler != nullptr)
        sampler->Seed(seed);  // its settings take seed + 1 .. seed + 20
    MtRng<Mt32Traits> machine(seed + 100);
    MtRng<Mt32Traits> choice(seed + 200);
    double regret = 0.0;
    int best = 0;
    for (size_t t = 1; t <= tries; ++t) {
        const unsigned int setting =
            sampler != nullptr ? sampler->Sample()
                               : static_cast<unsigned int>(choice.getUnitDouble() * settings);
        const bool good = machine.getUnitDouble() < ChanceOf(setting);
        if (sampler != nullptr)
            good ? sampler->UpdateSuccess(setting) : sampler->UpdateFailure(setting);
        // Chances, not good parts: the mean is the same, and the luck of the try is left out.
        regret += ChanceOf(bestSetting) - ChanceOf(setting);
        best += setting == bestSetting ? 1 : 0;
        course.regret[t] += regret / runs;
        course.share[t] += static_cast<double>(best) / static_cast<double>(t) / runs;
    }
    course.squares += regret * regret / runs;
}

/// By how much regret grows at least, in the long run, as ln t grows by 1, whatever the way to
/// choose, if it is to be good for any chances (Lai and Robbins 1985).
double LeastSlope()
{
    const double p = ChanceOf(bestSetting);
    double slope = 0.0;
    for (unsigned int setting = 0; setting < settings; ++setting) {
        const double q = ChanceOf(setting);
        if (setting != bestSetting)
            slope += (p - q) / (q * std::log(q / p) + (1.0 - q) * std::log((1.0 - q) / (1.0 - p)));
    }
    return slope;
}

void Run(const std::string&, const std::string& output)
{
    std::array<Course, 3> courses;
    for (unsigned int run = 0; run < runs; ++run) {
        ZVRouletteThompson roulette(settings);
        ZVBetaThompson thompson(settings);
        Play(nullptr, run * seedsPerRun, courses[0]);
        Play(&roulette, run * seedsPerRun, courses[1]);
        Play(&thompson, run * seedsPerRun, courses[2]);
    }

    std::printf("%u settings; the best makes %.2f good parts a try. Means of %d runs.\n\n",
                settings, ChanceOf(bestSetting), runs);
    std::printf("           good parts missed, after tries   share of tries at the best\n");
    std::printf("                100      1000     10000        100      1000     10000\n");
    const char* const names[] = {"uniform", "roulette", "Thompson"};
    for (size_t way = 0; way < courses.size(); ++way) {
        const auto& [regret, share, squares] = courses[way];
        std::printf("%-10s %8.1f  %8.1f  %8.1f   %8.3f  %8.3f  %8.3f\n", names[way], regret[100],
                    regret[1000], regret[tries], share[100], share[1000], share[tries]);
    }
    const Course& thompson = courses[2];
    const double variance = thompson.squares - thompson.regret[tries] * thompson.regret[tries];
    const double slope = LeastSlope();
    std::printf(
        "\nThompson sampling in the end: standard error %.1f. From 1000 to 10000 tries it "
        "misses\n%.1f per unit of ln t; in the long run no way to choose gets below %.1f.\n",
        std::sqrt(variance / (runs - 1)),
        (thompson.regret[tries] - thompson.regret[1000]) / 2.302585092994046, slope);

    std::ofstream file = OpenForWriting(output + "/bandit.dat");
    file << "# tries, then good parts missed and share of tries at the best setting: uniform, "
            "roulette, Thompson\n";
    for (size_t t = 1; t <= tries; t = std::max(t + 1, t * 21 / 20)) {
        file << t;
        for (const Course& course : courses)
            file << ' ' << course.regret[t] << ' ' << course.share[t];
        file << '\n';
    }
    file << "\n\n# tries, least slope through the regret of Thompson sampling after 10000\n";
    for (size_t t = 100; t <= tries; t *= 10)
        file << t << ' '
             << thompson.regret[tries] -
                    slope * std::log(static_cast<double>(tries) / static_cast<double>(t))
             << '\n';
}

}  // namespace

int main(int argc, char** argv)
{
    return RunExample(argc, argv, Run);
}
