#pragma once

#include "zvmath/matrix.h"
#include "zvsystem/errors.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

/// What the tests share: comparisons, matrices from values, tables from files, recorded warnings.
namespace ZVTest
{

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double epsilon = std::numeric_limits<double>::epsilon();

/// In decimal and in hexadecimal.
inline std::string Show(double value)
{
    char text[80];
    std::snprintf(text, sizeof text, "%.17g (%a)", value, value);
    return text;
}

/// Equal to the bit; zeros of different sign differ, any NaN equals any NaN.
inline testing::AssertionResult SameBits(double actual, double expected)
{
    if ((actual == expected && std::signbit(actual) == std::signbit(expected)) ||
        (std::isnan(actual) && std::isnan(expected)))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << Show(actual) << " instead of " << Show(expected);
}

/// |actual - expected| <= bound, or the same infinity, or both NaN.
inline testing::AssertionResult Near(double actual, double expected, double bound)
{
    if (actual == expected || std::abs(actual - expected) <= bound ||
        (std::isnan(actual) && std::isnan(expected)))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << Show(actual) << " is off " << Show(expected) << " by "
                                       << actual - expected << ", more than " << bound;
}

/// `compare(actual[i], expected[i])` for all i; tells the first i where it fails.
template <class Compare>
testing::AssertionResult ForAll(const std::vector<double>& actual,
                                const std::vector<double>& expected, Compare compare)
{
    if (actual.size() != expected.size())
        return testing::AssertionFailure()
               << actual.size() << " values instead of " << expected.size();
    for (size_t i = 0; i < actual.size(); ++i)
        if (const testing::AssertionResult result = compare(actual[i], expected[i]); !result)
            return testing::AssertionFailure() << "element " << i << ": " << result.message();
    return testing::AssertionSuccess();
}

inline testing::AssertionResult SameBits(const std::vector<double>& actual,
                                         const std::vector<double>& expected)
{
    return ForAll(actual, expected, [](double a, double b) { return SameBits(a, b); });
}

inline testing::AssertionResult Near(const std::vector<double>& actual,
                                     const std::vector<double>& expected, double bound)
{
    return ForAll(actual, expected, [bound](double a, double b) { return Near(a, b, bound); });
}

/// A multiple of 2^-31 in [-1, 1), the same on every system.
inline double Uniform(std::mt19937& random)
{
    return std::ldexp(static_cast<double>(random()), -31) - 1.0;
}

/// `matrix` with element (r, c) = element(r, c), called row by row.
template <class Matrix, class Element> Matrix Filled(Matrix matrix, Element element)
{
    std::vector<double> row(matrix.GetNumColumns());
    for (unsigned int r = 0; r < matrix.GetNumRows(); ++r) {
        for (unsigned int c = 0; c < matrix.GetNumColumns(); ++c)
            row[c] = element(r, c);
        matrix.SetRowData(r, row);
    }
    return matrix;
}

/// rows x columns, likewise.
template <class Element>
ZVMath::ZVMatrix MakeMatrix(unsigned int rows, unsigned int columns, Element element)
{
    return Filled(ZVMath::ZVMatrix(rows, columns), element);
}

/// n x n, likewise.
template <class Element> ZVMath::ZVSquareMatrix MakeSquare(unsigned int n, Element element)
{
    return Filled(ZVMath::ZVSquareMatrix(n), element);
}

/// The n * n elements in `values`, row by row.
inline ZVMath::ZVSquareMatrix MakeSquare(const std::vector<double>& values)
{
    unsigned int n = 0;
    while (size_t{n} * n < values.size())
        ++n;
    return MakeSquare(n, [&](unsigned int r, unsigned int c) { return values.at(r * n + c); });
}

/// The rows of a tab-separated file in the data directory, without a heading line. A field that is
/// not a number becomes NaN.
inline std::vector<std::vector<double>> ReadTable(const std::string& file)
{
    std::ifstream stream(std::string(ZVMATH_DATA_DIR) + "/" + file);
    if (!stream)
        throw std::runtime_error("no data file " + file);
    std::vector<std::vector<double>> rows;
    for (std::string line, field; std::getline(stream, line);) {
        std::vector<double> row;
        for (std::istringstream fields(line); std::getline(fields, field, '\t');) {
            char* end = nullptr;
            const double value = std::strtod(field.c_str(), &end);
            row.push_back(end == field.c_str() || *end != '\0' ? NaN : value);
        }
        if (!rows.empty() || !std::isnan(row.at(0)))
            rows.push_back(row);
    }
    return rows;
}

/// Collects the warnings of the toolkit while it lives, instead of their going to standard error.
class Warnings
{
public:
    Warnings() : former(ZVSystem::ZVThrow.SetWarningSink({Keep, this})) {}
    ~Warnings() { ZVSystem::ZVThrow.SetWarningSink(former); }
    Warnings(const Warnings&) = delete;
    Warnings& operator=(const Warnings&) = delete;

    std::vector<std::string> messages;

private:
    static void Keep(void* self, const char* message)
    {
        static_cast<Warnings*>(self)->messages.push_back(message);
    }
    ZVSystem::ZVWarningSink former;
};

}  // namespace ZVTest
