#pragma once

#include "zvmath/matrix.h"

#include <vector>

namespace ZVPlatform
{

/// The elements, row by row.
std::vector<double> ZVGetMatrixContents(const ZVMath::ZVMatrix& matrix);

/// Fills the matrix row by row, as far as `contents` reaches. Whether there were as many values as
/// elements.
bool ZVSetMatrixContents(ZVMath::ZVMatrix& matrix, const std::vector<double>& contents);

}  // namespace ZVPlatform
