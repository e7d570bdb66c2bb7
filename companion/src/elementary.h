#pragma once

#include <cmath>

/// The C library's elementary functions in double precision, for both libraries. They are the
/// only steps whose last bit may depend on the machine: C libraries choose versions by processor.
/// Passing through here, what depends on them can be found. Not to be called on a constant: the
/// compiler would fold it with a rounding of its own.
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

}  // namespace ZVMath
