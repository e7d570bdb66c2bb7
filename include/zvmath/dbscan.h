#pragma once

#include "zvmath/export.h"
#include "zvmath/matrix.h"

#include <vector>

namespace ZVMath
{

/// DBSCAN: clusters of objects that lie densely, found from nothing but their pairwise distances.
///
/// The neighbourhood of object p is every object q, p included, whose distance in row p of the
/// matrix is <= eps; a NaN is no neighbour. p is a core object when its neighbourhood has at least
/// minPts members. Each core object that no earlier cluster has reached founds a cluster, in
/// ascending order of index, and the cluster grows over the neighbourhoods of the core objects it
/// reaches. The matrix need not be symmetric: a neighbourhood is read from its object's row alone.
///
/// Border objects: an object that is not core takes the label of the first cluster that reaches it.
/// One that was visited before that cluster was founded, and so was noise so far, is claimed only
/// when it is a neighbour of the cluster's founder: growing queues only unvisited objects. Other
/// libraries let every core object claim it, and so label a few such objects differently.
///
/// Method: Ester, Kriegel, Sander, Xu (1996, KDD-96).
class ZVMATH_EXPORT ZVDBSCAN
{
public:
    /// Copies the n x n `distances` and clusters them; see `Fit`.
    ZVDBSCAN(const ZVSquareMatrix& distances, double eps, unsigned int minPts);

    /// Clusters again with other parameters; the former labels are lost.
    ///
    /// Every `eps` and `minPts` is accepted. minPts <= 1 with a zero diagonal and eps >= 0 makes
    /// every object a core object; so does minPts = 0 whatever eps is; a NaN eps makes every
    /// neighbourhood empty. A matrix made non-square through its base class leaves all objects
    /// noise. When memory runs out the labels are those of before the call.
    ///
    /// Cost: each row of the matrix is read at most once, at the speed of memory; at most
    /// 600 bytes of memory per object besides.
    void Fit(double eps, unsigned int minPts);

    /// Per object its cluster, 0 .. C-1 in the order in which the clusters were founded, or -1 for
    /// noise.
    const std::vector<int>& GetLabels() const { return labels; }

    /// Per cluster, in ascending order of label, its medoid: the member with the smallest sum of
    /// distances, read from the member's row, to all members; the one with the lowest index among
    /// equals. 4294967295 for a cluster in which every sum is NaN or not below
    /// 1.7976931348623157e308. Each sum starts at 0.0 and adds in ascending order of index.
    ///
    /// Cost: the sum over the clusters of (number of members)^2 additions.
    std::vector<unsigned int> GetClusterCenters() const;

private:
    ZVSquareMatrix distances;
    std::vector<int> labels;
};

}  // namespace ZVMath
