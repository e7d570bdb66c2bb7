// The sample asks a function Try of the reader's. Here the last arm is the best by far, and must
// get nearly all tries.

#include <zvmath/thompson.h>

int main()
{
    ZVMath::MtRng<ZVMath::Mt32Traits> random(1000);
    const auto Try = [&random](unsigned int arm) {
        return random.getUnitDouble() < (arm == 19 ? 0.8 : 0.2);
    };
#include "thompson.inc"
    return sampler.GetAlpha(19) + sampler.GetBeta(19) > 9000 ? 0 : 1;
}
