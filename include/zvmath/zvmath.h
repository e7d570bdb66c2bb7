#pragma once

/// All families of the library but lasso.h, which needs Eigen. The toolkit's warnings are in
/// "zvsystem/errors.h".

#include "zvmath/datapoints.h"
#include "zvmath/dbscan.h"
#include "zvmath/kernelpls.h"
#include "zvmath/matrix.h"
#include "zvmath/matrix_dump.h"
#include "zvmath/mult_prec_int.h"
#include "zvmath/roots.h"
#include "zvmath/simple_shapes.h"
#include "zvmath/special_functions.h"
#include "zvmath/stats.h"
#include "zvmath/tensor2mat.h"
#include "zvmath/thompson.h"
