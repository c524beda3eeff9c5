// Stand-alone driver for the fuzz targets in builds without libFuzzer (gcc,
// the arm64 cross build): runs LLVMFuzzerTestOneInput once per file, for
// files and directories named on the command line, and reports the slowest
// input. A failing input aborts, as it would under libFuzzer.
//
//   fuzz_<target>_replay [--repeat N] PATH...
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace {

std::vector<std::string> Expand(const std::string &path) {
    std::vector<std::string> files;
    if (std::filesystem::is_directory(path)) {
        for (const auto &entry : std::filesystem::recursive_directory_iterator(path)) {
            if (entry.is_regular_file()) files.push_back(entry.path().string());
        }
        std::sort(files.begin(), files.end());
    } else {
        files.push_back(path);
    }
    return files;
}

}  // namespace

int main(int argc, char **argv) {
    LLVMFuzzerInitialize(&argc, &argv);
    int repeat = 1;
    std::vector<std::string> files;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--repeat") == 0 && i + 1 < argc) {
            repeat = std::max(1, std::atoi(argv[++i]));
            continue;
        }
        for (auto &f : Expand(argv[i])) files.push_back(std::move(f));
    }
    if (files.empty()) {
        std::fprintf(stderr, "usage: %s [--repeat N] FILE|DIR...\n", argv[0]);
        return 2;
    }

    double slowestMs = 0;
    std::string slowest;
    std::size_t largest = 0;
    for (const std::string &file : files) {
        std::ifstream in(file, std::ios::binary);
        std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        largest = std::max(largest, bytes.size());
        // Best of `repeat` runs: the time of the input, not of the machine's load.
        double best = 1e30;
        for (int r = 0; r < repeat; ++r) {
            const auto start = std::chrono::steady_clock::now();
            LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
            const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
            best = std::min(best, took.count());
        }
        if (best > slowestMs) {
            slowestMs = best;
            slowest = file;
        }
    }
    std::printf("replayed %zu inputs (largest %zu bytes); slowest %.3f ms: %s\n", files.size(), largest,
                slowestMs, slowest.c_str());
    return 0;
}
