#include "bench.h"
#include "roots_internal.h"
#include "zvmath/tensor2mat.h"

#include <Eigen/Eigenvalues>
#ifdef ZVMATH_HAVE_GSL
#include <gsl/gsl_poly.h>
#endif
#ifdef ZVMATH_HAVE_BOOST_ROOTS
#include <boost/math/tools/quartic_roots.hpp>
#include <boost/version.hpp>
#endif

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

namespace
{

/// More than a processor's prediction of branches learns by heart when they come round again.
constexpr size_t count = 50'000;

/// Coefficients from the highest power down, the roots in ascending order, and a solver's.
template <size_t degree> struct Polynomial
{
    std::array<double, degree + 1> coefficients;
    std::array<double, degree> roots;
    std::array<double, degree> found;
};

template <size_t degree> using Polynomials = std::vector<Polynomial<degree>>;

/// With roots between -10 and 10, a tenth apart at least.
template <size_t degree> Polynomials<degree>& WithRealRoots()
{
    static Polynomials<degree> all = [] {
        std::mt19937 random(1);
        std::uniform_real_distribution<double> root(-10.0, 10.0), leading(0.5, 2.0);
        Polynomials<degree> made(count);
        for (Polynomial<degree>& p : made) {
            const auto near = [](double a, double b) { return b - a < 0.1; };
            do {
                for (double& r : p.roots)
                    r = root(random);
                std::sort(p.roots.begin(), p.roots.end());
            } while (std::adjacent_find(p.roots.begin(), p.roots.end(), near) != p.roots.end());
            p.coefficients = {leading(random)};
            for (size_t n = 0; n < degree; ++n)  // times x - roots[n]
                for (size_t i = n + 1; i > 0; --i)
                    p.coefficients[i] -= p.roots[n] * p.coefficients[i - 1];
        }
        return made;
    }();
    return all;
}

/// `solve` writes all roots of a polynomial to its `found`, in any order.
template <size_t degree, class Solve>
void AddSolver(const std::string& workload, const std::string& column, Solve solve)
{
    AddBenchmark(
        workload, column, WithRealRoots<degree>,
        [solve](Polynomials<degree>& all) -> const Polynomials<degree>& {
            for (Polynomial<degree>& p : all)
                solve(p);
            return all;
        },
        [](const Polynomials<degree>&, const Polynomials<degree>& solved) {
            // Quartics whose roots lie nearly symmetric lose half of the digits.
            const double bound = degree == 4 ? 1e-5 : 1e-8;
            for (const Polynomial<degree>& p : solved) {
                std::array<double, degree> found = p.found;
                std::sort(found.begin(), found.end());
                for (size_t i = 0; i < degree; ++i)
                    if (!(std::fabs(found[i] - p.roots[i]) <= bound))
                        return false;
            }
            return true;
        });
}

void AddPolynomials()
{
    using Quadratic = Polynomial<2>;
    using Cubic = Polynomial<3>;
    using Quartic = Polynomial<4>;
    const std::string quadratics = "roots of 50000 quadratics";
    const std::string cubics = "roots of 50000 cubics";
    const std::string quartics = "roots of 50000 quartics";

    AddSolver<2>(quadratics, "zvmath", [](Quadratic& p) {
        const auto& [a, b, c] = p.coefficients;
        ZVMath::zv_SolveQuadratic(p.found.data(), a, b, c);
    });
    AddSolver<3>(cubics, "zvmath", [](Cubic& p) {
        const auto& [a, b, c, d] = p.coefficients;
        ZVMath::zv_SolveCubic(p.found.data(), a, b, c, d);
    });
    AddSolver<4>(quartics, "zvmath", [](Quartic& p) {
        const auto& [a, b, c, d, e] = p.coefficients;
        ZVMath::zv_SolveQuartic(p.found.data(), a, b, c, d, e);
    });
#ifdef ZVMATH_HAVE_GSL
    AddSolver<2>(quadratics, "GSL", [](Quadratic& p) {
        const auto& [a, b, c] = p.coefficients;
        gsl_poly_solve_quadratic(a, b, c, &p.found[0], &p.found[1]);
    });
    AddSolver<3>(cubics, "GSL", [](Cubic& p) {
        const auto& [a, b, c, d] = p.coefficients;
        gsl_poly_solve_cubic(b / a, c / a, d / a, &p.found[0], &p.found[1], &p.found[2]);
    });
#endif
#ifdef ZVMATH_HAVE_BOOST_ROOTS
    peerVersions.push_back("Boost of the polynomial roots " +
                           std::to_string(BOOST_VERSION / 100000) + "." +
                           std::to_string(BOOST_VERSION / 100 % 1000));
    AddSolver<2>(quadratics, "Boost", [](Quadratic& p) {
        const auto& [a, b, c] = p.coefficients;
        const auto roots = boost::math::tools::quadratic_roots(a, b, c);
        p.found = {roots.first, roots.second};
    });
    AddSolver<3>(cubics, "Boost", [](Cubic& p) {
        const auto& [a, b, c, d] = p.coefficients;
        p.found = boost::math::tools::cubic_roots(a, b, c, d);
    });
    AddSolver<4>(quartics, "Boost", [](Quartic& p) {
        const auto& [a, b, c, d, e] = p.coefficients;
        p.found = boost::math::tools::quartic_roots(a, b, c, d, e);
    });
#endif
}

/// A tensor, row by row, and its moments and axes by somebody.
template <class Real> struct Frame
{
    Real tensor[3][3];
    Real moments[3];
    Real axes[3][3];  // unit vectors as rows
};

template <class Real> using Frames = std::vector<Frame<Real>>;

/// The inertia tensors of clouds of ten points.
template <class Real> Frames<Real>& Clouds()
{
    static Frames<Real> all = [] {
        std::mt19937 random(1);
        std::normal_distribution<double> normal;
        Frames<Real> made(count);
        for (Frame<Real>& frame : made) {
            Eigen::Matrix3d tensor = Eigen::Matrix3d::Zero();
            for (int i = 0; i < 10; ++i) {
                const Eigen::Vector3d at(normal(random), normal(random), normal(random));
                tensor += at.squaredNorm() * Eigen::Matrix3d::Identity() - at * at.transpose();
            }
            for (int i = 0; i < 3; ++i)
                for (int j = 0; j < 3; ++j)
                    frame.tensor[i][j] = static_cast<Real>(tensor(i, j));
        }
        return made;
    }();
    return all;
}

template <class Real> using Rows = Eigen::Map<const Eigen::Matrix<Real, 3, 3, Eigen::RowMajor>>;

/// What closed forms may lose where moments agree, or the trial vector is across an axis.
template <class Real> Real Bound(const Frame<Real>& frame)
{
    const double share = std::is_same_v<Real, float> ? 1e-5 : 1e-6;
    return static_cast<Real>(share) * Rows<Real>(frame.tensor[0]).cwiseAbs().maxCoeff();
}

template <class Real> bool HasMoments(const Frame<Real>& frame)
{
    using Vector = Eigen::Matrix<Real, 3, 1>;
    const Eigen::SelfAdjointEigenSolver<Eigen::Matrix<Real, 3, 3>> solver(
        Rows<Real>(frame.tensor[0]), Eigen::EigenvaluesOnly);
    Vector moments(frame.moments);
    std::sort(moments.data(), moments.data() + 3);
    return (moments - solver.eigenvalues()).cwiseAbs().maxCoeff() <= Bound(frame);
}

template <class Real> bool HasAxes(const Frame<Real>& frame)
{
    const Rows<Real> tensor(frame.tensor[0]), axes(frame.axes[0]);
    const Eigen::Matrix<Real, 3, 3> square = axes * axes.transpose();
    Eigen::Matrix<Real, 3, 3> turned = axes * tensor * axes.transpose();
    turned.diagonal().setZero();
    return square.isIdentity(static_cast<Real>(1e-5)) &&
           turned.cwiseAbs().maxCoeff() <= Bound(frame);
}

/// `solve` writes moments, axes or both, whatever `agrees` looks at.
template <class Real, class Solve>
void AddFrames(const std::string& workload, const std::string& column, Solve solve,
               bool (*agrees)(const Frame<Real>&))
{
    AddBenchmark(
        workload, column, Clouds<Real>,
        [solve](Frames<Real>& all) -> const Frames<Real>& {
            for (Frame<Real>& frame : all)
                solve(frame);
            return all;
        },
        [agrees](const Frames<Real>&, const Frames<Real>& solved) {
            return std::all_of(solved.begin(), solved.end(), agrees);
        });
}

/// Eigen's closed form ("direct"), and its iteration, which is the accurate one.
template <class Real>
void AddEigen(const std::string& workload, int options, bool (*agrees)(const Frame<Real>&))
{
    using Matrix = Eigen::Matrix<Real, 3, 3>;
    using Solver = Eigen::SelfAdjointEigenSolver<Matrix>;
    const auto add = [=](const std::string& column, auto compute) {
        AddFrames<Real>(
            workload, column,
            [=](Frame<Real>& frame) {
                Solver solver;
                compute(solver, Rows<Real>(frame.tensor[0]));
                Eigen::Map<Eigen::Matrix<Real, 3, 1>>(frame.moments) = solver.eigenvalues();
                if (options == Eigen::ComputeEigenvectors)  // columns: rows of the transpose
                    Eigen::Map<Matrix>(frame.axes[0]) = solver.eigenvectors();
            },
            agrees);
    };
    add("Eigen direct",
        [options](Solver& s, const Matrix& tensor) { s.computeDirect(tensor, options); });
    add("Eigen", [options](Solver& s, const Matrix& tensor) { s.compute(tensor, options); });
}

bool HasBoth(const Frame<double>& frame)
{
    return HasMoments(frame) && HasAxes(frame);
}

void AddTensors()
{
    const std::string moments = "moments of 50000 tensors";
    AddFrames<double>(
        moments, "zvmath",
        [](Frame<double>& f) { ZVMath::ZVPMIFromInertialTensor(f.moments, f.tensor[0]); },
        HasMoments);
    AddEigen<double>(moments, Eigen::EigenvaluesOnly, HasMoments);

    const std::string axes = "moments and axes of 50000 tensors";
    AddFrames<double>(
        axes, "zvmath",
        [](Frame<double>& f) { ZVMath::ZVMakeRotationMatrix(f.moments, f.axes[0], f.tensor[0]); },
        HasBoth);
    AddEigen<double>(axes, Eigen::ComputeEigenvectors, HasBoth);

    const std::string internal = axes + ", zv_make_rmat_alt_d";
    AddFrames<double>(
        internal, "zvmath",
        [](Frame<double>& f) { ZVMath::zv_make_rmat_alt_d(f.tensor, f.axes, f.moments); }, HasBoth);
    AddEigen<double>(internal, Eigen::ComputeEigenvectors, HasBoth);

    const std::string single = "axes of 50000 tensors in float";
    AddFrames<float>(
        single, "zvmath", [](Frame<float>& f) { ZVMath::zv_make_rmat2(f.tensor, f.axes, 0); },
        HasAxes);
    AddEigen<float>(single, Eigen::ComputeEigenvectors, HasAxes);
}

}  // namespace

void AddRootsBenchmarks()
{
    AddPolynomials();
    AddTensors();
}
