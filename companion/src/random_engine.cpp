#include "zvsystem/random_engine.h"

namespace ZVMath
{

// Here, and not in the class, so that the class is known to one place.
ZVRanNumEngine::~ZVRanNumEngine() = default;

}  // namespace ZVMath
