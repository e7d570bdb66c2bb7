// Moments and axes of tensors by this library and by Eigen, held against eigenvalues in long
// double: writes the tables of docs/tensor2mat.md and the later ones of docs/roots.md.

#include "principal_axes.h"
#include "roots_internal.h"
#include "zvmath/tensor2mat.h"
#include "zvsystem/errors.h"

#include <Eigen/Eigenvalues>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace
{

using Real = long double;
using Exact = Eigen::Matrix<Real, 3, 3>;
using Vector = Eigen::Matrix<Real, 3, 1>;
using Rows = Eigen::Map<const Eigen::Matrix<double, 3, 3, Eigen::RowMajor>>;

struct Tensor
{
    double m[3][3];
};

Tensor Rounded(const Exact& exact)
{
    Tensor tensor;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            tensor.m[i][j] = static_cast<double>(i < j ? exact(i, j) : exact(j, i));
    return tensor;
}

struct SingleTensor
{
    explicit SingleTensor(const Tensor& tensor)
    {
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                m[i][j] = static_cast<float>(tensor.m[i][j]);
    }

    float m[3][3];
};

Tensor Widened(const float (&m)[3][3])
{
    return Rounded(
        Eigen::Map<const Eigen::Matrix<float, 3, 3, Eigen::RowMajor>>(m[0]).cast<Real>());
}

class Random
{
public:
    double Uniform(double low, double high)
    {
        return std::uniform_real_distribution<double>(low, high)(engine);
    }
    double LogUniform(double low, double high)
    {
        return std::exp(Uniform(std::log(low), std::log(high)));
    }
    int Whole(int low, int high) { return std::uniform_int_distribution<int>(low, high)(engine); }
    Vector Normal() { return {normal(engine), normal(engine), normal(engine)}; }
    Vector Direction() { return Normal().normalized(); }

private:
    std::mt19937_64 engine{1};
    std::normal_distribution<double> normal;
};

/// How tensors of a kind are drawn.
struct Family
{
    const char* name;
    std::function<Tensor(Random&)> draw;
};

Tensor Entries(Random& random, double size)
{
    Exact exact;
    for (int i = 0; i < 3; ++i)
        for (int j = i; j < 3; ++j)
            exact(i, j) = random.Uniform(-size, size);
    return Rounded(exact);
}

/// Not diagonal.
Tensor WholeEntries(Random& random)
{
    Exact exact;
    do {
        for (int i = 0; i < 3; ++i)
            for (int j = i; j < 3; ++j)
                exact(i, j) = random.Whole(-3, 3);
    } while (exact(0, 1) == 0.0L && exact(0, 2) == 0.0L && exact(1, 2) == 0.0L);
    return Rounded(exact);
}

/// With these eigenvalues, the axis of the first in the direction `axis`, the others anywhere.
Tensor WithMoments(Random& random, const Vector& moments, const Vector& axis)
{
    Exact axes;
    axes.col(0) = axis;
    axes.col(1) = axis.cross(random.Normal()).normalized();
    axes.col(2) = axes.col(0).cross(axes.col(1));
    return Rounded(axes * moments.asDiagonal() * axes.transpose());
}

Tensor ThreeClose(Random& random)
{
    const Real gap = random.LogUniform(1e-16, 1e-1);
    return WithMoments(random, {1.0L - gap * random.Uniform(0.0, 1.0), 1.0L, 1.0L + gap},
                       random.Direction());
}

/// The inertia tensor of ten points.
Tensor Cloud(Random& random)
{
    Exact sum = Exact::Zero();
    for (int i = 0; i < 10; ++i) {
        const Vector at = random.Normal();
        sum += at.squaredNorm() * Exact::Identity() - at * at.transpose();
    }
    return Rounded(sum);
}

/// The same of clouds that are long and thin.
Tensor Rod(Random& random)
{
    const Vector axis = random.Direction();
    const Real thickness = random.LogUniform(1e-4, 1e-1);
    Exact sum = Exact::Zero();
    for (int i = 0; i < 10; ++i) {
        const Vector ball = random.Normal();
        const Vector at = thickness * ball + (1.0L - thickness) * axis.dot(ball) * axis;
        sum += at.squaredNorm() * Exact::Identity() - at * at.transpose();
    }
    return Rounded(sum);
}

/// A body with an axis of symmetry: one point and its turned copies, the axis in any direction.
Tensor Ring(Random& random)
{
    const Vector axis = random.Direction(), at = random.Normal();
    const int copies = random.Whole(3, 6);
    Exact sum = Exact::Zero();
    for (int i = 0; i < copies; ++i) {
        const Real turn = 6.28318530717958647692L * i / copies;
        const Vector p = Eigen::AngleAxis<Real>(turn, axis) * at;
        sum += p.squaredNorm() * Exact::Identity() - p * p.transpose();
    }
    return Rounded(sum);
}

/// a I + b u u^T of small whole numbers: exactly symmetric about u, and not diagonal.
Tensor WholeRing(Random& random)
{
    Vector u;
    Exact outer;
    do {
        u << random.Whole(-3, 3), random.Whole(-3, 3), random.Whole(-3, 3);
        outer = u * u.transpose();
    } while (outer(0, 1) == 0.0L && outer(0, 2) == 0.0L && outer(1, 2) == 0.0L);
    const Real between = random.Whole(0, 1) == 0 ? -random.Whole(1, 3) : random.Whole(1, 3);
    return Rounded(random.Whole(1, 20) * Exact::Identity() + between * outer);
}

/// The correlations of three variables in ten observations.
Tensor Correlations(Random& random)
{
    Eigen::Matrix<Real, 10, 3> x;
    for (int i = 0; i < 10; ++i)
        x.row(i) = random.Normal().transpose();
    x.rowwise() -= x.colwise().mean().eval();
    x.colwise().normalize();
    Exact exact = x.transpose() * x;
    exact.diagonal().setOnes();
    return Rounded(exact);
}

/// Moments, and axes as rows, by somebody.
struct Answer
{
    double moments[3] = {};
    double axes[3][3] = {};
};

struct Routine
{
    const char* name;
    /// False without an answer.
    std::function<bool(const Tensor&, Answer&)> solve;
};

const Routine pmi{"ZVPMIFromInertialTensor", [](const Tensor& tensor, Answer& answer) {
                      return ZVMath::ZVPMIFromInertialTensor(answer.moments, tensor.m[0]) == 0;
                  }};
const Routine rotation{"ZVMakeRotationMatrix", [](const Tensor& tensor, Answer& answer) {
                           return ZVMath::ZVMakeRotationMatrix(answer.moments, answer.axes[0],
                                                               tensor.m[0]) == 0;
                       }};
const Routine rmat2{"zv_make_rmat2", [](const Tensor& tensor, Answer& answer) {
                        SingleTensor in(tensor);
                        const int result = ZVMath::zv_make_rmat2(in.m, in.m, 0);
                        std::copy_n(in.m[0], 9, answer.axes[0]);
                        return result == 1;
                    }};
const Routine altD{"zv_make_rmat_alt_d", [](const Tensor& tensor, Answer& answer) {
                       Tensor in = tensor;
                       return ZVMath::zv_make_rmat_alt_d(in.m, answer.axes, answer.moments) == 1;
                   }};
const Routine getRoots{"get_roots_3_3", [](const Tensor& tensor, Answer& answer) {
                           SingleTensor in(tensor);
                           float values[3];
                           ZVMath::get_roots_3_3(in.m, values);
                           std::copy_n(values, 3, answer.moments);
                           for (int i = 0; i < 3; ++i)
                               for (int j = 0; j < 3; ++j)
                                   answer.axes[j][i] = in.m[i][j];  // they are columns
                           return true;
                       }};

template <bool direct> bool SolveByEigen(const Tensor& tensor, Answer& answer)
{
    const Eigen::Matrix3d matrix = Rows(tensor.m[0]);
    Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> solver;
    if (direct)
        solver.computeDirect(matrix);
    else
        solver.compute(matrix);
    Eigen::Map<Eigen::Vector3d>(answer.moments) = solver.eigenvalues();
    Eigen::Map<Eigen::Matrix3d>(answer.axes[0]) = solver.eigenvectors();  // columns to rows
    return true;
}

const Routine eigenDirect{"Eigen, direct", SolveByEigen<true>};
const Routine eigen{"Eigen", SolveByEigen<false>};

/// The largest magnitude; infinity with a NaN.
template <class Matrix> double Largest(const Matrix& matrix)
{
    return matrix.array().isNaN().any() ? std::numeric_limits<double>::infinity()
                                        : static_cast<double>(matrix.cwiseAbs().maxCoeff());
}

/// Relative to the largest moment.
double MomentError(const Tensor& tensor, const Answer& answer)
{
    Vector found = Eigen::Map<const Eigen::Vector3d>(answer.moments).cast<Real>();
    std::sort(found.data(), found.data() + 3);
    const Vector known =
        Eigen::SelfAdjointEigenSolver<Exact>(Rows(tensor.m[0]).cast<Real>(), Eigen::EigenvaluesOnly)
            .eigenvalues();
    return Largest(found - known) / Largest(known);
}

struct AxesErrors
{
    AxesErrors() = default;
    AxesErrors(const Tensor& tensor, const Answer& answer)
    {
        const Exact exact = Rows(tensor.m[0]).cast<Real>();
        const Exact axes = Rows(answer.axes[0]).cast<Real>();
        Exact turned = axes * exact * axes.transpose();
        const Exact residuals = axes * exact - turned.diagonal().asDiagonal() * axes;
        turned.diagonal().setZero();
        orthonormality = Largest(axes * axes.transpose() - Exact::Identity());
        determinant = Largest(Vector::Constant(axes.determinant() - 1.0L));
        offDiagonal = Largest(turned) / Largest(exact);
        residual = Largest(residuals) / Largest(exact);
    }

    void Include(const AxesErrors& other)
    {
        orthonormality = std::max(orthonormality, other.orthonormality);
        determinant = std::max(determinant, other.determinant);
        offDiagonal = std::max(offDiagonal, other.offDiagonal);
        residual = std::max(residual, other.residual);
    }

    double orthonormality = 0.0;  // of R R^T - I
    double determinant = 0.0;     // of |R| - 1
    double offDiagonal = 0.0;     // of R T R^T, relative to the largest entry of T
    double residual = 0.0;        // of T v - (v^T T v) v, where v are the axes; the same
};

/// More than this is not inaccurate but wrong.
constexpr double wrong = 1e-3;

std::string Share(int part, int whole)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.3g %%", 100.0 * part / whole);
    return part == 0 ? "0" : text;
}

std::string Figure(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1e", value);
    return text;
}

std::string Plain(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

void PrintRow(const std::vector<std::string>& cells)
{
    for (const std::string& cell : cells)
        std::printf("| %s ", cell.c_str());
    std::printf("|\n");
}

void PrintHead(const std::vector<std::string>& titles)
{
    PrintRow(titles);
    std::printf("|---");
    for (size_t i = 1; i < titles.size(); ++i)
        std::printf("|--:");
    std::printf("|\n");
}

/// The tensor, brought to a largest entry of `size`.
Tensor Scaled(const Tensor& tensor, double size)
{
    const Exact exact = Rows(tensor.m[0]).cast<Real>();
    return Rounded(exact * (size / exact.cwiseAbs().maxCoeff()));
}

constexpr double sizes[] = {1e6, 1e4, 1e2, 1.0, 1e-1, 1e-2, 1e-3, 1e-4};

/// Coefficients below 1e-6 count as zero.
void TabulateMomentSizes(int draws)
{
    const Family families[] = {
        {"entries at random", [](Random& random) { return Entries(random, 1.0); }},
        {"clouds of ten points", Cloud},
        {"thin rods", Rod}};
    std::vector<std::string> titles{"largest entry"};
    for (const Family& family : families)
        for (const char* const error : {", 1e-9", ", 1e-3"})
            titles.push_back(family.name + std::string(error));
    PrintHead(titles);
    Random random;
    for (const double size : sizes) {
        std::vector<std::string> row{Plain(size)};
        for (const Family& family : families) {
            int inaccurate = 0, bad = 0;
            for (int i = 0; i < draws; ++i) {
                const Tensor tensor = Scaled(family.draw(random), size);
                Answer answer;
                pmi.solve(tensor, answer);
                const double error = MomentError(tensor, answer);
                inaccurate += error > 1e-9;
                bad += error > wrong;
            }
            row.push_back(Share(inaccurate, draws));
            row.push_back(Share(bad, draws));
        }
        PrintRow(row);
    }
}

/// Where two moments are `gap` apart, and the third is far away or between.
void TabulateGaps(int draws, bool threeAreClose)
{
    const Routine* const routines[] = {&pmi, &altD, &eigenDirect, &eigen};
    std::vector<std::string> titles{"gap"};
    for (const Routine* routine : routines)
        titles.push_back(routine->name);
    titles.push_back("all three equal");
    PrintHead(titles);
    Random random;
    for (const double low : {1e-1, 1e-2, 1e-3, 1e-4, 1e-6, 1e-8, 1e-10, 1e-12, 1e-14, 1e-16}) {
        const double high = low * (low < 1e-5 ? 100.0 : 10.0);
        double worst[std::size(routines)] = {};
        int means = 0;
        for (int i = 0; i < draws; ++i) {
            const double gap = random.LogUniform(low, high);
            const Real third =
                threeAreClose ? 1.0L - random.Uniform(0.0, 1.0) * gap : random.Uniform(-0.5, 0.5);
            const Vector moments(third, 1.0L - (threeAreClose ? 1.0L : 0.5L) * gap, 1.0L);
            const Tensor tensor =
                WithMoments(random, moments * random.LogUniform(1e4, 1e8), random.Direction());
            for (size_t k = 0; k < std::size(routines); ++k) {
                Answer answer;
                routines[k]->solve(tensor, answer);
                const bool isMean = answer.moments[0] == answer.moments[1] &&
                                    answer.moments[1] == answer.moments[2];
                if (!isMean)
                    worst[k] = std::max(worst[k], MomentError(tensor, answer));
                else if (k == 0)
                    ++means;
            }
        }
        std::vector<std::string> row{Plain(low) + " to " + Plain(high)};
        for (const double w : worst)
            row.push_back(Figure(w));
        row.push_back(Share(means, draws));
        PrintRow(row);
    }
}

/// The discriminant may be rounded to exactly 0; all moments are then their mean.
void TabulateSymmetry(int draws)
{
    const Family families[] = {{"a I + b u u^T of whole numbers", WholeRing},
                               {"moments a, b, b, axes at random",
                                [](Random& random) {
                                    const Real a = random.Uniform(0.5, 2.0);
                                    const Real b = random.Uniform(0.5, 2.0);
                                    return WithMoments(random, {a, b, b}, random.Direction());
                                }},
                               {"rings of 3 to 6 points, axes at random", Ring},
                               {"the same, rounded to float", [](Random& random) {
                                    return Widened(SingleTensor(Ring(random)).m);
                                }}};
    PrintHead({"tensors", "all three moments equal", "off the diagonal of R T R^T",
               "error of its diagonal"});
    Random random;
    for (const Family& family : families) {
        int means = 0;
        double axes = 0.0, moments = 0.0;
        for (int i = 0; i < draws; ++i) {
            const Tensor tensor = family.draw(random);
            Answer answer;
            rotation.solve(tensor, answer);
            means += answer.moments[0] == answer.moments[2];
            axes = std::max(axes, AxesErrors(tensor, answer).offDiagonal);
            const Eigen::Matrix3d r = Rows(answer.axes[0]);
            const Eigen::Vector3d diagonal = (r * Rows(tensor.m[0]) * r.transpose()).diagonal();
            std::copy_n(diagonal.data(), 3, answer.moments);
            moments = std::max(moments, MomentError(tensor, answer));
        }
        PrintRow({family.name, Share(means, draws), Figure(axes), Figure(moments)});
    }
}

/// Whether the axes are, to the bit, what the first trial vector gives for the moments.
bool AreFromTrial(const Tensor& tensor, const Answer& answer)
{
    const double x[] = {0.343257, 0.847359, 0.127438};
    double rows[3][3], y[3], w[3];
    ZVMath::TimesShifted(y, tensor.m, answer.moments[2], x);
    ZVMath::TimesShifted(rows[0], tensor.m, answer.moments[1], y);
    ZVMath::Cross(w, y, rows[0]);
    ZVMath::Cross(rows[1], w, rows[0]);
    std::copy(w, w + 3, rows[2]);
    for (auto& row : rows) {
        const double length = std::sqrt(ZVMath::Dot(row, row));
        for (double& component : row)
            component /= length;
    }
    return std::memcmp(rows, answer.axes, sizeof rows) == 0;
}

void TabulateAxes(int draws)
{
    const Family families[] = {
        {"entries from -1 to 1", [](Random& random) { return Entries(random, 1.0); }},
        {"clouds of ten points", Cloud},
        {"two moments close, 1e-16 to 1e-1",
         [](Random& random) {
             const Real gap = random.LogUniform(1e-16, 1e-1);
             return WithMoments(random, {random.Uniform(0.5, 2.0), 1.0L, 1.0L + gap},
                                random.Direction());
         }},
        {"three moments close, 1e-16 to 1e-1", ThreeClose},
        {"a I + b u u^T of whole numbers", WholeRing},
        {"rings of 3 to 6 points", Ring},
        {"whole entries, -3 to 3", WholeEntries},
        {"first axis across the trial vector, to 1e-12 .. 1", [](Random& random) {
             const Vector x(0.343257L, 0.847359L, 0.127438L);
             const Vector axis =
                 x.cross(random.Normal()).normalized() + random.LogUniform(1e-12, 1.0) * x;
             return WithMoments(random, {3.0L, random.Uniform(0.5, 2.5), 1.0L}, axis.normalized());
         }}};
    PrintHead({"tensors", rotation.name, "otherwise", rmat2.name, "no answer", altD.name,
               "otherwise", "no answer", eigenDirect.name, eigen.name});
    Random random;
    for (const Family& family : families) {
        AxesErrors byRotation, byRmat2, byAltD, byDirect, byEigen;
        int others[2] = {}, none[2] = {};
        for (int i = 0; i < draws; ++i) {
            const Tensor tensor = family.draw(random);
            Answer answer;
            rotation.solve(tensor, answer);
            byRotation.Include({tensor, answer});
            others[0] += !AreFromTrial(tensor, answer);
            if (altD.solve(tensor, answer)) {
                byAltD.Include({tensor, answer});
                others[1] += !AreFromTrial(tensor, answer);
            } else {
                ++none[1];
            }
            const Tensor single = Widened(SingleTensor(tensor).m);
            if (rmat2.solve(single, answer))
                byRmat2.Include({single, answer});
            else
                ++none[0];
            eigenDirect.solve(tensor, answer);
            byDirect.Include({tensor, answer});
            eigen.solve(tensor, answer);
            byEigen.Include({tensor, answer});
        }
        const auto three = [](const AxesErrors& e) {
            return Figure(e.orthonormality) + ", " + Figure(e.determinant) + ", " +
                   Figure(e.offDiagonal);
        };
        // Eigen's may be left-handed.
        const auto two = [](const AxesErrors& e) {
            return Figure(e.orthonormality) + ", " + Figure(e.offDiagonal);
        };
        PrintRow({family.name, three(byRotation), Share(others[0], draws), three(byRmat2),
                  Share(none[0], draws), three(byAltD), Share(others[1], draws),
                  Share(none[1], draws), two(byDirect), two(byEigen)});
    }
}

/// What comes of the elimination behind get_roots_3 and get_roots_3_3.
void TabulateElimination(int draws)
{
    const Family families[] = {
        {"correlations of three variables", Correlations},
        {"whole entries, -3 to 3", WholeEntries},
        {"entries from -1 to 1", [](Random& random) { return Entries(random, 1.0); }},
        {"entries from -100 to 100", [](Random& random) { return Entries(random, 100.0); }},
        {"clouds of ten points", Cloud},
        {"rings of 3 to 6 points", Ring},
        {"three eigenvalues close, 1e-16 to 1e-1", ThreeClose},
        {"two off-diagonal zeros",
         [](Random& random) {
             Tensor tensor = Entries(random, 1.0);
             tensor.m[0][2] = tensor.m[2][0] = tensor.m[1][2] = tensor.m[2][1] = 0.0;
             return tensor;
         }},
        {"one off-diagonal zero", [](Random& random) {
             Tensor tensor = Entries(random, 1.0);
             tensor.m[0][2] = tensor.m[2][0] = 0.0;
             return tensor;
         }}};
    PrintHead({"matrices", "error of the values", "the identity", "not orthonormal",
               "a vector no eigenvector"});
    Random random;
    for (const Family& family : families) {
        double values = 0.0;
        int identities = 0, skew = 0, vectors = 0;
        for (int i = 0; i < draws; ++i) {
            const Tensor tensor = Widened(SingleTensor(family.draw(random)).m);
            Answer answer;
            getRoots.solve(tensor, answer);
            const AxesErrors errors(tensor, answer);
            const bool isIdentity = Rows(answer.axes[0]).isIdentity(0.0);
            values = std::max(values, MomentError(tensor, answer));
            identities += isIdentity && errors.residual > wrong;
            skew += errors.orthonormality > wrong;
            vectors += errors.residual > wrong;
        }
        PrintRow({family.name, Figure(values), Share(identities, draws), Share(skew, draws),
                  Share(vectors, draws)});
    }
}

/// The same by the size of entries, beside zv_make_rmat2.
void TabulateSingleSizes(int draws)
{
    PrintHead({"largest entry", "error of the values", "a vector no eigenvector",
               "off the diagonal by zv_make_rmat2"});
    Random random;
    for (const double size : sizes) {
        double values = 0.0, offDiagonal = 0.0;
        int vectors = 0;
        for (int i = 0; i < draws; ++i) {
            const Tensor tensor = Widened(SingleTensor(Scaled(Entries(random, 1.0), size)).m);
            Answer answer;
            getRoots.solve(tensor, answer);
            values = std::max(values, MomentError(tensor, answer));
            vectors += AxesErrors(tensor, answer).residual > wrong;
            rmat2.solve(tensor, answer);
            offDiagonal = std::max(offDiagonal, AxesErrors(tensor, answer).offDiagonal);
        }
        PrintRow({Plain(size), Figure(values), Share(vectors, draws), Figure(offDiagonal)});
    }
}

/// The eigenvalue of a diagonal matrix may miss the entry that it is by more than 1e-6.
void TabulatePlane(int draws)
{
    PrintHead({"entries up to s =", "0 to s", "-s to s"});
    Random random;
    for (const double size : {1.0, 10.0, 100.0, 1e3, 1e6}) {
        std::vector<std::string> row{Plain(size)};
        for (const double low : {0.0, -size}) {
            int nan = 0;
            for (int i = 0; i < draws; ++i) {
                float in[2][2] = {{static_cast<float>(random.Uniform(low, size)), 0.0f},
                                  {0.0f, static_cast<float>(random.Uniform(low, size))}};
                float out[2][2];
                ZVMath::make_rmat_2d(in, out);
                nan += std::isnan(out[0][0]) || std::isnan(out[0][1]);
            }
            row.push_back(Share(nan, draws));
        }
        PrintRow(row);
    }
}

}  // namespace

int main()
{
    ZVSystem::ZVThrow.SetWarningSink({[](void*, const char*) {}, nullptr});
    constexpr int hundredThousand = 100'000, million = 1'000'000;
    std::printf("\nMoments of ZVPMIFromInertialTensor wrong by more than 1e-9 and 1e-3 of the "
                "largest:\n\n");
    TabulateMomentSizes(hundredThousand);
    for (const bool threeAreClose : {false, true}) {
        std::printf("\nLargest error of a moment, relative to the largest; %s moments close:\n\n",
                    threeAreClose ? "three" : "two");
        TabulateGaps(hundredThousand, threeAreClose);
    }
    std::printf("\nTensors with an axis of symmetry:\n\n");
    TabulateSymmetry(million);
    std::printf("\nWorst axes of a million tensors each: R R^T - I, det R - 1, and off the "
                "diagonal of R T R^T:\n\n");
    TabulateAxes(million);
    std::printf("\nVectors of get_roots_3 and get_roots_3_3:\n\n");
    TabulateElimination(hundredThousand);
    std::printf("\nBy the size of entries:\n\n");
    TabulateSingleSizes(hundredThousand);
    std::printf("\nNaN by make_rmat_2d of diagonal matrices:\n\n");
    TabulatePlane(million);
    return 0;
}
