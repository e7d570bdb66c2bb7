#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>
#include <vector>

/// The rows that each unit adds to the table, in the table's order.
void AddMatrixBenchmarks();
void AddMatrixDumpBenchmarks();
void AddDbscanBenchmarks();
void AddKernelplsBenchmarks();
void AddStatsBenchmarks();
void AddSpecialFunctionsBenchmarks();
void AddLassoBenchmarks();
void AddThompsonBenchmarks();
void AddSimpleShapesBenchmarks();
void AddEnclosingBoxBenchmarks();
void AddRootsBenchmarks();
void AddMultPrecIntBenchmarks();

/// Names and versions of the peers that are compiled in.
inline std::vector<std::string> peerVersions;

/// Everything that is timed, as "workload / column", in the table's order.
inline std::vector<std::string> benchmarkNames;

/// The sum of the values, read as fast as one core can: the floor of whatever must read them all.
double ReadAll(const double* values, size_t n);

/// Times `compute(input())` as the cell of `workload` (a row) and `column` (who computes: "zvmath",
/// a peer, "plain" for the formula as plain loops, or "floor" for a lower bound). `input` returns a
/// reference to the same object each time. Nothing wrong is timed: when `agrees(input, result)` is
/// false, the run ends with an error.
template <class Input, class Compute, class Agrees>
void AddBenchmark(const std::string& workload, const std::string& column, Input input,
                  Compute compute, Agrees agrees)
{
    const auto timed = [=](benchmark::State& state) {
        auto* object = &input();
        if (!agrees(*object, compute(*object)))
            return state.SkipWithError("wrong result");
        for (auto _ : state) {
            benchmark::DoNotOptimize(object);  // it may be another one: nothing is hoisted
            benchmark::DoNotOptimize(compute(*object));
        }
    };
    benchmarkNames.push_back(workload + " / " + column);
    benchmark::RegisterBenchmark(benchmarkNames.back().c_str(), timed);
}
