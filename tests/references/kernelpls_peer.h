#pragma once

// Made by kernelpls_peer.py with scikit-learn's PLSRegression, whose fits are within 1e-10 of those
// in extended precision; they are rounded to eight decimals.

namespace ZVTest
{

constexpr unsigned int kernelPLSPeerFeatures[] = {1, 2, 3, 5, 8};
constexpr unsigned int kernelPLSPeerRows[] = {0, 71, 152, 238, 333, 441};

// clang-format off
/// The fits of the centred response in these rows, one line per number of features.
constexpr double kernelPLSPeerLinear[5][6] = {
    {27.17897440, 55.87718289, 72.97612662, 35.76606657, 35.65934170, -69.21026132},
    {53.38546761, 82.68480134, 49.52613800, 36.75440752, 32.95506450, -113.47947516},
    {48.44841447, 84.97733699, 45.22196428, 30.14312768, 26.06654726, -102.47609431},
    {51.71675203, 82.99253678, 43.05260868, 33.29220596, 27.13800123, -104.87995183},
    {52.73948626, 88.68633092, 46.83543064, 35.47503653, 30.85492764, -104.97707224},
};
constexpr double kernelPLSPeerGaussian[5][6] = {
    {40.12396911, 67.71044003, 69.71998651, 42.86783856, 49.50488529, -36.83083134},
    {57.69494600, 92.14798647, 55.53047434, 32.02512887, 32.71722805, -46.22219290},
    {73.99429640, 77.66708963, 47.50480708, 33.50821791, 28.46517247, -51.59396513},
    {69.32312447, 67.22734463, 63.45257658, 7.50071616, 16.11476815, -62.37873562},
    {75.72064974, 59.25876552, 98.25414951, 26.96214438, 18.97204049, -96.50612081},
};
// clang-format on

}  // namespace ZVTest
