#include "zvmath/thompson.h"

#include "beta_draws.h"
#include "multiversion.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace ZVMath
{

namespace
{

constexpr size_t stateSize = Mt32Traits::stateSize;
constexpr size_t shift = Mt32Traits::shift;

/// The word that follows `u` and `v`, without the one `shift` places on. As `Mt32Traits::twist`,
/// but with a mask in place of the table, so that it vectorises.
ZVMATH_INLINE unsigned int Twist(unsigned int u, unsigned int v)
{
    const unsigned int mixed = (u & Mt32Traits::upperMask) | (v & Mt32Traits::lowerMask);
    return (mixed >> 1) ^ (-(v & 1u) & Mt32Traits::mag01[1]);
}

/// Renews the words [begin, end) of the state, those before being renewed already, and tempers
/// them.
ZVMATH_CLONES void RenewWords(unsigned int* state, unsigned int* outputs, size_t begin, size_t end)
{
    constexpr size_t wrap = stateSize - shift;
    size_t k = begin;
    for (; k < std::min(end, wrap); ++k)
        state[k] = state[k + shift] ^ Twist(state[k], state[k + 1]);
    for (; k < std::min(end, stateSize - 1); ++k)
        state[k] = state[k - wrap] ^ Twist(state[k], state[k + 1]);
    if (end == stateSize)
        state[k] = state[k - wrap] ^ Twist(state[k], state[0]);
    for (k = begin; k < end; ++k) {
        unsigned int y = state[k];
        y ^= y >> 11;
        y ^= (y << 7) & 0x9d2c5680u;
        y ^= (y << 15) & 0xefc60000u;
        outputs[k - begin] = y ^ (y >> 18);
    }
}

/// Fills `count` states from seeds in succession. A word depends on the one before: side by side
/// the chains fill the time that one would wait.
template <size_t count> void SeedStates(unsigned int* const* states, unsigned int firstSeed)
{
    unsigned int word[count];
    for (size_t c = 0; c < count; ++c)
        states[c][0] = word[c] = firstSeed + static_cast<unsigned int>(c);
    for (unsigned int i = 1; i < stateSize; ++i)
        for (size_t c = 0; c < count; ++c)
            states[c][i] = word[c] = 1812433253u * (word[c] ^ (word[c] >> 30)) + i;
}

/// A draw of a Beta distribution, or -1.0 for NaN: less than any.
double Comparable(double draw)
{
    return std::isnan(draw) ? -1.0 : draw;
}

/// An arm and what was drawn for it.
struct ArmDraw
{
    double draw;
    unsigned int arm;

    /// Better draws first, of equal ones lower arms.
    bool operator<(const ArmDraw& other) const
    {
        return draw > other.draw || (draw == other.draw && arm < other.arm);
    }
};

}  // namespace

MtRng<Mt32Traits>::MtRng(unsigned int seed) : next(blockSize), block(0)
{
    unsigned int* const states[] = {state};
    SeedStates<1>(states, seed);
}

MtRng<Mt32Traits>::~MtRng() = default;

void MtRng<Mt32Traits>::Renew()
{
    const size_t begin = size_t{block} * blockSize;
    RenewWords(state, outputs, begin, begin + blockSize);
    block = begin + blockSize == stateSize ? 0 : block + 1;
    next = 0;
}

/// The engine's outputs without calls.
struct TwisterSource
{
    MtRng<Mt32Traits>& engine;

    uint64_t Get31Bits() { return engine.NextOutput() >> 1; }
    uint64_t Get62Bits()
    {
        if (engine.next + 2 <= engine.blockSize) {
            const unsigned int* const two = engine.outputs + engine.next;
            engine.next += 2;
            return uint64_t{two[0] >> 1} << 31 | two[1] >> 1;
        }
        const uint64_t high = Get31Bits();
        return high << 31 | Get31Bits();
    }
};

ZVBetaDistribution::ZVBetaDistribution(double alphaParameter, double betaParameter)
    : generator(alphaParameter, betaParameter), alpha(alphaParameter), beta(betaParameter)
{
}

void ZVBetaDistribution::Reset(double newAlpha, double newBeta)
{
    alpha = newAlpha;
    beta = newBeta;
    generator = ZVBetaRNG(newAlpha, newBeta);
}

double ZVBetaDistribution::Rand()
{
    TwisterSource source{engine};
    return BetaDraws<TwisterSource>(source).Draw(generator);
}

ZVThompson::~ZVThompson() = default;

bool ZVThompson::AssignPriors(std::vector<double> priors)
{
    if (priors.size() != numArms)
        return false;
    for (unsigned int arm = 0; arm < numArms; ++arm) {
        const double rounded = std::round(priors[arm] * 10.0);
        const double alpha = !(rounded > 1.0) ? 1.0 : rounded < 9.0 ? rounded : 9.0;
        AssignPrior(arm, alpha, 10.0 - alpha);
    }
    return true;
}

ZVBetaThompson::ZVBetaThompson(unsigned int armCount)
    : ZVThompson(armCount), arms(armCount, ZVBetaDistribution())
{
    SeedArms(1);
}

ZVBetaThompson& ZVBetaThompson::operator=(const ZVBetaThompson& other)
{
    ZVBetaThompson copy(other);
    return *this = std::move(copy);
}

void ZVBetaThompson::SeedArms(unsigned int first)
{
    constexpr size_t group = 8;
    size_t arm = 0;
    for (; arm + group <= arms.size(); arm += group) {
        unsigned int* states[group];
        for (size_t c = 0; c < group; ++c)
            states[c] = arms[arm + c].engine.state;
        SeedStates<group>(states, first + static_cast<unsigned int>(arm));
    }
    for (; arm < arms.size(); ++arm) {
        unsigned int* const states[] = {arms[arm].engine.state};
        SeedStates<1>(states, first + static_cast<unsigned int>(arm));
    }
    for (ZVBetaDistribution& distribution : arms) {
        distribution.engine.next = MtRng<Mt32Traits>::blockSize;
        distribution.engine.block = 0;
    }
}

void ZVBetaThompson::Seed(unsigned int seed)
{
    SeedArms(seed + 1);
}

unsigned int ZVBetaThompson::Sample()
{
    unsigned int best = 0;
    double largest = -1.0;
    for (unsigned int arm = 0; arm < arms.size(); ++arm) {
        const double draw = arms[arm].Rand();
        if (draw > largest) {
            largest = draw;
            best = arm;
        }
    }
    return best;
}

std::vector<unsigned int> ZVBetaThompson::SampleN(unsigned int n)
{
    std::vector<unsigned int> chosen(n, NumArms());
    std::vector<ArmDraw> draws(arms.size());
    for (unsigned int arm = 0; arm < draws.size(); ++arm)
        draws[arm] = {Comparable(arms[arm].Rand()), arm};
    const size_t places = std::min(chosen.size(), draws.size());
    std::partial_sort(draws.begin(), draws.begin() + static_cast<std::ptrdiff_t>(places),
                      draws.end());
    for (size_t i = 0; i < places && draws[i].draw >= 0.0; ++i)
        chosen[i] = i > 0 && draws[i].draw == draws[i - 1].draw ? chosen[i - 1] : draws[i].arm;
    return chosen;
}

void ZVBetaThompson::UpdateSuccess(unsigned int arm)
{
    if (arm < arms.size())
        arms[arm].Reset(arms[arm].GetAlpha() + 1.0, arms[arm].GetBeta());
}

void ZVBetaThompson::UpdateFailure(unsigned int arm)
{
    if (arm < arms.size())
        arms[arm].Reset(arms[arm].GetAlpha(), arms[arm].GetBeta() + 1.0);
}

double ZVBetaThompson::GetAlpha(unsigned int arm) const
{
    return arm < arms.size() ? arms[arm].GetAlpha() : 0.0;
}

double ZVBetaThompson::GetBeta(unsigned int arm) const
{
    return arm < arms.size() ? arms[arm].GetBeta() : 0.0;
}

bool ZVBetaThompson::AssignPrior(unsigned int arm, double alpha, double beta)
{
    if (arm >= arms.size())
        return false;
    arms[arm].Reset(alpha, beta);
    return true;
}

ZVRouletteThompson::ZVRouletteThompson(unsigned int armCount)
    : ZVThompson(armCount), engine(0), arms(armCount)
{
}

ZVRouletteThompson& ZVRouletteThompson::operator=(const ZVRouletteThompson& other)
{
    ZVRouletteThompson copy(other);
    return *this = std::move(copy);
}

void ZVRouletteThompson::Seed(unsigned int seed)
{
    engine = MtRng<Mt32Traits>(seed);
}

void ZVRouletteThompson::SetOutdated(unsigned int arm)
{
    numUpToDate = std::min(numUpToDate, size_t{arm});
    numAscending = std::min(numAscending, size_t{arm});
}

void ZVRouletteThompson::UpdateSums()
{
    double sum = numUpToDate == 0 ? 0.0 : arms[numUpToDate - 1].sum;
    for (; numUpToDate < arms.size(); ++numUpToDate) {
        Arm& arm = arms[numUpToDate];
        const double former = sum;
        sum += arm.alpha / (arm.beta + arm.alpha);
        arm.sum = sum;
        if (numAscending == numUpToDate && sum >= former)
            ++numAscending;
    }
}

unsigned int ZVRouletteThompson::Sample()
{
    if (arms.empty())
        numUpToDate = numAscending = 0;  // they may have been moved away
    UpdateSums();
    const double total = arms.empty() ? 0.0 : arms.back().sum;
    const double low = engine.NextOutput();
    const double high = engine.NextOutput();
    const double r = total * 5.421010862427522e-20 * (high * 4294967296.0 + low);  // 2^-64, 2^32
    // The first sum above r: by bisection, without branches, each of which would be a guess; and
    // from where sums stop ascending by walking.
    size_t first = 0;
    for (size_t rest = numAscending; rest > 0;) {
        const size_t half = (rest + 1) / 2;
        first += half * static_cast<size_t>(!(arms[first + half - 1].sum > r));
        rest -= half;
    }
    while (first < arms.size() && !(arms[first].sum > r))
        ++first;
    return first < arms.size() ? static_cast<unsigned int>(first) : NumArms() - 1;
}

std::vector<unsigned int> ZVRouletteThompson::SampleN(unsigned int n)
{
    std::vector<unsigned int> chosen(n);
    for (unsigned int& arm : chosen)
        arm = Sample();
    return chosen;
}

void ZVRouletteThompson::UpdateSuccess(unsigned int arm)
{
    if (arm >= arms.size())
        return;
    arms[arm].alpha += 1.0;
    SetOutdated(arm);
}

void ZVRouletteThompson::UpdateFailure(unsigned int arm)
{
    if (arm >= arms.size())
        return;
    arms[arm].beta += 1.0;
    SetOutdated(arm);
}

double ZVRouletteThompson::GetAlpha(unsigned int arm) const
{
    return arm < arms.size() ? arms[arm].alpha : 0.0;
}

double ZVRouletteThompson::GetBeta(unsigned int arm) const
{
    return arm < arms.size() ? arms[arm].beta : 0.0;
}

bool ZVRouletteThompson::AssignPrior(unsigned int arm, double alpha, double beta)
{
    if (arm >= arms.size())
        return false;
    arms[arm].alpha = alpha;
    arms[arm].beta = beta;
    SetOutdated(arm);
    return true;
}

namespace
{

constexpr unsigned int betaKind = 1;
constexpr unsigned int rouletteKind = 2;
/// Fewer arms are not worth two options.
constexpr unsigned int leastArmsToExpand = 5;

}  // namespace

ZVMultiThompson::ZVMultiThompson(const std::vector<unsigned int>& armsPerPosition,
                                 unsigned int samplerKind)
    : kind(samplerKind)
{
    for (unsigned int position = 0; position < armsPerPosition.size(); ++position)
        samplers.push_back(MakeSampler(kind, armsPerPosition[position], position));
}

std::unique_ptr<ZVThompson>
ZVMultiThompson::MakeSampler(unsigned int samplerKind, unsigned int armCount, unsigned int position)
{
    std::unique_ptr<ZVThompson> sampler;
    if (samplerKind == betaKind)
        sampler = std::make_unique<ZVBetaThompson>(armCount);
    else
        sampler = std::make_unique<ZVRouletteThompson>(armCount);
    sampler->Seed(position);
    return sampler;
}

bool ZVMultiThompson::SwitchToRoulette()
{
    if (kind == rouletteKind)
        return false;
    std::vector<std::unique_ptr<ZVThompson>> roulettes;
    for (unsigned int position = 0; position < samplers.size(); ++position) {
        const ZVThompson& former = *samplers[position];
        roulettes.push_back(MakeSampler(rouletteKind, former.NumArms(), position));
        for (unsigned int arm = 0; arm < former.NumArms(); ++arm)
            roulettes.back()->AssignPrior(arm, former.GetAlpha(arm), former.GetBeta(arm));
    }
    samplers.swap(roulettes);
    kind = rouletteKind;
    return true;
}

void ZVMultiThompson::Seed(unsigned int seed)
{
    for (unsigned int position = 0; position < samplers.size(); ++position)
        samplers[position]->Seed(seed + 1 + position);
}

void ZVMultiThompson::SetupBatchDraw(unsigned int n)
{
    std::vector<unsigned int> positions;
    for (unsigned int position = 0; position < samplers.size(); ++position)
        if (samplers[position]->NumArms() >= leastArmsToExpand)
            positions.push_back(position);
    candidates.swap(positions);
    batchPositions = n;
}

/// Uniform in [0, bound), 0 < bound <= 2^32, by multiplication (Lemire 2019, ACM Transactions on
/// Modeling and Computer Simulation 29).
uint64_t ZVMultiThompson::RandomBelow(uint64_t bound)
{
    constexpr uint64_t words = uint64_t{1} << 32;
    uint64_t product = engine.NextOutput() * bound;
    if (product % words < bound) {
        const uint64_t uneven = words % bound;  // words too many for `bound` equal parts
        while (product % words < uneven)
            product = engine.NextOutput() * bound;
    }
    return product / words;
}

/// As many of the candidates as are to be expanded, in their order. One is taken with the
/// probability that makes each set of them as likely. Standard libraries differ in how they turn
/// the engine's outputs into choices; here it is one output for two candidates as long as their
/// joint range allows it.
std::vector<unsigned int> ZVMultiThompson::ChoosePositions()
{
    if (candidates.size() <= batchPositions)
        return candidates;
    std::vector<unsigned int> chosen;
    chosen.reserve(batchPositions);
    uint64_t left = candidates.size();
    size_t next = 0;
    const auto decide = [&](uint64_t random) {
        if (random < batchPositions - chosen.size())
            chosen.push_back(candidates[next]);
        ++next;
        --left;
    };
    if (left <= 65535)
        while (chosen.size() < batchPositions && left >= 2) {
            const uint64_t fewer = left - 1;
            const uint64_t both = RandomBelow(left * fewer);
            decide(both / fewer);
            if (chosen.size() < batchPositions)
                decide(both % fewer);
        }
    while (chosen.size() < batchPositions)
        decide(RandomBelow(left));
    return chosen;
}

bool ZVMultiThompson::Draw()
{
    if (samplers.empty())
        return true;
    Batch batch;
    batch.expanded = ChoosePositions();
    size_t numExpanded = 0;
    for (unsigned int position = 0; position < samplers.size(); ++position) {
        ZVThompson& sampler = *samplers[position];
        if (numExpanded < batch.expanded.size() && batch.expanded[numExpanded] == position) {
            const std::vector<unsigned int> options = sampler.SampleN(2);
            batch.otherOptions.push_back(options[0]);
            batch.combination.push_back(options[1]);
            ++numExpanded;
        } else
            batch.combination.push_back(sampler.NumArms() == 1 ? 0 : sampler.Sample());
    }
    batch.isFirst.resize(batch.expanded.size());
    batches.push_back(std::move(batch));
    return true;
}

bool ZVMultiThompson::GetNext(std::vector<unsigned int>& combination)
{
    if (batches.empty())
        return false;
    Batch& batch = batches.back();
    combination = batch.combination;
    // Back to the combination before, as an odometer: from the last position on, those at their
    // first option go to the second, until one goes from the second to the first.
    for (size_t i = batch.expanded.size(); i-- > 0;) {
        std::swap(batch.combination[batch.expanded[i]], batch.otherOptions[i]);
        batch.isFirst[i] = !batch.isFirst[i];
        if (batch.isFirst[i])
            return true;
    }
    batches.pop_back();
    return true;
}

std::vector<unsigned int> ZVMultiThompson::Sample()
{
    std::vector<unsigned int> combination;
    combination.reserve(samplers.size());
    for (const auto& sampler : samplers)
        combination.push_back(sampler->Sample());
    return combination;
}

bool ZVMultiThompson::Update(const std::vector<unsigned int>& combination,
                             void (ZVThompson::*update)(unsigned int))
{
    if (combination.size() != samplers.size())
        return false;
    for (size_t position = 0; position < samplers.size(); ++position)
        if (samplers[position]->NumArms() >= 2)
            (*samplers[position].*update)(combination[position]);
    return true;
}

bool ZVMultiThompson::UpdateSuccess(const std::vector<unsigned int>& combination)
{
    return Update(combination, &ZVThompson::UpdateSuccess);
}

bool ZVMultiThompson::UpdateFailure(const std::vector<unsigned int>& combination)
{
    return Update(combination, &ZVThompson::UpdateFailure);
}

void ZVMultiThompson::AssignPriors(const std::vector<double>& priors, unsigned int position)
{
    if (position < samplers.size() && samplers[position]->NumArms() >= 2)
        samplers[position]->AssignPriors(priors);
}

}  // namespace ZVMath
