#include "roots_internal.h"

#include "principal_axes_naive.h"

#include <array>
#include <cstdio>
#include <string>

using namespace ZVMath;
using namespace ZVTest;

namespace
{

constexpr float mark = 77;
using Roots = std::array<double, 4>;
using Solved = std::array<Roots, 7>;
const Solved untouched = [] {
    Solved solved;
    solved.fill({mark, mark, mark, mark});
    return solved;
}();

std::array<int, 7> Solve(Solved& r, const double* c)
{
    return {zv_SolveLinear(r[0].data(), c[0], c[1]),
            zv_SolveLinearRoots(c[0], c[1], r[1].data()),
            zv_SolveQuadratic(r[2].data(), c[0], c[1], c[2]),
            zv_SolveQuadraticRoots(c[0], c[1], c[2], r[3].data()),
            zv_SolveCubic(r[4].data(), c[0], c[1], c[2], c[3]),
            zv_SolveCubicRoots(c[0], c[1], c[2], c[3], r[5].data()),
            zv_SolveQuartic(r[6].data(), c[0], c[1], c[2], c[3], c[4])};
}

std::array<int, 7> SolvePlainly(Solved& r, const double* c)
{
    return {PlainLinear(r[0].data(), c[0], c[1]),
            PlainLinear(r[1].data(), c[0], c[1]),
            PlainQuadratic(false, r[2].data(), c[0], c[1], c[2]),
            PlainQuadratic(true, r[3].data(), c[0], c[1], c[2]),
            PlainCubic(false, r[4].data(), c[0], c[1], c[2], c[3]),
            PlainCubic(true, r[5].data(), c[0], c[1], c[2], c[3]),
            PlainQuartic(r[6].data(), c[0], c[1], c[2], c[3], c[4])};
}

TEST(Solvers, EqualThePlainSteps)
{
    std::mt19937 random(1);
    for (int trial = 0; trial < 20000; ++trial) {
        double c[5] = {Whole(random, 3)};
        const double same = Whole(random, 2);
        for (int degree = 1; degree <= 4; ++degree)  // of whole roots, some of them multiple
            for (int i = degree; i > 0; --i)
                c[i] -= c[i - 1] * (degree % 2 ? same : Whole(random, 2));
        const int range = trial % 5 == 2 ? 2100 : 40;
        for (double& value : c)
            if (trial % 5 == 1)
                value += std::ldexp(Uniform(random), -48);
            else if (trial % 5 > 1)
                value = std::ldexp(Uniform(random), int(random() % unsigned(range)) - range / 2);
        for (double& value : c)
            if (trial % 5 > 2 && (trial % 5 == 3 ? &value == c : random() % 3 == 0))
                value = oddValues[random() % 16];
        Solved roots = untouched, plain = untouched;
        SCOPED_TRACE(trial);
        ASSERT_EQ(Solve(roots, c), SolvePlainly(plain, c));
        for (size_t i = 0; i < 7; ++i)
            ASSERT_TRUE(SameBits(List(roots[i].data(), 4), List(plain[i].data(), 4))) << i;
    }
}

TEST(Solvers, FindTheRoots)
{
    for (const RootReference& r : rootReferences)
        for (size_t solver = 2 * r.degree - 2; solver < 2 * r.degree && solver < 7; ++solver) {
            Solved solved = untouched;
            size_t count = size_t(Solve(solved, r.coefficients)[solver]);
            if (r.degree == 3)  // the other slots are written too
                count = solver == 5 && count == 1 && r.roots[0] != r.roots[2] ? 0 : 3;
            else if (r.degree == 2 && r.count == 2 && r.roots[0] == r.roots[1])
                EXPECT_EQ(count, 1u) << r.name;
            else
                EXPECT_EQ(count, r.count) << r.name;
            std::vector<double> roots = List(solved[solver].data(), count);
            std::sort(roots.begin(), roots.end());
            for (size_t i = 0; i < count; ++i)
                EXPECT_TRUE(Near(roots[i], r.roots[i], r.bounds[i])) << r.name << ' ' << solver;
        }
}

const Grid<float> marked = {{{mark, mark, mark}, {mark, mark, mark}, {mark, mark, mark}}};

TEST(Matrices, EqualThePlainSteps)
{
    std::mt19937 random(2);
    for (int trial = 0; trial < 20000; ++trial) {
        const Grid<float> a = Convert<float>(AnyMatrix(random, Kind(trial % 10)));
        std::vector<double> actual, expected;
        const auto keep = [](std::vector<double>& list, int result, const auto* values,
                             const Grid<float>& grid) {
            list.push_back(result);
            list.insert(list.end(), values, values + 3);
            for (const double entry : List(grid))
                list.push_back(entry);
        };
        Grid<float> in = a, flipped, axes, plain;
        double v[3], w[3];
        float narrow[3];
        for (int mode = -1; mode <= 3; ++mode) {
            axes = plain = marked;
            keep(actual, make_rmat(v, in.m, axes.m, mode), v, axes);
            keep(expected, PlainRmat<double>(w, a, plain, mode), w, plain);
            axes = marked;
            keep(actual, zv_make_rmat(v, in.m[0], axes.m[0], mode), v, axes);
            keep(expected, PlainRmat<double>(w, a, plain, mode), w, plain);
            axes = plain = marked;
            keep(actual, make_rmat1(v, in.m, axes.m, mode), v, axes);
            keep(expected, PlainRmat<float>(w, a, plain, mode), w, plain);
        }

        const auto round = [&w](const double* values) {
            std::transform(values, values + 3, w, Rounded);
            return w;
        };
        const double diagonal[] = {a.m[0][0], a.m[1][1], a.m[2][2]};
        const float on = std::fabs(a.m[0][0]) + std::fabs(a.m[1][1]) + std::fabs(a.m[2][2]);
        float off = 0;
        bool isDiagonal = true;
        for (const int i : {1, 2, 3, 5, 6, 7}) {
            off += std::fabs(a.m[i / 3][i % 3]);
            isDiagonal = isDiagonal && double{std::fabs(a.m[i / 3][i % 3])} < 1e-6;
        }
        PlainCharacteristic(false, v, a);
        keep(actual, get_roots_of_3_by_3(in.m[0], narrow), narrow, in);
        keep(expected, 1, round(double{off / on} < 1e-4 ? diagonal : v), a);
        unsigned order[3];
        std::copy(diagonal, diagonal + (isDiagonal ? 3 : 0), v);
        PlainOrder(v, order, false);
        keep(actual, get_roots_of_3_by_3_matrix(in.m, narrow), narrow, in);
        keep(expected, 1, round(v), a);

        PlainRmat<double>(v, a, plain, 0);
        for (int i = 0; i < 9; ++i) {
            axes.m[i % 3][i / 3] = plain.m[i / 3][i % 3];
            flipped.m[i % 3][i / 3] = a.m[i / 3][i % 3];
        }
        keep(actual, get_roots_3_3(in.m, narrow), narrow, in);
        keep(expected, 1, round(v), axes);
        keep(actual, get_roots_3(flipped.m[0], narrow), narrow, flipped);
        keep(expected, 1, round(v), axes);
        ASSERT_TRUE(SameBits(actual, expected)) << testing::PrintToString(List(a));
    }
}

TEST(Matrices, OfThePlaneEqualThePlainSteps)
{
    std::mt19937 random(3);
    for (int trial = 0; trial < 20000; ++trial) {
        float in[2][2], out[2][2];
        for (int i = 0; i < 4; ++i) {
            const double any = random() % 2 ? oddValues[random() % 16] : 0;
            in[i / 2][i % 2] = static_cast<float>(trial % 3 == 0   ? Whole(random, 2)
                                                  : trial % 3 == 1 ? Uniform(random)
                                                                   : any);
        }
        if (trial % 2)
            in[1][0] = in[0][1];
        const float a = in[0][0], b = in[0][1], c = in[1][0], d = in[1][1];
        const float tr = a + d, det = a * d - b * c, delta = std::fabs(-4 * det + tr * tr);
        const float lambda = static_cast<float>(0.5 * (std::sqrt(double{delta}) + tr));
        const float cosine = std::sqrt(b * b / ((a - lambda) * (a - lambda) + b * b));
        const float sine = (lambda - a) * cosine / b;
        std::vector<double> expected = {cosine, sine, -sine, cosine};
        if (delta < 1e-6 || std::fabs(a - lambda) < 1e-6)
            expected = {1, 0, 0, 1};
        else if (std::fabs(d - lambda) < 1e-6)
            expected = {0, 1, -1, 0};
        EXPECT_EQ(make_rmat_2d(in, out), 1);
        ASSERT_TRUE(SameBits(List(out[0], 4), expected)) << a << ' ' << b << ' ' << c << ' ' << d;
    }
}

TEST(TrialVector, EqualsThePlainSteps)
{
    std::mt19937 random(4);
    int retries = 0;
    for (int trial = 0; trial < 20000; ++trial) {
        const Kind kind = Kind(trial / 2 % 9);
        const bool isFloat = trial % 2;
        Grid<double> a = AnyMatrix(random, kind), out;
        Grid<float> in = Convert<float>(a), narrow, same = in;
        if (isFloat)
            a = Convert<double>(in);
        SCOPED_TRACE(trial);
        double roots[3], values[3] = {mark, mark, mark};
        float floats[3] = {mark, mark, mark};
        unsigned order[3];
        PlainCharacteristic(true, roots, a);
        PlainOrder(roots, order, true);
        const PlainAxes axes(a, roots, true);
        int tiny = 0;
        while (tiny < 3 && std::fabs(roots[2 - tiny]) < 1e-9)
            ++tiny;
        const int result = tiny == 3 ? -3 : isFloat || tiny == 0 ? 1 : -tiny;
        const bool equal = roots[0] == roots[1] && roots[1] == roots[2];
        const Grid<double> rows = result < 0 || equal ? identity<double> : axes.rows;
        if (isFloat) {
            ASSERT_EQ(zv_make_rmat_alt(in.m, narrow.m, floats), result);
            ASSERT_EQ(zv_make_rmat2(same.m, same.m, 999), 0);
            ASSERT_TRUE(SameBits(List(same), List(in)));
            ASSERT_EQ(zv_make_rmat2(same.m, same.m, trial % 3), result);  // in place
            ASSERT_TRUE(SameBits(List(same), List(narrow)));
            out = Convert<double>(narrow);
        } else {
            ASSERT_EQ(zv_make_rmat_alt_d(a.m, out.m, values), result);
        }
        if (result < 0)
            ASSERT_EQ(List(out), List(rows));
        else
            ASSERT_TRUE(isFloat ? AreAxes(narrow, rows, a, roots, 3e-7)
                                : AreAxes(out, rows, a, roots, 1e-14));
        retries += result > 0 && !equal && axes.trials > 0 && AreSound({rows, a}, roots);
        for (int i = 0; i < 3; ++i) {
            const double root = result > 0 ? roots[i] : mark;
            ASSERT_TRUE(SameBits(floats[i], isFloat ? Rounded(root) : mark));
            ASSERT_TRUE(SameBits(values[i], isFloat ? mark : root));
        }
    }
    EXPECT_GT(retries, 0);
}

TEST(TrialVector, GivesTheAxes)
{
    for (const AxesReference& r : axesReferences) {
        Grid<double> a = Symmetric(r.entries), out;
        double values[3];
        const bool isSingular = std::fabs(r.values[2]) < 1e-9;
        EXPECT_EQ(zv_make_rmat_alt_d(a.m, out.m, values), isSingular ? -1 : 1) << r.name;
        EXPECT_TRUE(isSingular || AreExact(values, out, r, 1.6e-11)) << r.name;
    }
    std::mt19937 random(5);
    for (int trial = 0; trial < 20000; ++trial) {
        Grid<float> in = Convert<float>(AnyMatrix(random, Kind(trial % 7))), out;
        const float scale = static_cast<float>(std::pow(10, 2 + 2 * Uniform(random)));
        for (int i = 0; i < 9; ++i)
            in.m[i / 3][i % 3] *= scale;
        if (zv_make_rmat2(in.m, out.m, 0) != 1)
            continue;  // all eigenvalues seem to be 0
        const Quality quality(Convert<double>(out), Convert<double>(in));
        ASSERT_LE(quality.skewness, 2e-7) << trial;
        ASSERT_LE(quality.offDiagonal, 2e-6) << trial;
    }
}

TEST(Printing, ShowsEveryEntry)
{
    float r[3][3] = {{1.0004f, 0, 0}, {0, -2, 0.5f}, {0, 0.015625f, 1e-3f}};
    testing::internal::CaptureStdout();
    EXPECT_EQ(test_rmat(r), 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "0 0= 1.000400 1.000800\n"
                                                      "0 1= 0.000000 0.000000\n"
                                                      "0 2= 0.000000 0.000000\n"
                                                      "1 0= 0.000000 0.000000\n"
                                                      "1 1= -2.000000 4.250000\n"
                                                      "1 2= 0.500000 -0.030750\n"
                                                      "2 0= 0.000000 0.000000\n"
                                                      "2 1= 0.015625 -0.030750\n"
                                                      "2 2= 0.001000 0.000245\n"
                                                      "failed at 1,1, 4.250000\n"
                                                      "failed at 2,2, 0.000245\n"
                                                      "tested rmat\n");
    std::mt19937 random(6);
    for (int mode = 0; mode <= 4; ++mode)
        for (const Kind kind : {uniform, correlation}) {
            Grid<float> in = Convert<float>(AnyMatrix(random, kind)), out = marked;
            Grid<float> first, second = marked;
            double values[3];
            char line[200];
            const int status = PlainRmat<float>(values, in, first, mode);
            std::snprintf(line, sizeof line, "status: %d %d\n", status,
                          PlainRmat<double>(values, in, second, mode));
            std::string text = line;
            for (int i = 0; i < 9; ++i) {
                const float one = first.m[i / 3][i % 3], other = second.m[i / 3][i % 3];
                std::snprintf(line, sizeof line, "mat1, mat2 %d %d, %f %f, %f\n", i / 3, i % 3,
                              double{one}, double{other}, double{std::fabs(one - other)});
                text += line;
            }
            testing::internal::CaptureStdout();
            EXPECT_EQ(make_rmat2(in.m, out.m, mode), 1);
            EXPECT_EQ(testing::internal::GetCapturedStdout(), text);
            EXPECT_EQ(List(out), List(second));
        }
}

}  // namespace
