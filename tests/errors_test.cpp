#include "zvsystem/errors.h"

#include "allocations.h"
#include "check.h"

#include <gtest/gtest.h>

namespace
{

using namespace ZVTest;
using ZVSystem::ZVThrow;

TEST(ErrorHandler, WritesToStandardErrorWithoutASink)
{
    testing::internal::CaptureStderr();
    ZVThrow.Warning("%d of %s", 3, "five");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Warning: 3 of five\n");
}

TEST(ErrorHandler, SinksNest)
{
    testing::internal::CaptureStderr();
    {
        const Warnings outer;
        {
            const Warnings inner;
            ZVThrow.Warning("to the inner one, 100%%");
            EXPECT_EQ(inner.messages, std::vector<std::string>{"to the inner one, 100%"});
        }
        EXPECT_TRUE(outer.messages.empty());
        ZVThrow.Warning("to the outer one");
        EXPECT_EQ(outer.messages, std::vector<std::string>{"to the outer one"});
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    ZVSystem::ZVWarningSink former = ZVThrow.SetWarningSink({});
    EXPECT_EQ(former.write, nullptr);
}

TEST(ErrorHandler, MessagesOfAnyLength)
{
    for (const int length : {0, 1, 510, 511, 512, 513, 100000}) {
        const Warnings warnings;
        const std::string message(static_cast<size_t>(length), 'x');
        ZVThrow.Warning("%s", message.c_str());
        EXPECT_EQ(warnings.messages, std::vector<std::string>{message});
    }
}

TEST(ErrorHandler, CutsALongMessageShortWithoutMemory)
{
    const Warnings warnings;
    const std::string message(1000, 'x');
    {
        const FailingAllocation failing(0);
        ZVThrow.Warning("%s", message.c_str());
    }
    EXPECT_EQ(warnings.messages, std::vector<std::string>{message.substr(0, 511)});
}

TEST(ErrorHandler, ASinkMayWarnAndChangeTheSink)
{
    static std::vector<std::string> heard;
    heard.clear();
    const ZVSystem::ZVWarningSink former =
        ZVThrow.SetWarningSink({[](void*, const char* message) {
                                    heard.push_back(message);
                                    if (heard.size() == 1)
                                        ZVThrow.Warning("second");
                                    ZVThrow.SetWarningSink({});
                                },
                                nullptr});
    ZVThrow.Warning("first");
    EXPECT_EQ(ZVThrow.SetWarningSink(former).write, nullptr);
    EXPECT_EQ(heard, (std::vector<std::string>{"first", "second"}));
}

}  // namespace
