// Of the sample's results the page shows the elements, the zeros' signs included.

#include <cstring>
#include <vector>
#include <zvmath/matrix.h>

namespace
{

bool Holds(const ZVMath::ZVMatrix& matrix, const std::vector<double>& elements)
{
    return matrix.GetData().size() == elements.size() &&
           std::memcmp(matrix.GetData().data(), elements.data(),
                       elements.size() * sizeof(double)) == 0;
}

}  // namespace

int main()
{
#include "matrix_example.inc"
    const bool holds = Holds(inverse, {2, 0.5, -1.5, -0.0, 0.5, -0.5, -1, -0.5, 1.5}) &&
                       Holds(identity, {1, 0, 0, 0, 1, 0, 0, 0, 1}) && a.Determinant() == 2;
    return holds ? 0 : 1;
}
