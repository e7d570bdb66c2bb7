// Runs all benchmarks interleaved and prints one table of medians, a row for each workload.

#include "bench.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>

namespace
{

double Median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Three or four digits and a unit.
std::string ReadableTime(double seconds)
{
    const struct
    {
        double size;
        const char* name;
    } units[] = {{1e-9, "ns"}, {1e-6, "us"}, {1e-3, "ms"}, {1.0, "s"}};
    const auto* unit = units;
    while (unit + 1 != std::end(units) && seconds >= 999.5 * unit->size)
        ++unit;
    const double value = seconds / unit->size;
    char text[32];
    std::snprintf(text, sizeof text, "%.*f %s",
                  value < 9.995   ? 2
                  : value < 99.95 ? 1
                                  : 0,
                  value, unit->name);
    return text;
}

std::string Processor()
{
    std::ifstream info("/proc/cpuinfo");
    for (std::string line; std::getline(info, line);)
        if (line.rfind("model name", 0) == 0)
            return line.substr(line.find(':') + 2);
    return "unknown processor";
}

/// Collects the runs; prints the table at the end.
class TableReporter : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        std::vector<double> seconds;
        for (const Run& run : runs) {
            if (run.error_occurred) {
                failure = run.benchmark_name() + ": " + run.error_message;
                return;
            }
            if (run.run_type == Run::RT_Iteration)
                seconds.push_back(run.cpu_accumulated_time / static_cast<double>(run.iterations));
        }
        if (seconds.empty())
            return;  // a call for the aggregates of the call before
        repetitions = seconds.size();
        medians[runs.front().run_name.function_name] = Median(seconds);
    }

    void Finalize() override
    {
        std::ostream& out = GetOutputStream();
#ifdef __clang__
        const char* const compiler = "Clang " __clang_version__;
#else
        const char* const compiler = "GCC " __VERSION__;
#endif
        out << "ZVMath " ZVMATH_BENCH_VERSION ", " << compiler << ", " << Processor() << '\n';
        for (const std::string& peer : peerVersions)
            out << peer << '\n';
        out << "One thread, processor time, median of " << repetitions << " interleaved runs. "
            << "Ratio: the other's time / zvmath's, above 1 = zvmath is ahead.\n\n";

        std::vector<std::string> workloads;
        for (const std::string& name : benchmarkNames)
            if (medians.count(name) > 0) {
                const size_t split = name.rfind(" / ");
                Add(workloads, name.substr(0, split));
                Add(columns, name.substr(split + 3));
            }
        std::vector<std::vector<std::string>> table{{"workload"}};
        table[0].insert(table[0].end(), columns.begin(), columns.end());
        table[0].push_back("ratio");
        for (const std::string& workload : workloads)
            table.push_back(Row(workload));
        Print(table);
    }

    /// The last benchmark that failed and why; empty if none did.
    std::string failure;

private:
    static void Add(std::vector<std::string>& names, const std::string& name)
    {
        if (std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(name);
    }

    std::vector<std::string> Row(const std::string& workload) const
    {
        std::vector<std::string> row{workload};
        const auto ours = medians.find(workload + " / zvmath");
        std::string ratios;
        for (const std::string& column : columns) {
            const auto median = medians.find(workload + " / " + column);
            row.push_back(median == medians.end() ? "" : ReadableTime(median->second));
            if (median == medians.end() || ours == medians.end() || median == ours)
                continue;
            const double ratio = median->second / ours->second;
            char text[32];
            std::snprintf(text, sizeof text, "%.*f ", ratio < 0.01 ? 5 : 2, ratio);
            ratios += (ratios.empty() ? "" : ", ") + (text + column);
        }
        row.push_back(ratios);
        return row;
    }

    /// As a Markdown table with aligned columns, times to the right.
    void Print(const std::vector<std::vector<std::string>>& table) const
    {
        for (size_t r = 0; r < table.size(); ++r) {
            std::string line = "|";
            std::string rule = "|";
            for (size_t c = 0; c < table[r].size(); ++c) {
                size_t width = 0;
                for (const auto& row : table)
                    width = std::max(width, row[c].size());
                const std::string padding(width - table[r][c].size(), ' ');
                const bool isTime = c > 0 && c + 1 < table[r].size();
                line += isTime ? ' ' + padding + table[r][c] : ' ' + table[r][c] + padding;
                line += " |";
                rule += std::string(width + 1, '-') + (isTime ? ":|" : "-|");
            }
            GetOutputStream() << line << '\n';
            if (r == 0)
                GetOutputStream() << rule << '\n';
        }
    }

    size_t repetitions = 0;
    std::vector<std::string> columns{"zvmath"};
    std::map<std::string, double> medians;  // seconds, by "workload / column"
};

}  // namespace

/// Takes the options of Google Benchmark, such as --benchmark_filter=REGEX.
int main(int argc, char** argv)
{
    // Later ones win, so the user's own follow.
    std::string interleaving = "--benchmark_enable_random_interleaving=true";
    std::string repetitions = "--benchmark_repetitions=11";
    std::string minTime = "--benchmark_min_time=0.05";
    std::vector<char*> arguments{argv[0], interleaving.data(), repetitions.data(), minTime.data()};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;

    AddMatrixBenchmarks();
    AddMatrixDumpBenchmarks();
    AddDbscanBenchmarks();
    AddKernelplsBenchmarks();
    AddStatsBenchmarks();
    AddSpecialFunctionsBenchmarks();
    AddLassoBenchmarks();
    AddThompsonBenchmarks();
    AddSimpleShapesBenchmarks();
    AddEnclosingBoxBenchmarks();
    AddRootsBenchmarks();
    AddMultPrecIntBenchmarks();
    TableReporter reporter;
    const size_t matches = benchmark::RunSpecifiedBenchmarks(&reporter);
    if (!reporter.failure.empty())
        std::cerr << "zvmath_bench: " << reporter.failure << '\n';
    return matches > 0 && reporter.failure.empty() ? 0 : 1;
}
