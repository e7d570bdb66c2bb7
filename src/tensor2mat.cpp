#include "zvmath/tensor2mat.h"

#include "principal_axes.h"
#include "tensor2mat_internal.h"
#include "zvsystem/errors.h"

#include <cmath>
#include <cstring>

namespace ZVMath
{

namespace
{

double ZeroIfSmall(double coefficient)
{
    return std::abs(coefficient) < 1e-6 ? 0.0 : coefficient;
}

bool HasNaN(const double* v)
{
    return std::isnan(v[0]) || std::isnan(v[1]) || std::isnan(v[2]);
}

/// Of a diagonal tensor whose entries were sorted: unit vectors, all turned round where the
/// permutation is odd, or they would be left-handed.
void PermutationAxes(double (&axes)[3][3], const unsigned int* order)
{
    const bool even = (order[0] + 1) % 3 == order[1];
    for (int i = 0; i < 3; ++i)
        for (unsigned int j = 0; j < 3; ++j) {
            const double entry = order[i] == j ? 1.0 : 0.0;
            axes[i][j] = even ? entry : -entry;
        }
}

/// From (T - c I) x and (T - b I)(T - c I) x of moments a, b, c, the latter along the axis of a;
/// where one of them is exactly 0, another x is tried. False if a NaN appears.
bool FindAxes(double (&axes)[3][3], const double (&tensor)[3][3], const double* moments)
{
    double x[] = {0.343257, 0.847359, 0.127438};
    for (int trial = 0; trial < maxTrials; ++trial, x[1] -= 0.1) {
        double y[3];
        double z[3];
        TimesShifted(y, tensor, moments[2], x);
        if (HasNaN(y))
            return false;
        if (IsZero(y))
            continue;
        TimesShifted(z, tensor, moments[1], y);
        if (HasNaN(z))
            return false;
        if (IsZero(z))
            continue;
        AxesFromTrial(axes, y, z, tensor, moments);
        return true;
    }
    BuildAxes(axes, tensor, moments);
    return true;
}

}  // namespace

void OrderRoots(double* values, unsigned int* order)
{
    for (unsigned int i = 0; i < 3; ++i)
        order[i] = i;
    SortThree(values, order, GreaterMagnitude);
}

bool MatrixIsDiagonal(const double* m)
{
    return m[1] == 0.0 && m[2] == 0.0 && m[3] == 0.0 && m[5] == 0.0 && m[6] == 0.0 && m[7] == 0.0;
}

int ZVPMIFromInertialTensor(double* moments, const double* tensor)
{
    const double* T = tensor;
    const double b = ZeroIfSmall(-(T[8] + T[4] + T[0]));
    const double c =
        ZeroIfSmall((T[8] + T[4]) * T[0] + T[4] * T[8] - (T[1] * T[3] + T[5] * T[7] + T[6] * T[2]));
    const double e = ZeroIfSmall((T[8] * T[1] * T[3] + T[0] * T[5] * T[7] + T[4] * T[6] * T[2]) -
                                 (T[2] * T[7] * T[3] + T[0] * T[4] * T[8] + T[6] * T[5] * T[1]));

    // lambda = t - s makes t^3 + 3 p t + 2 q = 0 of lambda^3 + b lambda^2 + c lambda + e = 0.
    const double s = b / 3.0;
    const double q = 0.5 * ((0.6666666666666666 * b * s - c) * s + e);
    const double p = (c - b * s) * 0.3333333333333333;
    const double discriminant = q * q + p * p * p;
    if (discriminant < 0.0)
        TrigonometricRoots(moments, p, q, s, 2.0943951023931953, 4.1887902047863905);
    else if (discriminant > 0.0)
        SimpleAndDoubleRoot(moments, q, s);
    else
        moments[0] = moments[1] = moments[2] = -s;

    unsigned int order[3];
    OrderRoots(moments, order);
    if (std::abs(moments[0]) < 1e-9) {
        ZVSystem::ZVThrow.Warning("No principle axes found during inertial alignment");
        return -3;
    }
    return 0;
}

int ZVMakeRotationMatrix(double* moments, double* rotation, const double* tensor)
{
    double matrix[3][3];
    double axes[3][3];
    std::memcpy(matrix, tensor, sizeof matrix);  // it may be where the results go
    int result = 0;
    if (MatrixIsDiagonal(matrix[0])) {
        for (int i = 0; i < 3; ++i)
            moments[i] = matrix[i][i];
        unsigned int order[3];
        OrderRoots(moments, order);
        PermutationAxes(axes, order);
    } else {
        ZVPMIFromInertialTensor(moments, matrix[0]);
        if (!FindAxes(axes, matrix, moments)) {
            ZVSystem::ZVThrow.Warning("NaN detected during inertial alignment diagonalization");
            SetIdentity(axes);
            result = -4;
        }
    }
    std::memcpy(rotation, axes, sizeof axes);
    return result;
}

}  // namespace ZVMath
