#pragma once

#include <cmath>

/// The C library's elementary functions, for both libraries. They are the only steps whose last
/// bit may depend on the machine: C libraries choose versions by processor. Passing through here,
/// what depends on them can be found. Not to be called on a constant: the compiler would fold it
/// with a rounding of its own.
namespace ZVMath
{

inline double Log(double x)
{
    return std::log(x);
}

inline double Exp(double x)
{
    return std::exp(x);
}

inline double Pow(double x, double y)
{
    return std::pow(x, y);
}

inline double Cos(double x)
{
    return std::cos(x);
}

inline double Acos(double x)
{
    return std::acos(x);
}

inline double Atan(double x)
{
    return std::atan(x);
}

inline float Sin(float x)
{
    return std::sin(x);
}

inline float Cos(float x)
{
    return std::cos(x);
}

}  // namespace ZVMath
