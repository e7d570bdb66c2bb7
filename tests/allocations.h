#pragma once

namespace ZVTest
{

/// While it lives, `operator new` fails once, after `successes` successes. Every test program is
/// linked with the operators that do this.
class FailingAllocation
{
public:
    explicit FailingAllocation(int successes);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
};

}  // namespace ZVTest
