// The sample takes a tensor T for given. The page says what it finds of this one.

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <zvmath/tensor2mat.h>

int main()
{
    const double T[9] = {2, 1, 1, 1, 2, 1, 1, 1, 2};
#include "tensor2mat_which_function_for_what.inc"
    std::sort(std::begin(moments), std::end(moments), std::greater<>());
    const bool holds = std::fabs(moments[0] - 4) < 1e-12 && std::fabs(moments[1] - 1) < 1e-12 &&
                       std::fabs(moments[2] - 1) < 1e-12;
    return holds ? 0 : 1;
}
