// The sample takes for given X, y, a new observation x and a step s. Here y is linear in X, and s
// the last step, that of the least-squares fit: it predicts the same straight line.

#include <Eigen/Dense>
#include <cmath>
#include <cstddef>
#include <zvmath/lasso.h>

int main()
{
    Eigen::MatrixXd X(5, 2);
    X << 1, 7, 2, -3, 3, 5, 4, 1, 6, 2;
    const Eigen::RowVector2d slopes(2, -10);
    const Eigen::VectorXd y = (X * slopes.transpose()).array() + 30;
    const Eigen::RowVectorXd x = Eigen::RowVector2d(5, 4);
    const std::size_t s = 1;
#include "lasso_centring_scaling_predicting.inc"
    return std::fabs(prediction - (slopes.dot(x) + 30)) < 1e-12 ? 0 : 1;
}
