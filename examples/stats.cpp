// Predicts how long the Old Faithful geyser pauses from how long it erupted, by two straight lines,
// and scores them on eruptions kept back. Some waiting times are then spoiled on purpose, to see
// which line and which score bear it.

#include "table.h"

#include "zvmath/stats.h"

using ZVMath::ZVDataSeries;

namespace
{

/// Eruptions: how long each lasted and how long the next was waited for, in minutes.
struct Eruptions
{
    std::vector<double> length;
    std::vector<double> waiting;
};

/// waiting = intercept + slope * length
struct Line
{
    double intercept;
    double slope;

    std::vector<double> At(std::vector<double> lengths) const
    {
        for (double& length : lengths)
            length = intercept + slope * length;
        return lengths;
    }
};

/// The line with the least mean square deviation.
Line LeastSquares(const Eruptions& eruptions)
{
    const double meanLength = ZVMath::ZVMean(eruptions.length);
    const double meanWaiting = ZVMath::ZVMean(eruptions.waiting);
    double products = 0.0, squares = 0.0;
    for (size_t i = 0; i < eruptions.length.size(); ++i) {
        const double length = eruptions.length[i] - meanLength;
        products += length * (eruptions.waiting[i] - meanWaiting);
        squares += length * length;
    }
    const double slope = products / squares;
    return {meanWaiting - slope * meanLength, slope};
}

/// The line whose slope is the median of those between any two eruptions (Theil 1950, Sen 1968),
/// with as many eruptions above as below.
Line MedianOfSlopes(const Eruptions& eruptions)
{
    std::vector<double> slopes;
    for (size_t i = 0; i < eruptions.length.size(); ++i)
        for (size_t j = 0; j < i; ++j)
            if (eruptions.length[i] != eruptions.length[j])
                slopes.push_back((eruptions.waiting[i] - eruptions.waiting[j]) /
                                 (eruptions.length[i] - eruptions.length[j]));
    const double slope = ZVMath::ZVMedian(slopes);
    std::vector<double> intercepts;
    for (size_t i = 0; i < eruptions.length.size(); ++i)
        intercepts.push_back(eruptions.waiting[i] - slope * eruptions.length[i]);
    return {ZVMath::ZVMedian(intercepts), slope};
}

/// As if every `interval`-th time an eruption had passed unseen: the waiting time doubles.
Eruptions Spoiled(Eruptions eruptions, size_t interval)
{
    for (size_t i = interval - 1; i < eruptions.waiting.size(); i += interval)
        eruptions.waiting[i] *= 2.0;
    return eruptions;
}

void Score(const char* name, const std::vector<double>& predicted, const Eruptions& measured)
{
    std::printf("  %-34s  %6.2f  %8.2f  %10.2f  %9.3f\n", name,
                ZVMath::ZVRMSE(measured.waiting, predicted),
                ZVMath::ZVMeanAbsDeviation(measured.waiting, predicted),
                ZVMath::ZVMedianAbsDeviation(measured.waiting, predicted),
                ZVMath::ZVRSquared(measured.waiting, predicted));
}

void Run(const std::string& data, const std::string& output)
{
    // The eruptions come in order of time: learn from the first half, predict the second.
    const Table all = ReadTable(data + "/faithful.tsv");
    Eruptions training, test;
    for (size_t i = 0; i < all.rows.size(); ++i) {
        Eruptions& half = 2 * i < all.rows.size() ? training : test;
        half.length.push_back(all.rows[i][0]);
        half.waiting.push_back(all.rows[i][1]);
    }
    const Eruptions spoiledTraining = Spoiled(training, 10);
    const Line squares = LeastSquares(training);
    const Line medians = MedianOfSlopes(training);
    const Line spoiledSquares = LeastSquares(spoiledTraining);
    const Line spoiledMedians = MedianOfSlopes(spoiledTraining);

    std::printf("%zu eruptions to learn from, %zu later ones to test on. Minutes, but R squared.\n",
                training.length.size(), test.length.size());
    const std::vector<double> mean(test.length.size(), ZVMath::ZVMean(training.waiting));
    for (const bool spoiled : {false, true}) {
        const Eruptions measured = spoiled ? Spoiled(test, 10) : test;
        std::printf("\nTested on waiting times %s\n",
                    spoiled ? "of which every tenth is doubled" : "as measured");
        std::printf(
            "                                        RMSE  mean abs  median abs  R squared\n");
        Score("mean waiting time", mean, measured);
        Score("least squares", squares.At(test.length), measured);
        Score("median of slopes", medians.At(test.length), measured);
        Score("least squares, learnt from doubled", spoiledSquares.At(test.length), measured);
        Score("median of slopes, from doubled", spoiledMedians.At(test.length), measured);
    }

    ZVDataSeries asMeasured, doubled;
    asMeasured.SetTitle("eruption, waiting time as measured: the first half");
    doubled.SetTitle("eruption, waiting time doubled");
    for (size_t i = 0; i < training.length.size(); ++i) {
        const double waiting = spoiledTraining.waiting[i];
        (waiting == training.waiting[i] ? asMeasured : doubled)
            .AddPoint({training.length[i], waiting});
    }
    ZVDataSeries bySquares, byMedians;
    bySquares.SetTitle("eruption, waiting time by least squares");
    byMedians.SetTitle("eruption, waiting time by the median of slopes");
    for (const double length : {1.5, 5.25}) {
        bySquares.AddPoint({length, spoiledSquares.At({length})[0]});
        byMedians.AddPoint({length, spoiledMedians.At({length})[0]});
    }
    ZVDataSeries rmse, meanAbs, medianAbs;
    rmse.SetTitle("per cent doubled, RMSE: the second half");
    meanAbs.SetTitle("per cent doubled, mean absolute deviation");
    medianAbs.SetTitle("per cent doubled, median absolute deviation");
    const std::vector<double> predicted = medians.At(test.length);
    for (const size_t interval : {1000u, 40u, 20u, 10u, 7u, 5u, 4u, 3u}) {
        const Eruptions measured = Spoiled(test, interval);
        const size_t numDoubled = test.length.size() / interval;
        const double percent =
            100.0 * static_cast<double>(numDoubled) / static_cast<double>(test.length.size());
        rmse.AddPoint({percent, ZVMath::ZVRMSE(measured.waiting, predicted)});
        meanAbs.AddPoint({percent, ZVMath::ZVMeanAbsDeviation(measured.waiting, predicted)});
        medianAbs.AddPoint({percent, ZVMath::ZVMedianAbsDeviation(measured.waiting, predicted)});
    }
    std::ofstream file = OpenForWriting(output + "/stats.dat");
    AddSeries(file, {&asMeasured, &doubled, &bySquares, &byMedians, &rmse, &meanAbs, &medianAbs});
}

}  // namespace

int main(int argc, char** argv)
{
    return RunExample(argc, argv, Run);
}
