#pragma once

#include "zvmath/matrix_dump.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

/// Records field by field: what the tests and the fuzz targets hold bulk transfers against.
namespace ZVTest
{

using Bytes = std::vector<unsigned char>;

/// Delivers or takes bytes in pieces: no call goes past a multiple of `piece`.
class PieceStream : public ZVPlatform::zvistream, public ZVPlatform::zvostream
{
public:
    PieceStream(size_t pieceSize, size_t most) : piece(pieceSize), room(most) {}
    PieceStream(size_t pieceSize, Bytes contents)
        : bytes(std::move(contents)), piece(pieceSize), room(bytes.size())
    {
    }

    size_t read(unsigned char* to, size_t count) override
    {
        count = Next(count);
        std::copy_n(bytes.data() + at - count, count, to);
        return count;
    }
    size_t write(const unsigned char* from, size_t count) override
    {
        count = Next(count);
        bytes.insert(bytes.end(), from, from + count);
        return count;
    }

    Bytes bytes;

private:
    size_t Next(size_t count)
    {
        count = std::min({count, piece - at % piece, room - at});
        at += count;
        return count;
    }

    size_t piece;
    size_t room;
    size_t at = 0;
};

struct Reading
{
    bool reverse8 = false;
    bool reverse4 = false;
    unsigned int version = 1;
};

struct NaiveDump
{
    PieceStream stream;
    unsigned int status;
    unsigned int remaining;
    unsigned int total = 0;

    void Write(const ZVMath::ZVMatrix& matrix)
    {
        const auto count = static_cast<unsigned int>(matrix.GetData().size());
        for (unsigned int field : {matrix.GetNumRows(), matrix.GetNumColumns(), count})
            Transfer(field, 6, [&](auto* bytes, size_t n) { return stream.write(bytes, n); });
        for (double field : matrix.GetData())
            Transfer(field, 6, [&](auto* bytes, size_t n) { return stream.write(bytes, n); });
    }

    void Read(const Reading& how, std::vector<double>& values)
    {
        if (status == 0 && how.version != 1)
            status = 1;
        if (status != 0)
            return;
        values.clear();
        unsigned int count = 0;
        ReadField(count, how.reverse4);
        for (double value = 0.0; count > 0 && ReadField(value, how.reverse8); --count)
            values.push_back(value);
    }

    void Read(const Reading& how, ZVMath::ZVMatrix& matrix)
    {
        if (status == 0 && how.version != 1)
            status = 1;
        unsigned int rows = 0, columns = 0;
        ReadField(rows, how.reverse4);
        ReadField(columns, how.reverse4);
        std::vector<double> values;
        Read(how, values);
        if (status != 0)
            return;
        const uint64_t claimed = uint64_t{rows} * columns;
        const bool doubtful = claimed >> 32 != 0 || claimed > values.size() + (1 << 24);
        if (!doubtful) {
            matrix.Resize(rows, columns, 0.0);
            const size_t count = std::min(values.size(), matrix.GetData().size());
            const size_t width = matrix.GetNumColumns();
            for (size_t i = 0; i < count; i += width)
                matrix.SetRowData(static_cast<unsigned int>(i / width),
                                  {&values[i], &values[i] + std::min(width, count - i)});
        }
        if (doubtful || matrix.GetData().size() != values.size())
            status = 7;
    }

private:
    template <class Field, class Step>
    bool Transfer(Field& field, unsigned int statusWithoutBudget, Step step)
    {
        if (status != 0)
            return false;
        if (remaining < sizeof field) {
            status = statusWithoutBudget;
            return false;
        }
        remaining -= static_cast<unsigned int>(sizeof field);
        const size_t now = step(reinterpret_cast<unsigned char*>(&field), sizeof field);
        total += static_cast<unsigned int>(now);
        status = now < sizeof field ? 4 : 0;
        return status == 0;
    }

    template <class Field> bool ReadField(Field& field, bool reverse)
    {
        auto* bytes = reinterpret_cast<unsigned char*>(&field);
        const bool whole =
            Transfer(field, 5, [&](auto* to, size_t n) { return stream.read(to, n); });
        if (reverse)
            std::reverse(bytes, bytes + sizeof field);
        return whole;
    }
};

/// Equal to the bit, NaNs too.
inline bool Same(const std::vector<double>& a, const std::vector<double>& b)
{
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof a[0]) == 0);
}

inline bool Same(const ZVMath::ZVMatrix& a, const ZVMath::ZVMatrix& b)
{
    return a.GetNumRows() == b.GetNumRows() && a.GetNumColumns() == b.GetNumColumns() &&
           Same(a.GetData(), b.GetData());
}

/// Reads onto copies of `before`, the library from `source`, and field by field. What differs.
template <class Object, class Source>
std::string Difference(const Object& before, Source&& source, NaiveDump naive, const Reading& how)
{
    namespace Dump = ZVPlatform::ZVBinaryDump;
    Object object(before), expected(before);
    unsigned int total = 0, status = naive.status, remaining = naive.remaining;
    if constexpr (std::is_base_of_v<ZVMath::ZVMatrix, Object>)
        total = Dump::ZVImpl<ZVMath::ZVMatrix>().Read(source, how.reverse8, how.reverse4, true,
                                                      how.version, object, status, remaining);
    else
        total = Dump::ZVPushBackSTLRead(source, how.reverse8, how.reverse4, true, how.version,
                                        object, status, remaining);
    naive.Read(how, expected);
    const auto differs = [](const char* what, unsigned int actual, unsigned int wanted) {
        return actual == wanted ? ""
                                : what + std::to_string(actual) + " not " + std::to_string(wanted);
    };
    return differs(" status ", status, naive.status) + differs(" read ", total, naive.total) +
           differs(" remaining ", remaining, naive.remaining) +
           (Same(object, expected) ? "" : " other contents");
}

}  // namespace ZVTest
