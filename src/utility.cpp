#include "utility.h"

namespace ZVMath
{

void EigenVectorToVector(std::vector<double>& output, const Eigen::VectorXd& input)
{
    output.assign(input.data(), input.data() + input.size());
}

void EigenMatrixToVector(std::vector<double>& output, const Eigen::MatrixXd& input)
{
    output.clear();
    output.reserve(static_cast<size_t>(input.size()));
    for (Eigen::Index r = 0; r < input.rows(); ++r)
        for (Eigen::Index c = 0; c < input.cols(); ++c)
            output.push_back(input(r, c));
}

}  // namespace ZVMath
