#pragma once

// What the examples need besides the library: a table of numbers from a file, its columns brought
// to one scale, a file of points to be plotted, and a way to fail with one clear line.

#include "zvmath/datapoints.h"
#include "zvmath/stats.h"
#include "zvplatform/streams.h"

#include <cmath>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

/// A table of numbers with named columns, held row by row.
struct Table
{
    std::vector<std::string> names;
    std::vector<std::vector<double>> rows;
};

/// Reads a tab-separated file whose first line holds the column names.
inline Table ReadTable(const std::string& path)
{
    std::ifstream file(path);
    if (!file)
        throw std::runtime_error("cannot read " + path);
    Table table;
    std::string line;
    std::getline(file, line);
    std::istringstream header(line);
    for (std::string name; std::getline(header, name, '\t');)
        table.names.push_back(name);
    while (std::getline(file, line)) {
        std::istringstream cells(line);
        std::vector<double> row;
        for (double value; cells >> value;)
            row.push_back(value);
        if (row.size() != table.names.size() || !cells.eof())
            throw std::runtime_error(path + ", row " + std::to_string(table.rows.size() + 1) +
                                     ": not a number in each of " +
                                     std::to_string(table.names.size()) + " columns");
        table.rows.push_back(std::move(row));
    }
    if (table.rows.empty())
        throw std::runtime_error(path + " has no rows");
    return table;
}

/// Takes the last column out of the table.
inline std::vector<double> TakeLastColumn(Table& table)
{
    std::vector<double> column;
    for (std::vector<double>& row : table.rows) {
        column.push_back(row.back());
        row.pop_back();
    }
    table.names.pop_back();
    return column;
}

struct Scale
{
    double mean;
    double deviation;
};

/// The mean and the standard deviation of each column.
inline std::vector<Scale> ScalesOf(const std::vector<std::vector<double>>& rows)
{
    const double count = static_cast<double>(rows.size());
    std::vector<Scale> scales;
    for (size_t column = 0; column < rows[0].size(); ++column) {
        std::vector<double> values;
        values.reserve(rows.size());
        for (const std::vector<double>& row : rows)
            values.push_back(row[column]);
        const std::vector<double> mean(values.size(), ZVMath::ZVMean(values));
        const double variance = ZVMath::ZVMeanSquareDeviation(values, mean) * count / (count - 1.0);
        scales.push_back({mean[0], std::sqrt(variance)});
    }
    return scales;
}

/// Measures each column from its mean, in standard deviations.
inline void Standardise(std::vector<std::vector<double>>& rows, const std::vector<Scale>& scales)
{
    for (std::vector<double>& row : rows)
        for (size_t column = 0; column < row.size(); ++column)
            row[column] = (row[column] - scales[column].mean) / scales[column].deviation;
}

inline double SquaredDistance(const std::vector<double>& a, const std::vector<double>& b)
{
    double sum = 0.0;
    for (size_t k = 0; k < a.size(); ++k)
        sum += (a[k] - b[k]) * (a[k] - b[k]);
    return sum;
}

/// Opens a file to be written.
inline std::ofstream OpenForWriting(const std::string& path)
{
    std::ofstream file(path);
    if (!file)
        throw std::runtime_error("cannot write " + path);
    return file;
}

/// Adds series to a file, from which gnuplot takes them by `index`: 0 is the first in the file.
inline void AddSeries(std::ofstream& file, const std::vector<const ZVMath::ZVDataSeries*>& series)
{
    ZVPlatform::zvostdstream stream(file);
    for (const ZVMath::ZVDataSeries* each : series) {
        ZVMath::ZVPrintDataSeries(*each, stream);
        stream << "\n\n";
    }
}

/// The `main` of an example: checks the two arguments, and tells a failure in one line.
inline int RunExample(int argc, char** argv,
                      void (*run)(const std::string& data, const std::string& output))
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s <data folder> <output folder>\n", argv[0]);
        return 2;
    }
    try {
        run(argv[1], argv[2]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
        return 1;
    }
    return 0;
}
