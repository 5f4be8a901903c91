// How fast .mln files are read: listing the styles of a 50 MB file of 20 000
// styles, and finding and reading its last style in both reading modes (a
// scan of the whole file). Reported in MB/s of file read.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "kxdb.h"
#include "kxstring.h"
#include "mlnfile/MlnBlockWriter.h"
#include "mlnfile/MlnReader.h"

namespace {

constexpr int kStyles = 20000;
constexpr int kElementsPerStyle = 40;

// A .mln file of kStyles styles written by our writer, removed at the end.
class LargeMlnFile {
public:
    LargeMlnFile()
        : path_(std::filesystem::temp_directory_path() / ("bench_mln_read_" + std::to_string(getpid()) + ".mln"))
    {
        KxDbDatabase db;
        KxDbMlineStyle style;
        style.setDescription(std::wstring(412, L'd').c_str());
        style.setFilled(true);
        for (int i = 0; i < kElementsPerStyle; ++i) {
            int index = 0;
            style.addElement(index, 0.125 * i - 2.5, KxCmColor(), db.continuousLinetype());
        }
        std::ofstream out(path_, std::ios::binary);
        for (int i = 0; i < kStyles; ++i) {
            style.setName(styleName(i).c_str());
            for (const std::wstring& line : kdml::mlnStyleBlock(style))
                out << kxutToMultiByte(line) << "\r\n";
        }
    }
    ~LargeMlnFile() { std::filesystem::remove(path_); }
    LargeMlnFile(const LargeMlnFile&) = delete;
    LargeMlnFile& operator=(const LargeMlnFile&) = delete;

    static std::wstring styleName(int i) { return L"STYLE_" + std::to_wstring(i); }
    std::wstring path() const { return path_.wstring(); }
    double megabytes() const { return static_cast<double>(std::filesystem::file_size(path_)) / 1e6; }

private:
    std::filesystem::path path_;
};

void reportThroughput(benchmark::State& state, const LargeMlnFile& file)
{
    state.SetBytesProcessed(static_cast<std::int64_t>(file.megabytes() * 1e6) * state.iterations());
    state.counters["MB/s"] = benchmark::Counter(file.megabytes(), benchmark::Counter::kIsIterationInvariantRate);
    state.counters["file_MB"] = file.megabytes();
}

void listStyles(benchmark::State& state, const LargeMlnFile& file)
{
    for (auto _ : state) {
        const auto names = kdml::listMlnStyleNames(file.path().c_str());
        if (names.size() != static_cast<std::size_t>(kStyles))
            state.SkipWithError("wrong number of styles");
        benchmark::DoNotOptimize(names.data());
    }
    reportThroughput(state, file);
}

void readLastStyle(benchmark::State& state, const LargeMlnFile& file, kdml::MlnReadMode mode)
{
    KxDbDatabase db;
    const std::wstring last = LargeMlnFile::styleName(kStyles - 1);
    for (auto _ : state) {
        KxDbMlineStyle style;
        if (kdml::readMlnStyle(file.path().c_str(), last.c_str(), &style, &db, mode) != kdml::MlnReadResult::found
            || style.numElements() != kElementsPerStyle)
            state.SkipWithError("last style not read");
    }
    reportThroughput(state, file);
}

}  // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    const LargeMlnFile file;
    benchmark::RegisterBenchmark("BM_ListStyleNames", [&](benchmark::State& s) { listStyles(s, file); })
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("BM_ReadLastStyleStrict",
                                 [&](benchmark::State& s) { readLastStyle(s, file, kdml::MlnReadMode::strict); })
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("BM_ReadLastStyleLenient",
                                 [&](benchmark::State& s) { readLastStyle(s, file, kdml::MlnReadMode::lenient); })
        ->Unit(benchmark::kMillisecond);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
