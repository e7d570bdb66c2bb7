// Gives each file of a folder to a fuzz target, without the fuzzer: any compiler builds it.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* input, size_t size);

int main(int argc, char** argv)
{
    int files = 0;
    if (argc == 2)
        for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
            std::printf("%s\n", entry.path().c_str());
            std::ifstream file(entry.path(), std::ios::binary);
            const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char*>(bytes.data()),
                                   bytes.size());
            ++files;
        }
    return files > 0 ? 0 : 2;
}
