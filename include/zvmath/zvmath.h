#pragma once

/// Everything the library offers, but for what needs Eigen.

#include "zvmath/dbscan.h"
#include "zvmath/kernelpls.h"
#include "zvmath/matrix.h"
