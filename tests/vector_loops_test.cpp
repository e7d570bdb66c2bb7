#include "vector_loops.h"

#include "check.h"

namespace
{

using namespace ZVTest;
using namespace ZVMath;

double NaiveDot(const double* a, const double* b, size_t n)
{
    double sum[8] = {};
    for (size_t i = 0; i < n; ++i)
        sum[i % 8] += a[i] * b[i];
    for (size_t step = 4; step > 0; step /= 2)
        for (size_t j = 0; j < step; ++j)
            sum[j] += sum[j + step];
    return sum[0];
}

TEST(VectorLoops, HaveTheBitsOfTheirPlainForms)
{
    std::mt19937 random(1);
    for (size_t n = 0; n <= 70; ++n) {
        // From an address that no register is aligned to.
        std::vector<double> x(n + 1), y(n + 1);
        for (size_t i = 0; i <= n; ++i) {
            x[i] = Uniform(random);
            y[i] = std::ldexp(Uniform(random), static_cast<int>(random() % 40));
        }
        EXPECT_TRUE(
            SameBits(Dot(x.data() + 1, y.data() + 1, n), NaiveDot(x.data() + 1, y.data() + 1, n)))
            << "n = " << n;

        std::vector<double> sum = y, scaled = x;
        AddScaled(sum.data(), 0.7, x.data(), n);
        Scale(scaled.data(), 0.7, n);
        for (size_t i = 0; i < n; ++i) {
            EXPECT_TRUE(SameBits(sum[i], y[i] + 0.7 * x[i]));
            EXPECT_TRUE(SameBits(scaled[i], 0.7 * x[i]));
        }
        EXPECT_TRUE(SameBits(sum[n], y[n]) && SameBits(scaled[n], x[n])) << "past the end";

        std::vector<double> product(15);
        std::vector<double> matrix(15 * n);
        for (double& element : matrix)
            element = Uniform(random);
        MatrixTimesVector(product.data(), matrix.data(), 15, n, x.data());
        for (size_t r = 0; r < 15; ++r)
            EXPECT_TRUE(SameBits(product[r], NaiveDot(matrix.data() + r * n, x.data(), n)));
    }
}

}  // namespace
