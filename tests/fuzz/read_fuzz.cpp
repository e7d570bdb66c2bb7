// Reads arbitrary bytes as a record: the outcome is that of reading field by field. Compiled for
// each kind of source and each type of object.
//
// Input: the flags, the version, the budget (2 bytes), how long the stream's pieces are, then the
// record.

#include "../dump_naive.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>

using namespace ZVTest;

namespace
{

constexpr size_t headSize = 5;
constexpr unsigned int unlimited = 0xFFFFFFFF;

/// Whether the record claims a matrix that is large, but not too large to be made: there is nothing
/// to be found in filling memory with zeros.
bool ClaimsMuch(const unsigned char* record, size_t size, bool reverse4)
{
    if (size < 12)
        return false;
    uint64_t claimed = 1;
    for (size_t field = 0; field < 8; field += 4) {
        unsigned char bytes[4];
        std::copy_n(record + field, 4, bytes);
        if (reverse4)
            std::reverse(bytes, bytes + 4);
        uint32_t count = 0;
        std::memcpy(&count, bytes, 4);
        claimed *= count;
    }
    return claimed > 65536 && claimed < (1 << 25);
}

void Check(const std::string& difference)
{
    if (difference.empty())
        return;
    std::fprintf(stderr, "not as field by field:%s\n", difference.c_str());
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* input, size_t size)
{
    if (size < headSize)
        return 0;
    const unsigned char* record = input + headSize;
    size -= headSize;
    const Reading how{(input[0] & 1) != 0, (input[0] & 2) != 0, input[1] % 4u};
    const unsigned int status = (input[0] & 4) != 0 ? 9 : 0;
    const unsigned int budget = input[2] + 256u * input[3];
    if (ClaimsMuch(record, size, how.reverse4))
        return 0;
    const ZVMATH_FUZZ_OBJECT before(2, 9);
    const Bytes all(record, record + size);
#ifdef ZVMATH_FUZZ_STREAM
    const PieceStream whole(unlimited, all);
    for (const unsigned int remaining : {budget, unlimited}) {
        std::istringstream standard(std::string(all.begin(), all.end()));
        ZVPlatform::zvistdstream onStandard(standard);
        ZVPlatform::zvimemorystream inMemory(record, size);
        PieceStream pieces(input[4] + size_t{1}, all);
        const NaiveDump piecewise{pieces, status, remaining};
        Check(Difference(before, onStandard, {whole, status, remaining}, how));
        Check(Difference(before, inMemory, {whole, status, remaining}, how));
        Check(Difference(before, static_cast<ZVPlatform::zvistream&>(pieces), piecewise, how));
    }
#else
    // A buffer has as many bytes as the budget says.
    const size_t given = std::min<size_t>(size, budget);
    const std::unique_ptr<unsigned char[]> exact(new unsigned char[given]);
    std::copy_n(record, given, exact.get());
    const unsigned char* buffer = exact.get();
    Check(Difference(before, buffer, {{unlimited, all}, status, static_cast<unsigned int>(given)},
                     how));
#endif
    return 0;
}
