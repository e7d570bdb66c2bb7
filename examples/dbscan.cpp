// Clusters 178 wines by their chemistry alone, then holds the clusters against the cultivars that
// the wines were made from.

#include "table.h"

#include "zvmath/dbscan.h"

#include <Eigen/Dense>

#include <algorithm>

using ZVMath::ZVDBSCAN;
using ZVMath::ZVSquareMatrix;

namespace
{

ZVSquareMatrix Distances(const std::vector<std::vector<double>>& rows)
{
    const unsigned int n = static_cast<unsigned int>(rows.size());
    ZVSquareMatrix distances(n);
    std::vector<double> fromOne(n);
    for (unsigned int i = 0; i < n; ++i) {
        for (unsigned int j = 0; j < n; ++j)
            fromOne[j] = std::sqrt(SquaredDistance(rows[i], rows[j]));
        distances.SetRowData(i, fromOne);
    }
    return distances;
}

int NumClusters(const std::vector<int>& labels)
{
    return 1 + *std::max_element(labels.begin(), labels.end());
}

size_t NumNoise(const std::vector<int>& labels)
{
    return static_cast<size_t>(std::count(labels.begin(), labels.end(), -1));
}

/// Chooses eps without a look at the cultivars: of the values that tell most clusters apart, the
/// largest, since it leaves the fewest wines as noise.
double ChooseEps(ZVDBSCAN& dbscan, unsigned int minPts)
{
    std::printf(" eps  clusters  noise\n");
    double chosen = 0.0;
    int mostClusters = 0;
    for (int step = 40; step <= 56; ++step) {
        const double eps = step / 20.0;
        dbscan.Fit(eps, minPts);
        const int clusters = NumClusters(dbscan.GetLabels());
        std::printf("%.2f  %8d  %5zu\n", eps, clusters, NumNoise(dbscan.GetLabels()));
        if (clusters >= mostClusters) {
            mostClusters = clusters;
            chosen = eps;
        }
    }
    return chosen;
}

/// The rows in their first two principal components. The columns have mean 0.
Eigen::MatrixX2d PrincipalComponents(const std::vector<std::vector<double>>& rows)
{
    Eigen::MatrixXd x(rows.size(), rows[0].size());
    for (Eigen::Index i = 0; i < x.rows(); ++i)
        for (Eigen::Index k = 0; k < x.cols(); ++k)
            x(i, k) = rows[static_cast<size_t>(i)][static_cast<size_t>(k)];
    const Eigen::MatrixXd covariance = x.transpose() * x / static_cast<double>(x.rows() - 1);
    const Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> solver(covariance);
    Eigen::MatrixX2d axes = solver.eigenvectors().rightCols<2>().rowwise().reverse();
    // An axis may as well point the other way: its largest element is made positive.
    for (Eigen::Index c = 0; c < 2; ++c) {
        Eigen::Index largest = 0;
        axes.col(c).cwiseAbs().maxCoeff(&largest);
        if (axes(largest, c) < 0.0)
            axes.col(c) *= -1.0;
    }
    const Eigen::VectorXd variances = solver.eigenvalues().reverse() / covariance.trace();
    std::printf("\nThe first two principal components hold %.1f %% and %.1f %% of the variance.\n",
                100.0 * variances[0], 100.0 * variances[1]);
    return x * axes;
}

void Run(const std::string& data, const std::string& output)
{
    Table wines = ReadTable(data + "/wine.tsv");
    const std::vector<double> cultivars = TakeLastColumn(wines);
    const size_t n = wines.rows.size();
    Standardise(wines.rows, ScalesOf(wines.rows));

    // A common rule of thumb: one more than there are dimensions.
    const unsigned int minPts = static_cast<unsigned int>(wines.names.size()) + 1;
    ZVDBSCAN dbscan(Distances(wines.rows), 0.0, minPts);
    std::printf("%zu wines, %zu columns; minPts = %u\n\n", n, wines.names.size(), minPts);
    const double eps = ChooseEps(dbscan, minPts);
    dbscan.Fit(eps, minPts);

    const std::vector<int>& labels = dbscan.GetLabels();
    const std::vector<unsigned int> medoids = dbscan.GetClusterCenters();
    std::printf("\neps = %.2f\n\n", eps);
    std::printf("             wines  medoid   cultivar 0  cultivar 1  cultivar 2\n");
    for (int cluster = -1; cluster < NumClusters(labels); ++cluster) {
        unsigned int counts[3] = {};
        for (size_t i = 0; i < n; ++i)
            if (labels[i] == cluster)
                ++counts[static_cast<size_t>(cultivars[i])];
        const unsigned int members = counts[0] + counts[1] + counts[2];
        if (cluster < 0)
            std::printf("noise        %5u       -", members);
        else
            std::printf("cluster %-4d %5u %7u", cluster, members,
                        medoids[static_cast<size_t>(cluster)]);
        std::printf("   %10u  %10u  %10u\n", counts[0], counts[1], counts[2]);
    }

    const Eigen::MatrixX2d points = PrincipalComponents(wines.rows);
    std::ofstream file = OpenForWriting(output + "/dbscan.dat");
    file << "# component 1, component 2, cluster (-1: noise), cultivar, 1 for a medoid\n";
    for (size_t i = 0; i < n; ++i) {
        const Eigen::Index row = static_cast<Eigen::Index>(i);
        file << points(row, 0) << ' ' << points(row, 1) << ' ' << labels[i] << ' ' << cultivars[i]
             << ' ' << std::count(medoids.begin(), medoids.end(), i) << '\n';
    }
}

}  // namespace

int main(int argc, char** argv)
{
    return RunExample(argc, argv, Run);
}
