#!/usr/bin/env python3
"""Makes kernelpls_peer.h: what scikit-learn's PLSRegression fits to data/diabetes.tsv.

The columns are standardised (mean 0, population standard deviation 1), the response is centred. The
peer knows no kernels, so it is run on factors F of K = F F^T: on the standardised columns for the
linear kernel x.z / 10, and on the scaled eigenvectors of the centred Gaussian kernel
exp(-|x - z|^2 / 20).

The peer is itself held against dual PLS in extended precision (64 bits); the script ends with an
error when they differ by more than the table says. It reports to standard error what was measured,
and how much the fits move when each kernel value moves by up to 2^-52 of the largest.

Usage: kernelpls_peer.py > kernelpls_peer.h
"""
import os
import sys

import numpy as np
from sklearn.cross_decomposition import PLSRegression

FEATURES = [1, 2, 3, 5, 8]
ROWS = [0, 71, 152, 238, 333, 441]
PEER_ERROR = 1e-10  # of the fits; the response ranges from 25 to 346

here = os.path.dirname(os.path.abspath(__file__))
table = np.loadtxt(os.path.join(here, "../../data/diabetes.tsv"), skiprows=1)


def prepared(real):
    """Standardised columns, centred response, and both kernels, in arithmetic `real`."""
    X, y = table[:, :10].astype(real), table[:, 10].astype(real)
    X = X - X.mean(axis=0)
    X = X / np.sqrt((X * X).mean(axis=0))
    squares = ((X[:, None, :] - X[None, :, :]) ** 2).sum(axis=2)
    gaussian = np.exp(-squares / real(20))
    gaussian = gaussian - gaussian.mean(axis=0) - gaussian.mean(axis=1)[:, None] + gaussian.mean()
    return X, y - y.mean(), X @ X.T / real(10), gaussian


def peer(F, y):
    return [PLSRegression(n_components=k, scale=False).fit(F, y).predict(F).ravel()
            for k in FEATURES]


def dual_pls(K, y):
    """The fits with each number of features: the projections of y on the scores so far."""
    fits, fit, scores, rest = [], np.zeros_like(y), [], y
    for i in range(max(FEATURES)):
        t = K @ rest
        for _ in range(2):  # the second pass removes what rounding left
            for s in scores:
                t = t - s * (s @ t)
        t = t / np.sqrt(t @ t)
        scores.append(t)
        fit = fit + t * (t @ rest)
        rest = y - fit
        if i + 1 in FEATURES:
            fits.append(fit)
    return fits


assert np.finfo(np.longdouble).nmant >= 63
X, y, linear, gaussian = prepared(np.float64)
_, exact_y, exact_linear, exact_gaussian = prepared(np.longdouble)
values, vectors = np.linalg.eigh(gaussian)
used = values > 1e-12 * values[-1]
random = np.random.RandomState(1)
results = {}
for name, F, kernel, exact in (
        ("linear", X, linear, dual_pls(exact_linear, exact_y)),
        ("gaussian", vectors[:, used] * np.sqrt(values[used]), gaussian,
         dual_pls(exact_gaussian, exact_y))):
    results[name] = peer(F, y)
    error = max(np.abs(a - b).max() for a, b in zip(results[name], exact))
    moved = kernel + random.uniform(-1, 1, kernel.shape) * 2.0 ** -52 * np.abs(kernel).max()
    moved = dual_pls(moved.astype(np.longdouble), exact_y)
    still = dual_pls(kernel.astype(np.longdouble), exact_y)
    print(name, "peer against extended precision", error, "by rounded kernel",
          max(np.abs(a - b).max() for a, b in zip(still, exact)), "by moved kernel",
          max(np.abs(a - b).max() for a, b in zip(moved, still)), file=sys.stderr)
    if not error <= PEER_ERROR:
        sys.exit(f"{name}: peer and extended precision differ by {error}")

print("""#pragma once

// Made by kernelpls_peer.py with scikit-learn's PLSRegression, whose fits are within %g of those
// in extended precision; they are rounded to eight decimals.

namespace ZVTest
{

constexpr unsigned int kernelPLSPeerFeatures[] = {%s};
constexpr unsigned int kernelPLSPeerRows[] = {%s};

// clang-format off
/// The fits of the centred response in these rows, one line per number of features.""" %
      (PEER_ERROR, ", ".join(map(str, FEATURES)), ", ".join(map(str, ROWS))))
for name, fits in results.items():
    print(f"constexpr double kernelPLSPeer{name.capitalize()}[{len(FEATURES)}][{len(ROWS)}] = {{")
    for fit in fits:
        print("    {" + ", ".join(f"{v:.8f}" for v in fit[ROWS]) + "},")
    print("};")
print("""// clang-format on

}  // namespace ZVTest""")
