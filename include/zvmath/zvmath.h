#pragma once

/// All families of the library. The toolkit's warnings are in "zvsystem/errors.h".

#include "zvmath/dbscan.h"
#include "zvmath/kernelpls.h"
#include "zvmath/matrix.h"
