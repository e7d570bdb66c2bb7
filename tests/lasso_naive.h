#pragma once

#include <Eigen/Cholesky>
#include <algorithm>
#include <limits>
#include <numeric>
#include <vector>

namespace ZVTest
{

/// The steps of zvmath/lasso.h as they stand, in arithmetic of `Real`: the Gram matrix factored
/// anew each time, and every product with the whole of x.
template <class Real> struct NaiveLasso
{
    std::vector<unsigned int> actives;
    std::vector<std::vector<Real>> path;

    NaiveLasso(const Eigen::MatrixXd& columns, const Eigen::VectorXd& y, Eigen::Index maxSteps)
    {
        using Matrix = Eigen::Matrix<Real, Eigen::Dynamic, Eigen::Dynamic>;
        using Vector = Eigen::Matrix<Real, Eigen::Dynamic, 1>;
        Matrix x(columns.rows(), columns.cols());
        x << columns.cast<Real>();
        const Eigen::Index last = std::min(x.rows() - 1, x.cols()) - 1;
        Vector rest = y.cast<Real>(), c = x.transpose() * rest, beta;
        Matrix active(x.rows(), 0), gram;
        std::vector<unsigned int> inactive(static_cast<size_t>(x.cols()));
        std::iota(inactive.begin(), inactive.end(), 0u);
        Eigen::Index enters = 0;
        Real C = c.cwiseAbs().maxCoeff(&enters);
        for (Eigen::Index k = 0; k <= last && k < maxSteps; ++k) {
            actives.push_back(static_cast<unsigned int>(enters));
            inactive.erase(std::find(inactive.begin(), inactive.end(), actives.back()));
            active.conservativeResize(Eigen::NoChange, k + 1);
            active.col(k) = x.col(enters);
            gram.conservativeResize(k + 1, k + 1);
            gram.col(k) = active.transpose() * active.col(k);
            gram.row(k) = gram.col(k).transpose();
            Vector signs(k + 1);
            for (Eigen::Index i = 0; i <= k; ++i)
                signs(i) = c(actives[static_cast<size_t>(i)]) >= 0 ? 1 : -1;
            const Vector z = gram.llt().solve(signs);
            const Real A = 1 / std::sqrt(signs.dot(z));
            const Vector u = active * (A * z), h = x.transpose() * u;
            Real gamma = k == last ? C / A : std::numeric_limits<Real>::infinity();
            for (const unsigned int m : inactive)
                for (const Real g : {(C + c(m)) / (A + h(m)), (C - c(m)) / (A - h(m))})
                    if (k < last && g > 0 && g < gamma) {
                        gamma = g;
                        enters = m;
                    }
            beta.conservativeResize(k + 1);
            beta(k) = 0;
            beta += gamma * A * z;
            path.emplace_back(beta.data(), beta.data() + beta.size());
            rest -= gamma * u;
            c = x.transpose() * rest;
            C = c.cwiseAbs().maxCoeff();
        }
    }
};

}  // namespace ZVTest
