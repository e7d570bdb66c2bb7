#pragma once

#include <Eigen/Core>
#include <vector>

namespace ZVMath
{

/// Replaces `output` by the elements of `input` in order. Its storage is kept when it suffices.
void EigenVectorToVector(std::vector<double>& output, const Eigen::VectorXd& input);

/// Replaces `output` by the elements of `input` row by row, though Eigen holds them column by
/// column. No rows or no columns: empty.
void EigenMatrixToVector(std::vector<double>& output, const Eigen::MatrixXd& input);

}  // namespace ZVMath
