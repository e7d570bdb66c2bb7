#include "zvmath/thompson.h"

#include "allocations.h"
#include "check.h"
#include "thompson_naive.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <numeric>
#include <set>
#include <utility>

namespace
{

using namespace ZVTest;
using namespace ZVMath;

TEST(Engine, GivesTheOutputsOfTheStandardTwister)
{
    const auto compare = [](unsigned int seed, int outputs) {
        std::mt19937 expected(seed);
        Engine engine(seed);
        bool same = true;
        for (int i = 0; i < outputs; i += 2) {
            const double y = static_cast<double>(expected());
            same = same && engine.getUnitDouble() == std::ldexp(y, -32);
            same = same && engine.getUnsigned() == expected() >> 1;
        }
        EXPECT_TRUE(same) << "seed " << seed;
    };
    compare(5489, 10'000'000);
    std::mt19937 random(1);
    for (const unsigned int seed : {0u, 1u, 2u, 0x7fffffffu, 0x80000000u, 0xffffffffu})
        compare(seed, 3000);
    for (int i = 0; i < 300; ++i)
        compare(static_cast<unsigned int>(random()), 1500);
    EXPECT_EQ(Mt32Traits::twist(0x80000000u, 0x80000001u), 0xd908b0dfu);

    Engine engine;
    for (int i = 1; i < 10'000; ++i)
        engine.getUnsigned();
    Engine copy(engine), assigned(7);
    assigned = engine;
    EXPECT_EQ(engine.getUnitDouble(), std::ldexp(4123659995.0, -32));
    for (int i = 1; i < 1300; ++i)
        ASSERT_TRUE(copy.getUnsigned() == assigned.getUnsigned());
    for (int i = 1; i < 1299; ++i)
        engine.getUnsigned();
    EXPECT_EQ(engine.getUnsigned(), copy.getUnsigned());
}

TEST(BetaDistribution, IsAnEngineAndAGenerator)
{
    ZVBetaDistribution distribution;
    Engine engine;
    const auto expect = [&](double alpha, double beta) {
        EXPECT_TRUE(distribution.GetAlpha() == alpha && distribution.GetBeta() == beta);
        ZVBetaRNG generator(alpha, beta);
        for (int i = 0; i < 1000; ++i)
            ASSERT_TRUE(SameBits(distribution.Rand(), generator(engine)));
    };
    expect(1, 1);
    distribution.Reset(2.5, 0.5);
    expect(2.5, 0.5);
    distribution.Seed(12);
    engine = Engine(12);
    expect(2.5, 0.5);
    ZVBetaDistribution copy(distribution);
    EXPECT_TRUE(SameBits(copy.Rand(), distribution.Rand()));
}

unsigned int Below(std::mt19937& random, size_t n)
{
    return static_cast<unsigned int>(random() % n);
}

template <class Sampler> void ExpectSameBehaviour(const std::vector<double>& parameters)
{
    std::mt19937 random(1);
    const auto below = [&](size_t n) { return Below(random, n); };
    for (const unsigned int numArms : {0u, 1u, 2u, 3u, 7u, 8u, 9u, 17u, 100u}) {
        Sampler sampler(numArms);
        NaiveSampler naive(numArms, std::is_same_v<Sampler, ZVRouletteThompson>);
        const auto both = [&](auto step) { ASSERT_EQ(step(sampler), step(naive)); };
        for (int i = 0; i < 3000 && !testing::Test::HasFailure(); ++i) {
            const unsigned int what = below(60), n = below(numArms + 3);
            const unsigned int arm = below(50) ? below(numArms + 1) : 4294967295u;
            SCOPED_TRACE(testing::Message() << numArms << " arms, step " << i << ", " << what);
            if (what == 0) {
                const unsigned int seed = below(100) - 50;  // to both ends of the range
                both([&](auto& s) { return s.Seed(seed), 0; });
            } else if (what == 1) {
                const std::vector<double> priors(i % 2 ? numArms : n, 0.3);
                both([&](auto& s) { return s.AssignPriors(priors); });
            } else if (what < 6) {
                const double alpha = parameters[below(parameters.size())];
                const double beta = parameters[below(parameters.size())];
                both([&](auto& s) { return s.AssignPrior(arm, alpha, beta); });
            } else if (what < 10)
                both([&](auto& s) { return s.SampleN(n); });
            else if (what < 20)
                both([&](auto& s) { return s.UpdateSuccess(arm), 0; });
            else if (what < 30)
                both([&](auto& s) { return s.UpdateFailure(arm), 0; });
            else {
                const auto sample = [&] {
                    FailingAllocation atOnce(0);  // there is none
                    return sampler.Sample();
                };
                ASSERT_EQ(sample(), naive.Sample());
            }
        }
        for (unsigned int arm = 0; arm <= numArms; ++arm) {
            EXPECT_TRUE(SameBits(sampler.GetAlpha(arm), naive.GetAlpha(arm))) << arm;
            EXPECT_TRUE(SameBits(sampler.GetBeta(arm), naive.GetBeta(arm))) << arm;
        }
    }
}

TEST(Thompson, SamplersEqualTheLiteralSteps)
{
    // Among the parameters are ones that draw constants, so that draws tie, and ones whose means
    // are negative, infinite or NaN.
    ExpectSameBehaviour<ZVBetaThompson>({1, 1, 2.5, 0.4, 30, 0, -1, inf, NaN});
    ExpectSameBehaviour<ZVRouletteThompson>({1, 2, 7.5, 1e300, 1e-300, 5e-324});
    ExpectSameBehaviour<ZVRouletteThompson>({1, 2, 0, 0, 0, -1, -3.5, 1e-300, inf, NaN});
    // Means so small that 2^-64 of their sum is below the normal numbers.
    ZVRouletteThompson sampler(7);
    NaiveSampler naive(7, true);
    for (unsigned int arm = 0; arm < 7; ++arm)
        ASSERT_EQ(sampler.AssignPrior(arm, 1e-300, 1), naive.AssignPrior(arm, 1e-300, 1));
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(sampler.Sample(), naive.Sample());
    ZVRouletteThompson moved = std::move(sampler);
    EXPECT_EQ(moved.Sample(), naive.Sample());
    sampler.Sample();  // NOLINT(bugprone-use-after-move): whatever it gives, it ends
}

template <class Sampler> void ExpectSafeAssignment()
{
    const Sampler larger(100);
    for (int failures = 0;; ++failures) {
        Sampler sampler(3);
        sampler.UpdateSuccess(2);
        try {
            const FailingAllocation failing(failures);
            sampler = larger;
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(sampler.NumArms(), 3u);
            EXPECT_EQ(sampler.GetAlpha(2), 2.0);
            EXPECT_EQ(sampler.GetAlpha(3), 0.0);
            continue;
        }
        EXPECT_GT(failures, 0);
        EXPECT_EQ(sampler.NumArms(), 100u);
        EXPECT_EQ(sampler.GetAlpha(99), 1.0);
        return;
    }
}

TEST(Thompson, AssignmentThatFindsNoMemoryChangesNothing)
{
    ExpectSafeAssignment<ZVBetaThompson>();
    ExpectSafeAssignment<ZVRouletteThompson>();
}

TEST(Thompson, PriorsFromProbabilities)
{
    const double cases[][2] = {
        {0.23, 2}, {0.25, 3},  {0.0, 1},  {1.0, 9},   {0.05, 1}, {0.04, 1},     {0.96, 9},
        {0.45, 5}, {0.849, 8}, {0.85, 9}, {-0.04, 1}, {-3, 1},   {1e300, 9},    {inf, 9},
        {-inf, 1}, {NaN, 1},   {1e9, 9},  {4.3e9, 9}, {0.15, 2}, {0.149999, 1}, {-1e19, 1},
    };
    std::vector<double> priors;
    for (const auto& c : cases)
        priors.push_back(c[0]);
    const unsigned int numArms = static_cast<unsigned int>(priors.size());
    ZVBetaThompson beta(numArms);
    ZVRouletteThompson roulette(numArms);
    EXPECT_TRUE(beta.AssignPriors(priors) && roulette.AssignPriors(priors));
    for (unsigned int arm = 0; arm < numArms; ++arm)
        for (const ZVThompson* sampler : std::initializer_list<ZVThompson*>{&beta, &roulette}) {
            EXPECT_EQ(sampler->GetAlpha(arm), cases[arm][1]) << cases[arm][0];
            EXPECT_EQ(sampler->GetBeta(arm), 10 - cases[arm][1]) << cases[arm][0];
        }
}

TEST(MultiThompson, EqualsTheLiteralSteps)
{
#if defined(_GLIBCXX_RELEASE) && _GLIBCXX_RELEASE >= 11
    const Arms expansions = {0, 1, 2, 3, 5, 8, 100};
#else
    const Arms expansions = {100};  // the model can choose as libstdc++ only
#endif
    std::mt19937 random(1);
    const auto below = [&](size_t n) { return Below(random, n); };
    const std::vector<Arms> cases = {{},
                                     {1},
                                     {0},
                                     {0, 3, 1},
                                     {3, 1, 4},
                                     {6, 6, 6},
                                     {6, 2},
                                     {5, 1, 4, 5, 0},
                                     {6, 5, 7, 8, 9, 5},
                                     Arms(10, 5)};
    for (size_t run = 0; run < 3 * cases.size(); ++run) {
        const Arms& arms = cases[run / 3];
        const unsigned int kind = 1 + static_cast<unsigned int>(run % 3);
        ZVMultiThompson multi(arms, kind);
        NaiveMulti naive(arms, kind);
        const auto both = [&](auto step) { ASSERT_EQ(step(multi), step(naive)); };
        for (int i = 0; i < 600 && !HasFailure(); ++i) {
            const unsigned int what = below(i > 500 ? 16 : 15);
            SCOPED_TRACE(testing::Message() << "run " << run << ", step " << i << ", " << what);
            if (what == 0) {
                const unsigned int seed = below(100) - 50;
                both([&](auto& m) { return m.Seed(seed), 0; });
            } else if (what == 1) {
                const unsigned int n = expansions[below(expansions.size())];
                both([&](auto& m) { return m.SetupBatchDraw(n), 0; });
            } else if (what == 2) {
                const unsigned int position = below(arms.size() + 1);
                const bool fits = position < arms.size() && below(2);
                const std::vector<double> priors(fits ? arms[position] : 2, 0.4);
                both([&](auto& m) { return m.AssignPriors(priors, position), 0; });
            } else if (what < 6) {
                Arms tried;
                for (const unsigned int count : arms)
                    tried.push_back(below(20) ? below(count + 1) : 4294967295u);
                tried.resize(tried.size() + (below(5) == 0));
                both([&](auto& m) {
                    return i % 2 ? m.UpdateSuccess(tried) : m.UpdateFailure(tried);
                });
            } else if (what < 9)
                both([](auto& m) { return m.Draw(); });
            else if (what == 9)
                both([](auto& m) { return m.Sample(); });
            else if (what == 15)
                both([](auto& m) { return m.SwitchToRoulette(); });
            else
                for (unsigned int count = below(1 + below(400)); count > 0; --count)
                    both([](auto& m) {
                        Arms taken = {17};
                        const bool isThere = m.GetNext(taken);
                        return std::make_pair(isThere, taken);
                    });
        }
    }
}

// Of positions a, b, c .. `Draw` expands n: those whose arm varies in the combinations.
TEST(MultiThompson, ChoosesThePositionsToExpand)
{
    const struct
    {
        unsigned int positions, n;
        const char* expanded;  // by five draws
    } cases[] = {
        {2, 1, "b b b b b"},
        {3, 2, "ac bc ac ac ab"},
        {6, 1, "f b f b f"},
        {6, 3, "bdf bdf bde cde acd"},
        {7, 5, "acefg abdeg acdeg abcdg bcdef"},
        {10, 3, "fhj dfj dgh cgh hij"},
        {13, 12, "abcdefgijklm abcdefghiklm abcdfghijklm abcdefgijklm acdefghijklm"},
        {25, 2, "fh bt cx em lv"},
    };
    for (const auto& c : cases) {
        ZVMultiThompson multi(Arms(c.positions, 5), 1);
        multi.SetupBatchDraw(c.n);
        std::string expanded;
        for (int draw = 0; draw < 5; ++draw) {
            multi.Draw();
            Arms first, combination;
            multi.GetNext(first);
            std::set<char> varying;
            while (multi.GetNext(combination))
                for (unsigned int p = 0; p < c.positions; ++p)
                    if (combination[p] != first[p])
                        varying.insert(static_cast<char>('a' + p));
            expanded += std::string(draw > 0, ' ').append(varying.begin(), varying.end());
        }
        EXPECT_EQ(expanded, c.expanded) << c.n << " of " << c.positions;
    }
}

#if defined(_GLIBCXX_RELEASE) && _GLIBCXX_RELEASE >= 11
// The library's own choice changes its method at 65536 candidates. Kept small: one position's
// engine at a time in the expected choices.
TEST(MultiThompson, ChoosesAmongManyPositions)
{
    for (const unsigned int positions : {65535u, 65536u}) {
        Arms all(positions), expanded, combination;
        std::iota(all.begin(), all.end(), 0u);
        std::mt19937 chooser(0);
        std::sample(all.begin(), all.end(), std::back_inserter(expanded), 40, chooser);
        ZVMultiThompson multi(Arms(positions, 5), 2);
        multi.SetupBatchDraw(40);
        multi.Draw();
        multi.GetNext(combination);
        unsigned int different = 0;
        for (const unsigned int p : all) {
            NaiveSampler naive(5, true);
            naive.Seed(p);
            const bool isExpanded = std::binary_search(expanded.begin(), expanded.end(), p);
            different += combination[p] != naive.SampleN(isExpanded ? 2 : 1).back();
        }
        EXPECT_EQ(different, 0u) << positions;
    }
}
#endif

TEST(MultiThompson, AHugeBatchIsNotHeldInMemory)
{
    ZVMultiThompson multi(Arms(40, 5), 1);
    multi.SetupBatchDraw(40);
    std::set<Arms> seen;
    Arms combination;
    for (int draw = 0; draw < 3; ++draw) {
        EXPECT_TRUE(multi.Draw());  // 2^40 combinations
        for (int i = 0; i < 1000 && multi.GetNext(combination); ++i)
            seen.insert(combination);
    }
    EXPECT_EQ(seen.size(), 3000u);
}

std::vector<Arms> Queued(ZVMultiThompson& multi)
{
    std::vector<Arms> queued(1);
    while (multi.GetNext(queued.back()))
        queued.emplace_back();
    return queued;
}

TEST(MultiThompson, AllocationFailures)
{
    const auto make = [] {
        auto multi = std::make_unique<ZVMultiThompson>(Arms{6, 1, 9, 5, 3}, 1);
        multi->SetupBatchDraw(2);
        multi->Draw();
        multi->UpdateSuccess({1, 0, 3, 4, 2});
        return multi;
    };
    Arms taken;
    const Arms arms = {6, 3, 2};
    const std::vector<double> priors = {0.1, 0.2, 0.3};
    const struct
    {
        const char* name;
        bool unchanged;  // if it fails; otherwise only the queue is sure to be
        std::function<void(ZVMultiThompson&)> step;
    } cases[] = {
        {"GetNext", true, [&](auto& m) { Arms().swap(taken), m.GetNext(taken); }},
        {"Sample", true, [](auto& m) { m.Sample(); }},
        {"SetupBatchDraw", true, [](auto& m) { m.SetupBatchDraw(1); }},
        {"AssignPriors", true, [&](auto& m) { m.AssignPriors(priors, 4); }},
        {"SwitchToRoulette", true, [](auto& m) { m.SwitchToRoulette(); }},
        {"constructor, kind 1", true, [&](auto&) { ZVMultiThompson(arms, 1); }},
        {"constructor, kind 2", true, [&](auto&) { ZVMultiThompson(arms, 2); }},
        {"Draw", false, [](auto& m) { m.Draw(); }},
    };
    for (const auto& c : cases)
        for (int successes = 0;; ++successes) {
            SCOPED_TRACE(testing::Message() << c.name << " after " << successes << " allocations");
            const auto multi = make(), twin = make();
            try {
                FailingAllocation failing(successes);
                c.step(*multi);
                ASSERT_GT(successes, 0);
                break;
            } catch (const std::bad_alloc&) {
            }
            for (int draw = 0; draw < 10; ++draw) {
                const auto queued = Queued(*multi), expected = Queued(*twin);
                EXPECT_TRUE(queued == expected || (!c.unchanged && draw > 0)) << draw;
                EXPECT_EQ(queued.size(), expected.size());
                EXPECT_EQ(multi->Draw(), twin->Draw());
                if (draw == 5) {
                    EXPECT_EQ(multi->SwitchToRoulette(), twin->SwitchToRoulette());
                }
            }
        }
}

// Choices that no build may change.
TEST(MultiThompson, RecordedChoices)
{
    const struct
    {
        Arms armsPerPosition;
        unsigned int kind;
        uint64_t hash;
    } cases[] = {
        {{10}, 1, 5401797936085558683u},
        {{10}, 2, 17584355478428155344u},
        {{10, 1, 5, 8, 3, 6}, 1, 3863545070086427825u},
        {{10, 1, 5, 8, 3, 6}, 2, 4561231965705543885u},
    };
    for (const auto& c : cases) {
        ZVMultiThompson multi(c.armsPerPosition, c.kind);
        multi.SetupBatchDraw(static_cast<unsigned int>(c.armsPerPosition.size() / 3));
        std::mt19937 random(1);
        uint64_t hash = 14695981039346656037u;
        for (int i = 0; i < 1000; ++i) {
            Arms tried;
            while (!multi.GetNext(tried))
                multi.Draw();
            Below(random, 20) <= tried[0] ? multi.UpdateSuccess(tried) : multi.UpdateFailure(tried);
            for (const unsigned int arm : tried)
                hash = (hash ^ arm) * 1099511628211u;
        }
        EXPECT_EQ(hash, c.hash) << testing::PrintToString(c.armsPerPosition) << ", kind " << c.kind;
    }
}

}  // namespace
