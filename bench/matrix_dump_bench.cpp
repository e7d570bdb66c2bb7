#include "bench.h"
#include "zvmath/matrix_dump.h"

#ifdef ZVMATH_HAVE_FMT
#include <fmt/compile.h>
#include <fmt/format.h>
#endif

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>

namespace
{

using ZVMath::ZVMatrix;

constexpr unsigned int n = 1000;
constexpr size_t recordSize = 12 + 8 * size_t{n} * n;
constexpr size_t bufferSize = recordSize + 1;  // the C library's stream writes a null behind
const ZVPlatform::ZVBinaryDump::ZVImpl<ZVMatrix> impl;

/// n x n, uniform in [-1, 1].
const ZVMatrix& Uniform()
{
    static const ZVMatrix matrix = [] {
        std::mt19937_64 random(1);
        std::uniform_real_distribution<double> uniform(-1.0, 1.0);
        ZVMatrix made(n, n);
        std::vector<double> row(n);
        for (unsigned int r = 0; r < n; ++r) {
            for (double& element : row)
                element = uniform(random);
            made.SetRowData(r, row);
        }
        return made;
    }();
    return matrix;
}

/// The text by `format(to, value)`, which returns the end: gathered as the library does.
template <class Format> std::string Text(const ZVMatrix& matrix, Format format)
{
    std::string text;
    char chunk[4096];
    char* end = chunk;
    unsigned int column = 0;
    for (const double value : matrix.GetData()) {
        end = format(end, value);
        column = (column + 1) % n;
        *end++ = column == 0 ? '\n' : '\t';
        if (chunk + sizeof chunk - end < 40) {
            text.append(chunk, end);
            end = chunk;
        }
    }
    return text.append(chunk, end);
}

bool ReadsBack(const ZVMatrix& matrix, const std::string& text)
{
    const char* at = text.c_str();
    for (const double value : matrix.GetData()) {
        char* end = nullptr;
        if (std::strtod(at, &end) != value || end == at)
            return false;
        at = end;
    }
    return std::strspn(at, "\n") == std::strlen(at);
}

void AddTextBenchmarks()
{
    const std::string workload = "text of 1000 x 1000";
    AddBenchmark(
        workload, "zvmath", Uniform,
        [](const ZVMatrix& matrix) {
            ZVPlatform::zvomemorystream stream;
            ZVPrintMatrix(matrix, stream);
            return stream;
        },
        [](const ZVMatrix& matrix, const auto& stream) {
            return ReadsBack(matrix, stream.text());
        });
    const auto add = [&](const char* column, auto format) {
        AddBenchmark(
            workload, column, Uniform,
            [format](const ZVMatrix& matrix) { return Text(matrix, format); }, ReadsBack);
    };
#ifdef ZVMATH_HAVE_FMT
    peerVersions.push_back("fmt " + std::to_string(FMT_VERSION));
    add("fmt", [](char* to, double value) { return fmt::format_to(to, "{}", value); });
    add("fmt compiled",
        [](char* to, double value) { return fmt::format_to(to, FMT_COMPILE("{}"), value); });
#endif
#ifdef __cpp_lib_to_chars
    add("to_chars", [](char* to, double value) { return std::to_chars(to, to + 32, value).ptr; });
#endif
    add("printf",
        [](char* to, double value) { return to + std::snprintf(to, 40, "%.17g", value); });
}

struct CloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;
using Bytes = std::unique_ptr<unsigned char[]>;

unsigned char* WriteByStdio(unsigned char* to, const ZVMatrix& matrix)
{
    const File file(fmemopen(to, bufferSize, "wb"));
    std::setvbuf(file.get(), nullptr, _IONBF, 0);  // or all would go through a buffer
    const unsigned int counts[] = {n, n, n * n};
    std::fwrite(counts, sizeof counts, 1, file.get());
    std::fwrite(matrix.GetData().data(), sizeof(double), matrix.GetData().size(), file.get());
    return to;
}

template <class Target> void Write(Target&& target, const ZVMatrix& matrix)
{
    unsigned int status = 0, remaining = recordSize;
    impl.Write(target, false, matrix, status, remaining);
}

/// The record of Uniform().
unsigned char* Record()
{
    static const Bytes record = [] {
        Bytes made(new unsigned char[bufferSize]);
        WriteByStdio(made.get(), Uniform());
        return made;
    }();
    return record.get();
}

void AddWritingBenchmarks()
{
    const auto isRecord = [](const ZVMatrix& /*matrix*/, const unsigned char* written) {
        return std::memcmp(written, Record(), recordSize) == 0;
    };
    std::string workload = "record to a new stream";
    AddBenchmark(
        workload, "zvmath", Uniform,
        [](const ZVMatrix& matrix) {
            ZVPlatform::zvomemorystream stream;
            Write(stream, matrix);
            return stream;
        },
        [=](const ZVMatrix& matrix, const auto& stream) {
            return isRecord(matrix, stream.contents().data());
        });
    AddBenchmark(
        workload, "stdio", Uniform,
        [](const ZVMatrix& matrix) {
            Bytes memory(new unsigned char[bufferSize]);
            WriteByStdio(memory.get(), matrix);
            return memory;
        },
        [=](const ZVMatrix& matrix, const Bytes& memory) {
            return isRecord(matrix, memory.get());
        });

    workload = "record to a buffer";
    static const Bytes buffer(new unsigned char[bufferSize]);
    AddBenchmark(
        workload, "zvmath", Uniform,
        [](const ZVMatrix& matrix) {
            Write(buffer.get(), matrix);
            return buffer.get();
        },
        isRecord);
    AddBenchmark(
        workload, "stdio", Uniform,
        [](const ZVMatrix& matrix) { return WriteByStdio(buffer.get(), matrix); }, isRecord);
}

template <class Source> ZVMatrix Read(Source&& source)
{
    ZVMatrix matrix;
    unsigned int status = 0, remaining = recordSize;
    impl.Read(source, false, false, false, 1, matrix, status, remaining);
    return matrix;
}

/// With the stream's own buffer, which large reads pass by.
std::vector<double> ReadByStdio(unsigned char* record)
{
    const File file(fmemopen(record, recordSize, "rb"));
    unsigned int counts[3] = {};
    std::vector<double> elements;
    if (std::fread(counts, sizeof counts, 1, file.get()) == 1) {
        elements.resize(counts[2]);
        elements.resize(std::fread(elements.data(), sizeof(double), counts[2], file.get()));
    }
    return elements;
}

void AddReadingBenchmarks()
{
    const auto record = []() -> unsigned char& { return *Record(); };
    const auto isUniform = [](unsigned char&, const ZVMatrix& matrix) {
        return matrix.GetNumRows() == n && matrix.GetData() == Uniform().GetData();
    };
    for (const char* workload : {"record from a stream", "record from a buffer"})
        AddBenchmark(
            workload, "stdio", record, [](unsigned char& first) { return ReadByStdio(&first); },
            [](unsigned char&, const std::vector<double>& elements) {
                return elements == Uniform().GetData();
            });
    AddBenchmark(
        "record from a stream", "zvmath", record,
        [](unsigned char& first) { return Read(ZVPlatform::zvimemorystream(&first, recordSize)); },
        isUniform);
    AddBenchmark(
        "record from a buffer", "zvmath", record,
        [](unsigned char& first) { return Read(static_cast<const unsigned char*>(&first)); },
        isUniform);
}

}  // namespace

void AddMatrixDumpBenchmarks()
{
    AddTextBenchmarks();
    AddWritingBenchmarks();
    AddReadingBenchmarks();
}
