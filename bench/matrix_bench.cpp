#include "bench.h"
#include "zvmath/matrix.h"

#include <Eigen/Dense>
#ifdef ZVMATH_HAVE_ARMADILLO
#include <armadillo>
#include <dlfcn.h>
#endif

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <random>

namespace
{

using ZVMath::ZVMatrix;
using ZVMath::ZVSquareMatrix;

constexpr double epsilon = std::numeric_limits<double>::epsilon();

/// n x n, uniform in [-1, 1], plus `diagonal` on the diagonal.
ZVSquareMatrix UniformMatrix(unsigned int n, unsigned int seed, double diagonal = 0.0)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    ZVSquareMatrix matrix(n);
    std::vector<double> row(n);
    for (unsigned int i = 0; i < n; ++i) {
        for (double& element : row)
            element = uniform(random);
        row[i] += diagonal;
        matrix.SetRowData(i, row);
    }
    return matrix;
}

double At(const ZVMatrix& matrix, unsigned int i, unsigned int j)
{
    return matrix.GetData()[size_t{i} * matrix.GetNumColumns() + j];
}

template <class Matrix> Matrix Converted(const ZVSquareMatrix& from)
{
    const unsigned int n = from.GetNumRows();
    Matrix to(n, n);
    for (unsigned int i = 0; i < n; ++i)
        for (unsigned int j = 0; j < n; ++j)
            to(i, j) = At(from, i, j);
    return to;
}

template <class Matrix> bool Close(const ZVMatrix& ours, const Matrix& theirs, double tolerance)
{
    for (unsigned int i = 0; i < ours.GetNumRows(); ++i)
        for (unsigned int j = 0; j < ours.GetNumColumns(); ++j)
            if (!(std::fabs(At(ours, i, j) - theirs(i, j)) <= tolerance))
                return false;
    return true;
}

/// Operands of a product, as every library has them, and the product as it should be.
struct Factors
{
    explicit Factors(unsigned int n)
        : a(UniformMatrix(n, 1)), b(UniformMatrix(n, 2)), product(n, n),
          eigenA(Converted<Eigen::MatrixXd>(a)), eigenB(Converted<Eigen::MatrixXd>(b))
    {
        std::vector<double> row(n);
        for (unsigned int i = 0; i < n; ++i) {
            std::fill(row.begin(), row.end(), 0.0);
            for (unsigned int k = 0; k < n; ++k)
                for (unsigned int j = 0; j < n; ++j)
                    row[j] += At(a, i, k) * At(b, k, j);
            product.SetRowData(i, row);
        }
        // n terms of at most 1, added with at most n roundings on either side.
        tolerance = n * n * epsilon;
#ifdef ZVMATH_HAVE_ARMADILLO
        armadilloA = Converted<arma::mat>(a);
        armadilloB = Converted<arma::mat>(b);
#endif
    }

    ZVSquareMatrix a;
    ZVSquareMatrix b;
    ZVMatrix product;
    double tolerance;
    Eigen::MatrixXd eigenA;
    Eigen::MatrixXd eigenB;
#ifdef ZVMATH_HAVE_ARMADILLO
    arma::mat armadilloA;
    arma::mat armadilloB;
#endif
};

void AddProductBenchmarks(unsigned int n)
{
    const std::string workload = "product n=" + std::to_string(n);
    const auto factors = [n]() -> const Factors& {
        static std::map<unsigned int, Factors> made;
        return made.try_emplace(n, n).first->second;
    };
    AddBenchmark(
        workload, "zvmath", factors, [](const Factors& f) { return f.a * f.b; },
        [](const Factors& f, const ZVMatrix& c) { return c.GetData() == f.product.GetData(); });
    const auto close = [](const Factors& f, const auto& c) {
        return Close(f.product, c, f.tolerance);
    };
#ifdef ZVMATH_HAVE_ARMADILLO
    AddBenchmark(
        workload, "Armadillo", factors,
        [](const Factors& f) { return arma::mat(f.armadilloA * f.armadilloB); }, close);
#endif
    AddBenchmark(
        workload, "Eigen", factors,
        [](const Factors& f) { return Eigen::MatrixXd(f.eigenA * f.eigenB); }, close);
}

/// The determinant by its recursive formula, a new matrix for each minor.
double PlainDeterminant(const ZVSquareMatrix& matrix)
{
    const unsigned int n = matrix.GetNumRows();
    if (n == 1)
        return At(matrix, 0, 0);
    double sum = 0.0;
    for (unsigned int j = 0; j < n; ++j) {
        const double term = PlainDeterminant(matrix.Minor(0, j)) * At(matrix, 0, j);
        sum = j % 2 == 0 ? sum + term : sum - term;
    }
    return sum;
}

/// The same matrix, far from singular, for every library.
template <class Matrix> const Matrix& Regular(unsigned int n)
{
    static std::map<unsigned int, Matrix> made;
    return made.try_emplace(n, Converted<Matrix>(UniformMatrix(n, 3, n))).first->second;
}

template <> const ZVSquareMatrix& Regular(unsigned int n)
{
    static std::map<unsigned int, ZVSquareMatrix> made;
    return made.try_emplace(n, UniformMatrix(n, 3, n)).first->second;
}

template <class Matrix> auto RegularOf(unsigned int n)
{
    return [n]() -> const Matrix& { return Regular<Matrix>(n); };
}

void AddDeterminantBenchmarks(unsigned int n)
{
    const std::string workload = "determinant n=" + std::to_string(n);
    // Eliminating and expanding a matrix that is nearly diagonal lose a few digits at most.
    const auto close = [n](const auto&, double determinant) {
        const double ours = Regular<ZVSquareMatrix>(n).Determinant();
        return std::fabs(determinant - ours) <= 100 * epsilon * std::fabs(ours);
    };
    AddBenchmark(
        workload, "zvmath", RegularOf<ZVSquareMatrix>(n),
        [](const ZVSquareMatrix& m) { return m.Determinant(); },
        [n](const ZVSquareMatrix& m, double determinant) {
            const double upper = std::pow(n + 1.0, n), lower = std::pow(n - 1.0, n) / 2;
            return n <= 8 ? determinant == PlainDeterminant(m)
                          : lower < determinant && determinant < upper;
        });
    AddBenchmark(
        workload, "Eigen", RegularOf<Eigen::MatrixXd>(n),
        [](const Eigen::MatrixXd& m) { return m.determinant(); }, close);
    if (n == 4)
        AddBenchmark(
            workload, "Eigen fixed", RegularOf<Eigen::Matrix4d>(n),
            [](const Eigen::Matrix4d& m) { return m.determinant(); }, close);
    if (n <= 8)
        AddBenchmark(workload, "plain", RegularOf<ZVSquareMatrix>(n), PlainDeterminant, close);
}

void AddInverseBenchmarks(unsigned int n)
{
    const std::string workload = "inverse n=" + std::to_string(n);
    const auto close = [n](const auto&, const auto& inverse) {
        return Close(Regular<ZVSquareMatrix>(n).Invert(), inverse, 100 * epsilon);
    };
    AddBenchmark(
        workload, "zvmath", RegularOf<ZVSquareMatrix>(n),
        [](const ZVSquareMatrix& m) { return m.Invert(); },
        [n](const ZVSquareMatrix& m, const ZVMatrix& inverse) {
            const Eigen::MatrixXd identity = Eigen::MatrixXd::Identity(n, n);
            return Close(m * inverse, identity, 100 * epsilon);
        });
    AddBenchmark(
        workload, "Eigen", RegularOf<Eigen::MatrixXd>(n),
        [](const Eigen::MatrixXd& m) { return Eigen::MatrixXd(m.inverse()); }, close);
    if (n == 4)
        AddBenchmark(
            workload, "Eigen fixed", RegularOf<Eigen::Matrix4d>(n),
            [](const Eigen::Matrix4d& m) { return Eigen::Matrix4d(m.inverse()); }, close);
}

#ifdef ZVMATH_HAVE_ARMADILLO
/// Armadillo multiplies by the BLAS that the system provides; OpenBLAS tells what it is.
std::string ArmadilloVersion()
{
    const auto config =
        reinterpret_cast<const char* (*)()>(dlsym(RTLD_DEFAULT, "openblas_get_config"));
    const std::string version = std::to_string(arma::arma_version::major) + '.' +
                                std::to_string(arma::arma_version::minor) + '.' +
                                std::to_string(arma::arma_version::patch);
    return "Armadillo " + version + " over " + (config ? config() : "a BLAS other than OpenBLAS");
}
#endif

}  // namespace

void AddMatrixBenchmarks()
{
#ifdef ZVMATH_HAVE_ARMADILLO
    peerVersions.push_back(ArmadilloVersion());
#endif
    peerVersions.push_back("Eigen " + std::to_string(EIGEN_WORLD_VERSION) + '.' +
                           std::to_string(EIGEN_MAJOR_VERSION) + '.' +
                           std::to_string(EIGEN_MINOR_VERSION));
    for (const unsigned int n : {4u, 64u, 512u})
        AddProductBenchmarks(n);
    for (const unsigned int n : {4u, 8u, 12u, 20u})
        AddDeterminantBenchmarks(n);
    for (const unsigned int n : {4u, 12u})
        AddInverseBenchmarks(n);
}
