#pragma once

#include "zvmath/export.h"
#include "zvsystem/beta_rng.h"
#include "zvsystem/random_engine.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

/// Random engine, Beta distribution, and Thompson samplers for multi-armed bandits.
///
/// A sampler chooses among the arms of a bandit, is told of successes and failures, and so learns
/// which arms succeed most: each arm has a Beta(alpha, beta) posterior of its probability of
/// success, where alpha is 1 plus the number of successes and beta 1 plus that of failures
/// (Thompson 1933, Biometrika 25).
///
/// Seeds and the order of draws are part of the contract: the same seed and the same calls give the
/// same choices. `ZVRouletteThompson` and everything drawn with (1, 1) have the same bits
/// everywhere. Of other Beta draws some take a logarithm or an exponential function of the C
/// library, whose last bit depends on the processor. It changes a choice only where two draws all
/// but agree, or where it decides whether a draw is rejected; the arm's stream then goes on
/// shifted.
///
/// Nothing is shared: different objects may be used by different threads at once, one object by one
/// at a time.
namespace ZVMath
{

/// An engine with the constants of `Traits`: there is `MtRng<Mt32Traits>`.
template <class Traits> class MtRng;

/// The 32-bit Mersenne twister MT19937 (Matsumoto, Nishimura 1998, ACM Transactions on Modeling and
/// Computer Simulation 8).
struct Mt32Traits
{
    /// The recurrence's constants: words of state, the distance of the word that is mixed in, which
    /// bits of a word come from which neighbour, and what a lost bit flips.
    static constexpr std::size_t stateSize = 624;
    static constexpr std::size_t shift = 397;
    static constexpr unsigned int upperMask = 0x80000000u;
    static constexpr unsigned int lowerMask = 0x7fffffffu;
    static constexpr unsigned int mag01[2] = {0x0u, 0x9908b0dfu};

    /// The new bits of the word between the neighbours `u` and `v`.
    static unsigned int twist(const unsigned int& u, const unsigned int& v)
    {
        return (((u & upperMask) | (v & lowerMask)) >> 1) ^ mag01[v & 1u];
    }
};

/// An engine that gives the outputs y of MT19937 for its seed, one a call: a value, whose copy goes
/// on as the original would. The state is renewed in blocks by vector instructions. 3.3 KB.
template <> class ZVMATH_EXPORT MtRng<Mt32Traits> final : public ZVRanNumEngine
{
public:
    /// Starts from `seed`, or from 5489.
    MtRng() : MtRng(5489u) {}
    explicit MtRng(unsigned int seed);
    MtRng(const MtRng&) = default;
    MtRng& operator=(const MtRng&) = default;
    ~MtRng() override;

    /// y / 2, rounded down: 31 bits.
    unsigned int getUnsigned() override { return NextOutput() >> 1; }

    /// y * 2^-32, in [0, 1 - 2^-32]. (Exact, so no compiler flag can change it.)
    double getUnitDouble() override { return NextOutput() * 2.3283064365386963e-10; }

private:
    friend class ZVBetaThompson;
    friend class ZVRouletteThompson;
    friend class ZVMultiThompson;
    friend struct TwisterSource;

    /// The state is renewed and its outputs are computed by so many words, a third of all.
    static constexpr unsigned int blockSize = 208;

    unsigned int NextOutput()
    {
        if (next == blockSize)
            Renew();
        return outputs[next++];
    }
    void Renew();

    unsigned int state[Mt32Traits::stateSize];
    unsigned int outputs[blockSize];
    unsigned int next;   // of the outputs
    unsigned int block;  // of the state, the next one to be renewed
};

/// A source of Beta(alpha, beta) draws with an engine of its own: a value, whose copy goes on as
/// the original would.
class ZVMATH_EXPORT ZVBetaDistribution
{
public:
    /// With an engine seeded with 5489. Parameters: see `ZVBetaRNG`.
    ZVBetaDistribution(double alpha, double beta);
    ZVBetaDistribution() : ZVBetaDistribution(1.0, 1.0) {}

    /// Restarts the engine with `seed`; the parameters stay.
    void Seed(unsigned int seed) { engine = MtRng<Mt32Traits>(seed); }

    /// Takes other parameters; the engine stays where it is.
    void Reset(double newAlpha, double newBeta);

    /// One draw.
    double Rand();

    /// The parameters.
    double GetAlpha() const { return alpha; }
    double GetBeta() const { return beta; }

private:
    friend class ZVBetaThompson;

    MtRng<Mt32Traits> engine;
    ZVBetaRNG generator;
    double alpha;
    double beta;
};

/// A sampler of one of N arms.
class ZVMATH_EXPORT ZVThompson
{
public:
    /// Arms are numbered from 0.
    explicit ZVThompson(unsigned int armCount) : numArms(armCount) {}
    virtual ~ZVThompson();

    /// Restarts the random streams; what was learnt stays.
    virtual void Seed(unsigned int seed) = 0;

    /// The arm to try next.
    virtual unsigned int Sample() = 0;

    /// n arms to try next.
    virtual std::vector<unsigned int> SampleN(unsigned int n) = 0;

    /// Tells that `arm` was tried and succeeded: its alpha grows by 1. Out of range: ignored.
    virtual void UpdateSuccess(unsigned int arm) = 0;

    /// Tells that `arm` was tried and failed: its beta grows by 1. Out of range: ignored.
    virtual void UpdateFailure(unsigned int arm) = 0;

    /// The posterior's parameters; 0.0 for an arm out of range.
    virtual double GetAlpha(unsigned int arm) const = 0;
    virtual double GetBeta(unsigned int arm) const = 0;

    /// Sets the posterior of `arm`. Out of range: false, and nothing changes.
    virtual bool AssignPrior(unsigned int arm, double alpha, double beta) = 0;

    /// N.
    unsigned int NumArms() const { return numArms; }

    /// Makes posteriors with alpha + beta = 10 out of probabilities of success: arm k gets 10 *
    /// priors[k] for alpha, rounded to the nearest integer (halves up) and brought into 1 .. 9
    /// (NaN: 1). False, and nothing changes, unless there is one prior for each arm.
    bool AssignPriors(std::vector<double> priors);

protected:
    ZVThompson(const ZVThompson&) = default;
    ZVThompson& operator=(const ZVThompson&) = default;

private:
    unsigned int numArms;
};

/// Thompson sampling: draws from each arm's posterior and takes the arm with the largest draw. Each
/// arm has a random stream of its own. A draw that is NaN (see `ZVBetaRNG`) never wins.
///
/// The stream of arm k after `Seed(s)` is that of arm k + 1 after `Seed(s - 1)`, and of an engine
/// seeded with s + k + 1: space the seeds of samplers and engines that should be independent by at
/// least the number of arms.
///
/// Cost: one Beta draw per arm and choice; 3.4 KB of memory per arm.
class ZVMATH_EXPORT ZVBetaThompson : public ZVThompson
{
public:
    /// Arm k's engine is seeded with k + 1.
    explicit ZVBetaThompson(unsigned int armCount);
    ZVBetaThompson(const ZVBetaThompson&) = default;
    ZVBetaThompson(ZVBetaThompson&&) = default;
    /// Unchanged when memory runs out.
    ZVBetaThompson& operator=(const ZVBetaThompson& other);
    ZVBetaThompson& operator=(ZVBetaThompson&&) = default;

    /// Arm k's engine is seeded with seed + k + 1, modulo 2^32.
    void Seed(unsigned int seed) override;

    /// Draws from the arms in ascending order; of equal draws the lowest arm wins. 0 if there are
    /// no arms, or all draws are NaN. Allocates nothing.
    unsigned int Sample() override;

    /// Draws once from each arm, in ascending order, even if n is 0, and gives the arms of the n
    /// largest draws, best first. Of arms with exactly equal draws the lowest is named in the place
    /// of each. Surplus places (n larger than the number of arms, or draws that are NaN) hold
    /// `NumArms()`.
    std::vector<unsigned int> SampleN(unsigned int n) override;

    void UpdateSuccess(unsigned int arm) override;
    void UpdateFailure(unsigned int arm) override;
    double GetAlpha(unsigned int arm) const override;
    double GetBeta(unsigned int arm) const override;
    bool AssignPrior(unsigned int arm, double alpha, double beta) override;

private:
    ZVMATH_HIDDEN void SeedArms(unsigned int first);

    std::vector<ZVBetaDistribution> arms;
};

/// Chooses arm k with a probability in proportion to its posterior mean, alpha / (alpha + beta), by
/// one engine for all arms. Cheap; but it keeps trying bad arms, so what it loses against the best
/// arm grows in proportion to the number of tries.
class ZVMATH_EXPORT ZVRouletteThompson : public ZVThompson
{
public:
    /// The engine is seeded with 0.
    explicit ZVRouletteThompson(unsigned int armCount);
    ZVRouletteThompson(const ZVRouletteThompson&) = default;
    ZVRouletteThompson(ZVRouletteThompson&&) = default;
    /// Unchanged when memory runs out.
    ZVRouletteThompson& operator=(const ZVRouletteThompson& other);
    ZVRouletteThompson& operator=(ZVRouletteThompson&&) = default;

    /// The engine is seeded with `seed`.
    void Seed(unsigned int seed) override;

    /// The first arm k with c_k > r, where c_k is the sum of the means of arms 0 .. k in this
    /// order, and r = (c_last * 2^-64) * (hi * 2^32 + lo) of two outputs of the engine, lo first.
    /// The last arm when there is none (rounding, or a NaN); 4294967295 with no arms, after two
    /// outputs too. Cost: of the order of log N, or N after an update and where means are negative
    /// or NaN; allocates nothing.
    unsigned int Sample() override;

    /// n independent choices.
    std::vector<unsigned int> SampleN(unsigned int n) override;

    void UpdateSuccess(unsigned int arm) override;
    void UpdateFailure(unsigned int arm) override;
    double GetAlpha(unsigned int arm) const override;
    double GetBeta(unsigned int arm) const override;
    bool AssignPrior(unsigned int arm, double alpha, double beta) override;

private:
    struct Arm
    {
        double alpha = 1.0;
        double beta = 1.0;
        double sum = 0.0;  // of the means of the arms up to this one
    };

    ZVMATH_HIDDEN void SetOutdated(unsigned int arm);
    ZVMATH_HIDDEN void UpdateSums();

    MtRng<Mt32Traits> engine;
    std::vector<Arm> arms;
    std::size_t numUpToDate = 0;   // so many sums are, from the first on
    std::size_t numAscending = 0;  // of these so many are not less than the one before
};

/// Thompson sampling over combinations: P positions, of which each has arms of its own; a
/// combination names one arm of each. Every position has a sampler; positions are taken as
/// independent.
///
/// Besides single combinations (`Sample`) it draws batches: with `SetupBatchDraw(n)`, `Draw`
/// expands up to n positions to two arms each and queues all combinations of them, to be taken by
/// `GetNext`.
///
/// Known limit: the streams overlap. Arm k of position p starts from seed p + k + 1, or after
/// `Seed(s)` from s + p + k + 2. So neighbouring positions share streams, shifted by one arm, and
/// as long as their counts are equal their choices go together: of two new neighbours with N arms
/// the second chooses one arm lower than the first with probability (N - 1) / (N + 1), for N = 10
/// four times out of five. It fades as the counts differ (docs/thompson.md of the source tree).
/// Roulette positions have a stream each. But as long as they have not been seeded, that of
/// position 0 is also the stream that chooses which positions to expand: call `Seed`, and again
/// after `SwitchToRoulette`. `Seed(s)` and `Seed(s + 1)` are near copies: space seeds by P plus the
/// largest number of arms.
///
/// It can be moved, but not copied. When memory runs out, nothing has changed but the state of
/// random streams.
class ZVMATH_EXPORT ZVMultiThompson
{
public:
    /// Position p gets a sampler of `armsPerPosition[p]` arms, seeded with p: a `ZVBetaThompson` if
    /// `kind` is 1, a `ZVRouletteThompson` if it is 2 or any other number.
    ZVMultiThompson(const std::vector<unsigned int>& armsPerPosition, unsigned int kind);
    ZVMultiThompson(ZVMultiThompson&&) = default;
    ZVMultiThompson& operator=(ZVMultiThompson&&) = default;

    /// Turns all positions to `ZVRouletteThompson` with the counts that they have; position p is
    /// seeded with p, whatever the seed was before. What is queued stays. False, and nothing
    /// changes, if `kind` is 2 already.
    bool SwitchToRoulette();

    /// Position p is seeded with seed + 1 + p, modulo 2^32. What is queued stays, and so does the
    /// stream that chooses the positions to expand: it is the same for all objects.
    void Seed(unsigned int seed);

    /// From now on each `Draw` expands up to n of the positions that have at least 5 arms; at first
    /// it expands none, and queues one combination.
    void SetupBatchDraw(unsigned int n);

    /// Queues combinations: one for each choice of an option at each position. An expanded position
    /// has the options `SampleN(2)` (roulette: maybe twice the same), any other the one option
    /// `Sample()`, or arm 0 without sampling if it is the only one. Positions are sampled in
    /// ascending order. If more than n can be expanded, n are chosen at random, each set with equal
    /// probability, by an engine seeded with 0 at construction (selection sampling: Fan, Muller,
    /// Rezucha 1962, Journal of the American Statistical Association 57). Returns true; without
    /// positions nothing is queued. (Where `Sample` or `SampleN` gives an arm that does not exist,
    /// so do the combinations.) Cost: a sample per position, whatever the number of combinations.
    bool Draw();

    /// Takes the combination that was queued last: of the last `Draw` first, and within it from the
    /// last to the first in lexicographic order of options, the last position changing fastest.
    /// False, and `combination` stays as it is, when the queue is empty. Cost: of the order of P.
    bool GetNext(std::vector<unsigned int>& combination);

    /// One combination: `Sample()` at each position in ascending order.
    std::vector<unsigned int> Sample();

    /// Tells that `combination` was tried and succeeded, or failed: so did its arm at each position
    /// that has at least two (arms out of range are ignored). False, and nothing changes, unless it
    /// has P arms.
    bool UpdateSuccess(const std::vector<unsigned int>& combination);
    bool UpdateFailure(const std::vector<unsigned int>& combination);

    /// `ZVThompson::AssignPriors` of the sampler at `position`. Nothing changes, and nothing tells
    /// so, if there is no such position, if it has fewer than two arms, or if there is not one
    /// prior for each arm.
    void AssignPriors(const std::vector<double>& priors, unsigned int position);

private:
    /// The combinations of one `Draw` that were not taken yet.
    struct Batch
    {
        std::vector<unsigned int> combination;   // the next one to take
        std::vector<unsigned int> expanded;      // positions, ascending
        std::vector<unsigned int> otherOptions;  // of each expanded position: the one not in there
        std::vector<bool> isFirst;               // whether the one in there is the first option
    };

    ZVMATH_HIDDEN static std::unique_ptr<ZVThompson>
    MakeSampler(unsigned int samplerKind, unsigned int armCount, unsigned int position);
    ZVMATH_HIDDEN std::uint64_t RandomBelow(std::uint64_t bound);
    ZVMATH_HIDDEN std::vector<unsigned int> ChoosePositions();
    ZVMATH_HIDDEN bool Update(const std::vector<unsigned int>& combination,
                              void (ZVThompson::*update)(unsigned int));

    unsigned int kind;
    MtRng<Mt32Traits> engine{0};
    std::vector<std::unique_ptr<ZVThompson>> samplers;
    std::vector<Batch> batches;
    std::vector<unsigned int> candidates;
    unsigned int batchPositions = 0;
};

}  // namespace ZVMath
