#include "zvplatform/streams.h"

#include "check.h"
#include "zvsystem/iterators.h"

#include <cfloat>
#include <charconv>
#include <cstring>
#include <iterator>
#include <list>
#include <locale>
#include <numeric>
#include <sstream>
#include <type_traits>

namespace
{

using namespace ZVTest;
using namespace ZVPlatform;
using namespace ZVSystem;

template <class... Values> std::string Text(Values... values)
{
    zvomemorystream stream;
    (stream << ... << values);
    return stream.text();
}

TEST(StreamText, OfEachKind)
{
    EXPECT_EQ(Text('a', "bc", std::string("d"), std::string_view("e"), zvendl), "abcde\n");
    EXPECT_EQ(Text(-2147483647 - 1, ' ', 4294967295u, ' ', short{-3}, ' ', true),
              "-2147483648 4294967295 -3 1");
    EXPECT_EQ(Text(-5L, ' ', 5UL, ' ', -9223372036854775807LL - 1, ' ', 18446744073709551615ULL),
              "-5 5 -9223372036854775808 18446744073709551615");
    EXPECT_EQ(Text(0.1, ' ', 0.1f, ' ', -0.0, ' ', 1e5, ' ', 123456.0, ' ', 1e-5, ' ', 0.00012),
              "0.1 0.1 -0 1e+05 123456 1e-05 0.00012");
    EXPECT_EQ(Text(inf, -inf, NaN, -NaN, -std::numeric_limits<float>::quiet_NaN()),
              "inf-infnannannan");
}

template <class Number, class Bits> Number FromBits(Bits bits)
{
    Number number = 0;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

/// As the standard library says, by another algorithm; where that can't, at least it reads back.
template <class Number> void IsShortest(Number number)
{
    const std::string text = Text(number);
#ifdef __cpp_lib_to_chars
    char standard[64];
    const std::string expected(standard, std::to_chars(standard, standard + 64, number).ptr);
    ASSERT_EQ(text, expected);
#else
    ASSERT_EQ(static_cast<Number>(std::stold(text)), number);
#endif
}

TEST(StreamText, IsTheShortestThatReadsBack)
{
    std::mt19937_64 random(1);
    // Around each power of two, where the neighbours' distance changes, and of ten, where digits
    // end.
    for (int exponent = -1075; exponent < 1024; ++exponent)
        for (const double power : {std::ldexp(1.0, exponent), std::pow(10.0, exponent * 0.3 + 0.5),
                                   std::strtod(("1e" + std::to_string(exponent / 3)).c_str(), {})})
            for (const double number : {power, std::nextafter(power, 0.0),
                                        std::nextafter(power, inf), std::round(power * 1e6) / 1e6})
                if (number < inf) {
                    IsShortest(-number);
                    IsShortest(static_cast<float>(std::min<double>(number, FLT_MAX)));
                }
    for (int i = 0; i < 300000; ++i) {
        const uint64_t bits = random();
        if (const double number = FromBits<double>(bits); std::isfinite(number))
            IsShortest(number);
        if (const float number = FromBits<float>(static_cast<uint32_t>(bits));
            std::isfinite(number))
            IsShortest(number);
        IsShortest(static_cast<double>(bits >> bits % 64));      // integers, also above 2^53
        IsShortest(static_cast<double>(bits % 1000000) / 1000);  // few decimals
    }
}

/// A decimal comma and groups of three.
struct Commas : std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(StreamText, HasNoLocale)
{
    const std::locale former = std::locale::global({std::locale::classic(), new Commas});
    std::ostringstream standard;
    zvostdstream stream(standard);
    stream << 1234567.5 << ' ' << 1234567;
    std::locale::global(former);
    EXPECT_EQ(standard.str(), "1234567.5 1234567");
}

TEST(Streams, TellHowMuchWent)
{
    const unsigned char bytes[] = {1, 2, 3, 4, 5};
    unsigned char read[5] = {};
    zvimemorystream memory(bytes, 5);
    EXPECT_EQ(memory.read(read, 3), 3u);
    EXPECT_EQ(memory.available(), 2u);
    EXPECT_EQ(memory.read(read + 3, 9), 2u);
    EXPECT_EQ(memory.read(read, 9), 0u);
    EXPECT_TRUE(std::equal(bytes, bytes + 5, read));
    zvimemorystream nothing(nullptr, 0);
    EXPECT_EQ(nothing.read(read, 1), 0u);

    std::istringstream source("\1\2\3");
    zvistdstream input(source);
    EXPECT_EQ(input.read(read, 2), 2u);
    EXPECT_EQ(input.read(read, 2), 1u);
    EXPECT_EQ(input.read(read, 2), 0u);
    EXPECT_FALSE(source);

    // A buffer that has room for three characters.
    struct : std::streambuf
    {
        char room[3] = {};
        void Use() { setp(room, room + 3); }
    } narrow;
    narrow.Use();
    std::ostream target(&narrow);
    zvostdstream output(target);
    EXPECT_EQ(output.write(bytes, 2), 2u);
    EXPECT_TRUE(target && output.good());
    output << "345"
           << "6";
    EXPECT_FALSE(target || output.good());
    EXPECT_EQ(output.write(bytes, 1), 0u);
    EXPECT_EQ(narrow.room[2], '3');
    std::ostream none(nullptr);
    EXPECT_EQ(zvostdstream(none).write(bytes, 1), 0u);
}

TEST(Streams, WriteNothingAfterAFailure)
{
    struct : zvostream
    {
        size_t write(const unsigned char*, size_t) override { return ++calls, 0; }
        int calls = 0;
    } stream;
    stream << 1.5 << "2" << 'c' << zvendl;
    EXPECT_EQ(stream.calls, 1);
}

TEST(Streams, AreFlushedWithThoseThatAre)
{
    struct : std::stringbuf
    {
        int flushed = 0;
        int sync() override { return ++flushed, 0; }
    } buffer;
    std::ostream target(&buffer);
    target << std::unitbuf;
    zvostdstream stream(target);
    stream << 1.5;
    EXPECT_EQ(buffer.flushed, 1);
}

TEST(Iterators, GoWhereInputIteratorsGo)
{
    static_assert(std::is_nothrow_move_constructible_v<ZVIter<int>> &&
                  std::is_nothrow_move_assignable_v<ZVIter<int>>);
    std::list<int> list = {3, 1, 2};
    auto adaptor = MakeAdaptorIter(list.begin(), list.end());
    auto cached = MakeCachingIter(std::vector<int>{3, 1, 2});
    EXPECT_TRUE(std::equal(adaptor.begin(), adaptor.end(), cached.begin(), cached.end()));
    EXPECT_EQ(std::accumulate(cached.begin(), cached.end(), 0), 6);
    EXPECT_EQ(*std::find(cached.begin(), cached.end(), 1), 1);
    EXPECT_EQ(std::vector<int>(cached.begin(), cached.end()), (std::vector<int>{3, 1, 2}));
    for (int& element : adaptor)
        element *= 10;
    EXPECT_EQ(list, (std::list<int>{30, 10, 20}));
    EXPECT_EQ(MakeAdaptorIter(list.cbegin(), list.cend()).operator->(), &list.front());
}

template <class Iter> void StepsBothWays(Iter iter)  // over 1, 2
{
    EXPECT_EQ(*--iter, 1);  // stays at the first
    EXPECT_EQ(*iter++, 1);
    Iter copy = iter;
    EXPECT_TRUE(copy == iter);
    ++iter;
    EXPECT_TRUE(iter.AtEnd() && iter == iter.end() && copy != iter && !copy.AtEnd());
    ++iter;  // stays at the end
    EXPECT_EQ(*--iter, 2);
    EXPECT_EQ(*iter--, 2);
    EXPECT_EQ(*iter, 1);
    EXPECT_EQ(*copy, 2);  // a copy steps by itself
    const Iter moved = std::move(iter);
    EXPECT_EQ(*moved, 1);
    EXPECT_TRUE(iter.AtEnd());  // NOLINT(bugprone-use-after-move): is what is promised
    EXPECT_TRUE(++iter == Iter() && --iter == Iter());
}

TEST(Iterators, StepBothWays)
{
    std::vector<int> elements = {1, 2};
    StepsBothWays(MakeAdaptorIter(elements.begin(), elements.end()));
    StepsBothWays(MakeCachingIter(elements));
    EXPECT_TRUE(MakeCachingIter(std::vector<int>()).AtEnd());
}

TEST(Iterators, OwnWhatTheyIterateOver)
{
    ZVIter<const std::string> iter;
    {
        std::vector<std::string> elements = {"a string too long to be held without memory"};
        auto made = MakeCachingIter(elements);
        elements[0] = "changed";
        iter = made;
    }
    EXPECT_EQ(iter->substr(0, 8), "a string");
}

}  // namespace
