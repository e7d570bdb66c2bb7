#pragma once

namespace ZVMath
{

/// Sorts three values by magnitude, largest first; values of equal magnitude keep their order.
/// order[r] is where the value now in place r came from.
void OrderRoots(double* values, unsigned int* order);

/// Whether the off-diagonal entries of the nine, row by row, are all exactly 0.
bool MatrixIsDiagonal(const double* m);

}  // namespace ZVMath
