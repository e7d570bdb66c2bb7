#include "zvmath/matrix_dump.h"

#include "allocations.h"
#include "check.h"
#include "dump_naive.h"
#include "matrix_contents.h"

#include <memory>
#include <new>
#include <sstream>

namespace
{

using namespace ZVTest;
using namespace ZVMath;
using namespace ZVPlatform;
using ZVBinaryDump::ZVPushBackSTLRead;

constexpr unsigned int unlimited = 0xFFFFFFFF;
const ZVBinaryDump::ZVImpl<ZVMatrix> impl;

/// rows x columns of random bits: NaNs and subnormal numbers too.
ZVMatrix AnyBits(unsigned int rows, unsigned int columns)
{
    std::mt19937_64 random(rows + 1);
    return MakeMatrix(rows, columns, [&](unsigned int, unsigned int) {
        const uint64_t bits = random();
        double value = 0.0;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    });
}

template <class Field> void Append(Bytes& bytes, Field field, bool reverse)
{
    unsigned char raw[sizeof field];
    std::memcpy(raw, &field, sizeof field);
    if (reverse)
        std::reverse(raw, raw + sizeof field);
    bytes.insert(bytes.end(), raw, raw + sizeof field);
}

/// A record with these fields, whether they fit each other or not.
Bytes Record(const std::vector<unsigned int>& counts, const std::vector<double>& elements,
             const Reading& how = {})
{
    Bytes bytes;
    for (const unsigned int count : counts)
        Append(bytes, count, how.reverse4);
    for (const double element : elements)
        Append(bytes, element, how.reverse8);
    return bytes;
}

std::string Printed(const ZVMatrix& matrix)
{
    zvomemorystream stream;
    ZVPrintMatrix(matrix, stream);
    return stream.text();
}

TEST(MatrixText, OneLineARow)
{
    EXPECT_EQ(Printed(MakeMatrix(2, 3, [](double r, double c) { return 3 * r + c + 1; })),
              "1\t2\t3\n4\t5\t6\n");
    EXPECT_EQ(Printed(ZVMatrix(0, 3)) + Printed(ZVMatrix(3, 0)), "");
    for (const unsigned int columns : {1u, 7u, 400u}) {
        const ZVMatrix matrix = AnyBits(50, columns);
        zvomemorystream stream;
        for (size_t i = 0; i < matrix.GetData().size(); ++i)
            stream << matrix.GetData()[i] << ((i + 1) % columns == 0 ? '\n' : '\t');
        EXPECT_EQ(Printed(matrix), stream.text()) << columns;
    }
}

TEST(MatrixContents, FillAsFarAsTheyReach)
{
    ZVMatrix matrix(2, 2, 9.0), empty(0, 5);
    EXPECT_FALSE(ZVSetMatrixContents(matrix, {1, 2, 3}));
    EXPECT_EQ(ZVGetMatrixContents(matrix), (std::vector<double>{1, 2, 3, 9}));
    EXPECT_TRUE(ZVSetMatrixContents(matrix, {4, 5, 6, 7}));
    EXPECT_FALSE(ZVSetMatrixContents(matrix, {5, 6, 7, 8, 9}));
    EXPECT_EQ(ZVGetMatrixContents(matrix), (std::vector<double>{5, 6, 7, 8}));
    EXPECT_TRUE(ZVSetMatrixContents(empty, {}));
    EXPECT_FALSE(ZVSetMatrixContents(empty, {1.0}));
}

TEST(MatrixRecord, NameSizeAndLayout)
{
    std::string name = "type ";
    impl.Name(name);
    EXPECT_EQ(name, "type ZVMatrix");
    EXPECT_EQ(impl.Size(ZVMatrix(2, 2), 0, false), 44u);
    EXPECT_EQ(impl.Size(ZVMatrix(3, 0), 0, true), 12u);
    EXPECT_EQ(impl.Size(ZVMatrix(2, 2), 4, false), 12u);

    zvomemorystream stream;
    unsigned int status = 0, remaining = 44;
    EXPECT_EQ(impl.Write(stream, false, ZVMatrix(2, 1, -2.0), status, remaining), 28u);
    EXPECT_EQ(remaining, 16u);
    EXPECT_EQ(stream.contents(), (Bytes{2, 0, 0, 0, 1, 0,    0, 0, 2, 0, 0, 0, 0, 0,
                                        0, 0, 0, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0, 0xC0}));
}

/// Has room for so many bytes.
struct NarrowBuffer : std::stringbuf
{
    explicit NarrowBuffer(size_t most) : room(most) {}
    std::streamsize xsputn(const char* from, std::streamsize count) override
    {
        count = std::min(count, static_cast<std::streamsize>(room));
        room -= static_cast<size_t>(count);
        return std::stringbuf::xsputn(from, count);
    }
    size_t room;
};

/// Writes to every kind of target, with a budget or room of `limit` bytes: each comes to the same
/// as field by field.
void WritesAsFieldByField(const ZVMatrix& matrix, unsigned int status, size_t limit)
{
    const auto check = [&](NaiveDump naive, auto&& target, auto contents) {
        unsigned int now = naive.status, remaining = naive.remaining;
        const unsigned int total = impl.Write(target, true, matrix, now, remaining);
        naive.Write(matrix);
        EXPECT_TRUE(total == naive.total && now == naive.status && remaining == naive.remaining)
            << total << ' ' << naive.total << ", " << now << ' ' << naive.status;
        EXPECT_EQ(contents(total), naive.stream.bytes) << limit;
    };
    const auto budget = static_cast<unsigned int>(limit);
    const NaiveDump budgeted{{unlimited, unlimited}, status, budget};
    const std::unique_ptr<unsigned char[]> buffer(new unsigned char[limit]);
    check(budgeted, buffer.get(),
          [&](size_t total) { return Bytes(buffer.get(), buffer.get() + total); });
    zvomemorystream memory;
    check(budgeted, memory, [&](size_t) { return memory.contents(); });
    NarrowBuffer narrow(limit);
    std::ostream standard(&narrow);
    check({{unlimited, limit}, status, budget + 17}, zvostdstream(standard), [&](size_t) {
        const std::string text = narrow.str();
        return Bytes(text.begin(), text.end());
    });
    PieceStream pieces(limit % 19 + 1, unlimited);
    check({pieces, status, unlimited}, static_cast<zvostream&>(pieces),
          [&](size_t) { return pieces.bytes; });
}

TEST(MatrixRecord, IsWrittenAsFieldByField)
{
    for (const ZVMatrix& matrix :
         {AnyBits(2, 3), ZVMatrix(3, 0), ZVMatrix(0, 2), AnyBits(70, 91)}) {
        const size_t size = 12 + 8 * matrix.GetData().size();
        for (size_t limit = 0; limit < size + 30; limit += limit < 70 ? 1 : 997)
            for (const unsigned int status : {0u, 9u})
                WritesAsFieldByField(matrix, status, limit);
    }
}

/// Reads the first `size` bytes of a record onto `before` from every kind of source: each comes to
/// the same as field by field.
template <class Object>
void ReadsAsFieldByField(const Object& before, const Bytes& record, size_t size, const Reading& how,
                         unsigned int status = 0)
{
    // No byte more than the reader may have, so that sanitizers see it read past them.
    const Bytes exact(record.data(), record.data() + size);
    const PieceStream whole(unlimited, exact);
    PieceStream pieces(size % 37 + 1, exact);
    zvimemorystream all(record.data(), record.size()), some(exact.data(), size);
    std::istringstream standard(std::string(exact.begin(), exact.end()));
    const auto budget = static_cast<unsigned int>(size);
    EXPECT_EQ(Difference(before, exact.data(), {whole, status, budget}, how), "");
    EXPECT_EQ(Difference(before, all, {{unlimited, record}, status, budget}, how), "");
    EXPECT_EQ(Difference(before, some, {whole, status, unlimited}, how), "");
    EXPECT_EQ(Difference(before, zvistdstream(standard), {whole, status, unlimited}, how), "");
    const PieceStream samePieces(pieces);
    zvistream& piecewise = pieces;
    EXPECT_EQ(Difference(before, piecewise, {samePieces, status, unlimited}, how), "") << size;
}

TEST(MatrixRecord, IsReadAsFieldByField)
{
    const std::vector<double> six = AnyBits(2, 3).GetData(), many = AnyBits(70, 91).GetData();
    for (const Reading& how : {Reading{}, Reading{true, false}, Reading{false, true},
                               Reading{true, true}, Reading{false, false, 2}}) {
        const std::vector<Bytes> records = {
            Record({2, 3, 6}, six, how),         Record({1, 4, 4}, {1, 2, 3, 4}, how),
            Record({3, 0, 0}, {}, how),          Record({2, 2, 6}, six, how),
            Record({4, 5, 6}, six, how),         Record({0, 5, 6}, six, how),
            Record({2, 3, 0}, {}, how),          Record({65536, 65536, 0}, {}, how),
            Record({1, 6, unlimited}, six, how), Record({70, 91, 6370}, many, how)};
        for (const Bytes& record : records)
            for (size_t left = 0, step = 1; left <= record.size(); left += step) {
                step = left < 70 ? 1 : 997;
                const size_t size = record.size() - left;
                ReadsAsFieldByField(ZVMatrix(1, 5, 9.0), record, size, how);
                ReadsAsFieldByField(ZVMatrix(2, 3, 9.0), record, size, how, left == 1 ? 3 : 0);
                ReadsAsFieldByField(ZVSquareMatrix(2, 9.0), record, size, how);
                ReadsAsFieldByField(ZV4x4Matrix(9.0), record, size, how);
                if (size >= 8)
                    ReadsAsFieldByField(std::vector<double>{9.0},
                                        Bytes(record.begin() + 8, record.end()), size - 8, how);
            }
    }
}

TEST(HostileRecord, GetsNoMemoryForClaims)
{
    constexpr unsigned int most = 1 << 24;
    const struct
    {
        unsigned int rows, columns;
        bool resizes;
    } cases[] = {{4096, 4096, true},    {most + 1, 1, true},          {1, most + 2, false},
                 {65535, 65536, false}, {65536, 65536, false},        {unlimited, 1, false},
                 {unlimited, 2, false}, {unlimited, unlimited, false}};
    for (const auto& c : cases) {
        const Bytes record = Record({c.rows, c.columns, 1}, {5.0});
        ZVMatrix matrix(1, 1, 9.0);
        unsigned int status = 0, remaining = 20;
        impl.Read(record.data(), false, false, false, 1, matrix, status, remaining);
        EXPECT_EQ(status, 7u);
        EXPECT_EQ(matrix.GetNumRows(), c.resizes ? c.rows : 1) << c.rows << " x " << c.columns;
        EXPECT_EQ(matrix.GetData().size(), c.resizes ? size_t{c.rows} * c.columns : 1);
        EXPECT_EQ(matrix.GetData()[0], c.resizes ? 5.0 : 9.0);
    }

    // Neither the count nor the budget is believed: 16 elements that claim to be 2^29 - 1.
    const Bytes record = Record({(1u << 29) - 1}, std::vector<double>(16));
    std::istringstream standard(std::string(record.begin(), record.end()));
    zvistdstream onStandard(standard);
    zvimemorystream inMemory(record.data(), record.size());
    PieceStream pieces(record.size(), record);
    for (zvistream* stream : std::initializer_list<zvistream*>{&onStandard, &inMemory, &pieces}) {
        std::vector<double> values;
        unsigned int status = 0, remaining = unlimited;
        ZVPushBackSTLRead(*stream, false, false, false, 1, values, status, remaining);
        EXPECT_EQ(status, 4u);
        EXPECT_LE(values.capacity(), 32u);
    }
}

TEST(HostileStream, CountsAreChecked)
{
    struct : zvistream, zvostream
    {
        size_t read(unsigned char*, size_t) override { return static_cast<size_t>(-1); }
        size_t write(const unsigned char*, size_t) override { return static_cast<size_t>(-1); }
    } failing;
    ZVMatrix matrix(1, 1, 9.0);
    unsigned int reading = 0, writing = 0, remaining = unlimited;
    EXPECT_EQ(impl.Read(failing, false, false, false, 1, matrix, reading, remaining), 0u);
    EXPECT_EQ(impl.Write(failing, false, matrix, writing, remaining), 0u);
    EXPECT_TRUE(reading == 4 && writing == 4);
}

TEST(MatrixRecord, WithoutMemoryTheMatrixStays)
{
    const Bytes record = Record({3, 2, 7}, std::vector<double>(7));
    bool done = false;
    for (int successes = 0; !done; ++successes) {
        ZVMatrix matrix(1, 2, 9.0);
        zvimemorystream source(record.data(), record.size());
        unsigned int status = 0, remaining = unlimited;
        try {
            const FailingAllocation failing(successes);
            impl.Read(source, false, false, false, 1, matrix, status, remaining);
            done = true;
        } catch (const std::bad_alloc&) {
            EXPECT_TRUE(matrix.GetNumRows() == 1 && SameBits(matrix.GetData(), {9, 9}));
        }
    }
}

}  // namespace
