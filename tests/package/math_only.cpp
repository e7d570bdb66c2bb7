// Uses nothing of the companion library itself: the libraries must find each other.

#include <zvmath/matrix.h>

int main()
{
    return ZVMath::ZVSquareMatrix(1, 3.0).Determinant() == 3.0 ? 0 : 1;
}
