// What the sample writes to a file is what the page shows.

#include <algorithm>
#include <fstream>
#include <sstream>
#include <zvmath/datapoints.h>
#include <zvplatform/streams.h>

int main()
{
    {
#include "datapoints.inc"
        if (longest != 2.01)
            return 1;
    }
    std::ostringstream written;
    written << std::ifstream("pendulum.dat").rdbuf();
    return written.str() == "# length, period\n0.25\t1.01\t0\t0.02\n1\t2.01\t0\t0.02\n" ? 0 : 1;
}
