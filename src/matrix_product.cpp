#include "matrix_product.h"

#include "multiversion.h"

#include <algorithm>

namespace ZVMath
{

namespace
{

// A tile of c stays in registers while k runs: 6 x 8 sums take twelve AVX2 registers of four, and
// leave four for two pieces of a row of b, an element of a and a product.
constexpr size_t tileRows = 6;
constexpr size_t tileColumns = 8;

// b is packed tile column by tile column, in blocks of 64 KiB: a panel of one tile column (8 KiB)
// and six rows of a stay in the first-level cache, the block in the second. The block is on the
// stack: from the heap it would be fresh pages each time, which cost as much as a product of 100 x
// 100.
constexpr size_t blockInner = 128;
constexpr size_t blockColumns = 64;

// A row of a packed panel fills a cache line; across two it takes twice the time to read.
constexpr size_t cacheLine = 64;

// Rows of a that lie far apart, above all a multiple of 4 KiB, would drive each other out of the
// first-level cache: so the part of them that a tile needs is copied, a line more than its length
// apart. Rows no further apart than that are read where they lie.
constexpr size_t closeStride = blockInner + cacheLine / sizeof(double);

// Up to this many products the plain loops are faster than packing.
constexpr size_t fewProducts = 8 * 8 * 8;

void AddProductPlainly(double* c, const double* a, size_t aStride, const double* b, size_t rows,
                       size_t inner, size_t columns)
{
    for (size_t i = 0; i < rows; ++i)
        for (size_t k = 0; k < inner; ++k) {
            const double factor = a[i * aStride + k];
            for (size_t j = 0; j < columns; ++j)
                c[i * columns + j] += factor * b[k * columns + j];
        }
}

/// The c tile, of rows `cStride` apart, takes the products of `inner` elements of six rows of a and
/// a packed panel of b.
ZVMATH_CLONES void AddTile(double* c, size_t cStride, const double* const* aRows,
                           const double* panel, size_t inner)
{
    Vec4 left[tileRows];
    Vec4 right[tileRows];
    for (size_t r = 0; r < tileRows; ++r) {
        left[r] = Four(c + r * cStride).v;
        right[r] = Four(c + r * cStride + 4).v;
    }
    for (size_t k = 0; k < inner; ++k) {
        const Vec4 bLeft = Four(panel + k * tileColumns).v;
        const Vec4 bRight = Four(panel + k * tileColumns + 4).v;
        for (size_t r = 0; r < tileRows; ++r) {
            const double factor = aRows[r][k];
            left[r] += factor * bLeft;
            right[r] += factor * bRight;
        }
    }
    for (size_t r = 0; r < tileRows; ++r) {
        Four(c + r * cStride).v = left[r];
        Four(c + r * cStride + 4).v = right[r];
    }
}

/// Where c ends inside a tile: works on a copy, of which only the part that exists is stored.
void AddTileAtEdge(double* c, size_t cStride, const double* const* aRows, const double* panel,
                   size_t inner, size_t rows, size_t columns)
{
    double tile[tileRows * tileColumns] = {};
    for (size_t r = 0; r < rows; ++r)
        std::copy_n(c + r * cStride, columns, tile + r * tileColumns);
    AddTile(tile, tileColumns, aRows, panel, inner);
    for (size_t r = 0; r < rows; ++r)
        std::copy_n(tile + r * tileColumns, columns, c + r * cStride);
}

/// Panel after panel: `tileColumns` columns of b, k by k, the last one filled up with zeros.
void Pack(double* packed, const double* b, size_t bStride, size_t inner, size_t columns)
{
    for (size_t j = 0; j < columns; j += tileColumns) {
        const size_t width = std::min(tileColumns, columns - j);
        for (size_t k = 0; k < inner; ++k, packed += tileColumns) {
            const double* from = b + k * bStride + j;
            if (width == tileColumns) {
                Four(packed).v = Four(from).v;
                Four(packed + 4).v = Four(from + 4).v;
            } else {
                std::copy_n(from, width, packed);
                std::fill(packed + width, packed + tileColumns, 0.0);
            }
        }
    }
}

ZVMATH_CLONES void MultiplyFours(double* c, const double* a, const double* b)
{
    for (size_t i = 0; i < 4; ++i) {
        Vec4 sum = {};
        for (size_t k = 0; k < 4; ++k)
            sum += a[4 * i + k] * Four(b + 4 * k).v;
        Four(c + 4 * i).v = sum;
    }
}

}  // namespace

void AddProduct(double* c, const double* a, size_t aStride, const double* b, size_t rows,
                size_t inner, size_t columns)
{
    // In doubles: with 2^32 elements a side the product of the sizes needs more than 64 bits.
    const double products =
        static_cast<double>(rows) * static_cast<double>(inner) * static_cast<double>(columns);
    if (products <= static_cast<double>(fewProducts)) {
        AddProductPlainly(c, a, aStride, b, rows, inner, columns);
        return;
    }

    alignas(cacheLine) double packed[blockInner * blockColumns];
    alignas(cacheLine) double aCopy[tileRows * closeStride];
    // Blocks of k in ascending order: each picks up the sums that the one before has stored. Within
    // one, the second-level cache keeps its columns of a.
    for (size_t k0 = 0; k0 < inner; k0 += blockInner) {
        const size_t depth = std::min(blockInner, inner - k0);
        for (size_t j0 = 0; j0 < columns; j0 += blockColumns) {
            const size_t width = std::min(blockColumns, columns - j0);
            Pack(packed, b + k0 * columns + j0, columns, depth, width);
            for (size_t i = 0; i < rows; i += tileRows) {
                const size_t tileHeight = std::min(tileRows, rows - i);
                // Rows of the tile past the last row of a repeat that one; they are not stored.
                const double* aRows[tileRows];
                for (size_t r = 0; r < tileRows; ++r) {
                    aRows[r] = a + (i + std::min(r, tileHeight - 1)) * aStride + k0;
                    if (aStride > closeStride) {
                        std::copy_n(aRows[r], depth, aCopy + r * closeStride);
                        aRows[r] = aCopy + r * closeStride;
                    }
                }
                for (size_t j = 0; j < width; j += tileColumns) {
                    const size_t tileWidth = std::min(tileColumns, width - j);
                    double* cTile = c + i * columns + j0 + j;
                    const double* panel = packed + j * depth;
                    if (tileHeight == tileRows && tileWidth == tileColumns)
                        AddTile(cTile, columns, aRows, panel, depth);
                    else
                        AddTileAtEdge(cTile, columns, aRows, panel, depth, tileHeight, tileWidth);
                }
            }
        }
    }
}

void Multiply4x4(double* c, const double* a, const double* b)
{
    MultiplyFours(c, a, b);
}

}  // namespace ZVMath
