#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

// Peers that are called through Python: one interpreter within the program, which lives as long as
// it does. All of it on one thread.

/// Numbers in memory as an array of NumPy's: a vector, or with `columns` a matrix stored column by
/// column. Nothing is copied, and Python can't write to it.
struct PythonArray
{
    std::string name;
    const double* values;
    size_t rows;
    size_t columns = 0;
};

struct _object;  // Python's own name: its header would bring macros along

struct PythonRelease
{
    void operator()(_object* object) const;
};

/// An object of Python's; none after an error, which has been printed.
class PythonObject
{
public:
    explicit PythonObject(_object* owned = nullptr) : object(owned) {}

    /// NaN if it is not a number.
    double Number() const;

    /// The numbers of an expression that calls this object `result` and gives a sequence; empty if
    /// it does not.
    std::vector<double> Numbers(const std::string& expression) const;

    _object* Get() const { return object.get(); }

private:
    std::unique_ptr<_object, PythonRelease> object;
};

/// An expression that is compiled once. It may use `np` and `math`, what `imports` brings, and the
/// arrays, whose memory must outlive it.
class PythonFunction
{
public:
    PythonFunction(const std::string& imports, const std::vector<PythonArray>& arrays,
                   const std::string& expression);

    PythonObject operator()() const;

private:
    PythonObject function;
};

/// The version of a module; empty if it is not installed.
std::string PythonVersion(const std::string& module);
