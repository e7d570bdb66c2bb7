#pragma once

#include "zvmath/thompson.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <random>
#include <utility>
#include <vector>

/// The samplers in the plainest way.
namespace ZVTest
{

using Engine = ZVMath::MtRng<ZVMath::Mt32Traits>;
using Arms = std::vector<unsigned int>;

/// A single-position sampler, step by step.
class NaiveSampler
{
public:
    NaiveSampler(unsigned int count, bool roulette)
        : isRoulette(roulette), alphas(count, 1), betas(count, 1), engines(roulette ? 0 : count)
    {
        Seed(0);
    }
    void Seed(unsigned int seed)
    {
        spinner.seed(seed);
        for (Engine& engine : engines)
            engine = Engine(++seed);
    }
    unsigned int Sample()
    {
        if (isRoulette)
            return Spin();
        const unsigned int best = SampleN(1)[0];
        return best < alphas.size() ? best : 0;
    }
    Arms SampleN(unsigned int n)
    {
        Arms arms(n, NumArms());
        std::vector<double> draws, numbers;
        for (unsigned int k = 0; k < NumArms() && !isRoulette; ++k) {
            draws.push_back(ZVMath::ZVBetaRNG(alphas[k], betas[k])(engines[k]));
            if (!std::isnan(draws[k]))
                numbers.push_back(draws[k]);
        }
        std::sort(numbers.rbegin(), numbers.rend());
        for (unsigned int i = 0; i < n; ++i)
            if (isRoulette)
                arms[i] = Spin();
            else if (i < numbers.size())
                for (arms[i] = 0; draws[arms[i]] != numbers[i];)
                    ++arms[i];
        return arms;
    }
    void UpdateSuccess(unsigned int arm) { AssignPrior(arm, GetAlpha(arm) + 1, GetBeta(arm)); }
    void UpdateFailure(unsigned int arm) { AssignPrior(arm, GetAlpha(arm), GetBeta(arm) + 1); }
    double GetAlpha(unsigned int arm) const { return arm < alphas.size() ? alphas[arm] : 0; }
    double GetBeta(unsigned int arm) const { return arm < betas.size() ? betas[arm] : 0; }
    bool AssignPrior(unsigned int arm, double alpha, double beta)
    {
        if (arm >= alphas.size())
            return false;
        alphas[arm] = alpha;
        betas[arm] = beta;
        return true;
    }
    bool AssignPriors(const std::vector<double>& priors)
    {
        for (size_t k = 0; priors.size() == alphas.size() && k < priors.size(); ++k) {
            alphas[k] = std::clamp(std::floor(priors[k] * 10 + 0.5), 1.0, 9.0);
            betas[k] = 10 - alphas[k];
        }
        return priors.size() == alphas.size();
    }
    unsigned int NumArms() const { return static_cast<unsigned int>(alphas.size()); }

    bool isRoulette;

private:
    unsigned int Spin()
    {
        double total = 0.0, sum = 0.0;
        for (size_t k = 0; k < alphas.size(); ++k)
            total += alphas[k] / (betas[k] + alphas[k]);
        const double low = static_cast<double>(spinner());
        const double r = total * 0x1p-64 * (static_cast<double>(spinner()) * 0x1p32 + low);
        for (unsigned int k = 0; k < alphas.size(); ++k)
            if ((sum += alphas[k] / (betas[k] + alphas[k])) > r)
                return k;
        return NumArms() - 1;
    }

    std::vector<double> alphas, betas;
    std::vector<Engine> engines;
    std::mt19937 spinner;
};

/// Step by step, with every combination of a batch in a queue.
class NaiveMulti
{
public:
    NaiveMulti(const Arms& armsPerPosition, unsigned int samplerKind) : kind(samplerKind)
    {
        for (const unsigned int count : armsPerPosition) {
            samplers.emplace_back(count, kind != 1);
            samplers.back().Seed(static_cast<unsigned int>(samplers.size() - 1));
        }
    }
    bool SwitchToRoulette()
    {
        for (unsigned int p = 0; kind != 2 && p < samplers.size(); ++p) {
            samplers[p].isRoulette = true;
            samplers[p].Seed(p);
        }
        return std::exchange(kind, 2) != 2;
    }
    void Seed(unsigned int seed)
    {
        for (unsigned int p = 0; p < samplers.size(); ++p)
            samplers[p].Seed(seed + 1 + p);
    }
    void SetupBatchDraw(unsigned int n)
    {
        batchPositions = n;
        candidates.clear();
        for (unsigned int p = 0; p < samplers.size(); ++p)
            if (samplers[p].NumArms() >= 5)
                candidates.push_back(p);
    }
    bool Draw()
    {
        Arms expanded;
#if defined(_GLIBCXX_RELEASE) && _GLIBCXX_RELEASE >= 11
        if (candidates.size() > batchPositions)
            std::sample(candidates.begin(), candidates.end(), std::back_inserter(expanded),
                        batchPositions, engine);
        else
#endif
            expanded = candidates;
        std::vector<Arms> drawn(!samplers.empty());
        for (unsigned int p = 0; p < samplers.size(); ++p) {
            Arms options = {0};
            if (std::count(expanded.begin(), expanded.end(), p))
                options = samplers[p].SampleN(2);
            else if (samplers[p].NumArms() != 1)
                options = {samplers[p].Sample()};
            std::vector<Arms> longer;
            for (const Arms& begun : drawn)
                for (const unsigned int option : options) {
                    longer.push_back(begun);
                    longer.back().push_back(option);
                }
            drawn = longer;
        }
        queue.insert(queue.end(), drawn.begin(), drawn.end());
        return true;
    }
    bool GetNext(Arms& combination)
    {
        if (queue.empty())
            return false;
        combination = queue.back();
        queue.pop_back();
        return true;
    }
    Arms Sample()
    {
        Arms combination;
        for (NaiveSampler& sampler : samplers)
            combination.push_back(sampler.Sample());
        return combination;
    }
    bool Update(const Arms& combination, void (NaiveSampler::*update)(unsigned int))
    {
        for (size_t p = 0; combination.size() == samplers.size() && p < samplers.size(); ++p)
            if (samplers[p].NumArms() > 1)
                (samplers[p].*update)(combination[p]);
        return combination.size() == samplers.size();
    }
    bool UpdateSuccess(const Arms& tried)
    {
        return Update(tried, &NaiveSampler::UpdateSuccess);
    }
    bool UpdateFailure(const Arms& tried)
    {
        return Update(tried, &NaiveSampler::UpdateFailure);
    }
    void AssignPriors(const std::vector<double>& priors, unsigned int position)
    {
        if (position < samplers.size() && samplers[position].NumArms() > 1)
            samplers[position].AssignPriors(priors);
    }

private:
    unsigned int kind;
    std::mt19937 engine{0};
    std::vector<NaiveSampler> samplers;
    std::vector<Arms> queue;
    Arms candidates;
    unsigned int batchPositions = 1;
};

}  // namespace ZVTest
