// Writes the table of docs/kernelpls.md that shows where kernel PLS stops by itself, and what comes
// of going on: on the halves of the diabetes data, with the inner product and Gaussian kernels.

#include "../examples/table.h"
#include "kpls_builder.h"

#include <cstdio>
#include <string>

namespace
{

using Rows = std::vector<std::vector<double>>;

struct Quality
{
    double training, test, length;
};

double InnerProduct(const std::vector<double>& a, const std::vector<double>& b)
{
    double sum = 0.0;
    for (size_t c = 0; c < a.size(); ++c)
        sum += a[c] * b[c];
    return sum;
}

/// exp(-|a - b|^2 / (2 sigma^2)); for sigma = 0 the inner product.
double Kernel(const std::vector<double>& a, const std::vector<double>& b, double sigma)
{
    if (sigma == 0.0)
        return InnerProduct(a, b);
    const double squared = InnerProduct(a, a) - 2.0 * InnerProduct(a, b) + InnerProduct(b, b);
    return std::exp(-squared / (2.0 * sigma * sigma));
}

double Rmse(const std::vector<double>& bValues, const Rows& training, const Rows& objects,
            const std::vector<double>& measured, double sigma)
{
    double sum = 0.0;
    for (size_t i = 0; i < objects.size(); ++i) {
        double predicted = 0.0;
        for (size_t j = 0; j < training.size(); ++j)
            predicted += bValues[j] * Kernel(objects[i], training[j], sigma);
        sum += (predicted - measured[i]) * (predicted - measured[i]);
    }
    return std::sqrt(sum / static_cast<double>(objects.size()));
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: kernelpls_stopping <diabetes.tsv>\n");
        return 2;
    }
    Table table = ReadTable(argv[1]);
    const std::vector<double> response = TakeLastColumn(table);
    double mean = 0.0;
    for (const double y : response)
        mean += y / static_cast<double>(response.size());
    Standardise(table.rows, ScalesOf(table.rows));
    Rows half[2];
    std::vector<double> measured[2];
    for (size_t i = 0; i < table.rows.size(); ++i) {
        half[i % 2].push_back(table.rows[i]);
        measured[i % 2].push_back(response[i] - mean);
    }

    std::printf("| kernel | features: it stops | RMSE training | test | length of B | features: it "
                "goes on | RMSE training | test | length of B |\n"
                "|---|---|---|---|---|---|---|---|---|\n");
    for (const double sigma : {0.0, 1.0, 2.0, 4.0, 10.0, 20.0, 100.0}) {
        const unsigned int n = static_cast<unsigned int>(half[0].size());
        ZVMath::ZVSquareMatrix kernel(n);
        std::vector<double> row(n);
        for (unsigned int i = 0; i < n; ++i) {
            for (unsigned int j = 0; j < n; ++j)
                row[j] = Kernel(half[0][i], half[0][j], sigma);
            kernel.SetRowData(i, row);
        }
        std::printf(sigma == 0.0 ? "| inner product" : "| σ = %g", sigma);
        for (const bool stops : {true, false}) {
            ZVMath::ZVKPLSBuilder builder(kernel, measured[0], 0);
            if (stops) {
                builder.Build();
            } else {
                while (builder.numFeatures < n) {
                    builder.CalcNextFeature();
                    ++builder.numFeatures;
                    if (!builder.CanBuild()) {
                        --builder.numFeatures;
                        break;
                    }
                }
                builder.BuildModel();
            }
            const std::vector<double>& b = builder.GetBValues();
            std::printf(" | %u | %.3g | %.4g | %.2g", builder.GetNumFeaturesUsed(),
                        Rmse(b, half[0], half[0], measured[0], sigma),
                        Rmse(b, half[0], half[1], measured[1], sigma),
                        std::sqrt(InnerProduct(b, b)));
        }
        std::printf(" |\n");
    }
    return 0;
}
