// Runs a target over the files of its corpus, in the order of their names: replay DIRECTORY
//
// It fails when there is none: a corpus that was moved away must not look like one that passed.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz_target.h"

int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s DIRECTORY\n", argv[0]);
        return 2;
    }
    std::error_code failed;
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(argv[1], failed)) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    for (const fs::path& file : files) {
        std::printf("%s\n", file.filename().c_str());
        std::fflush(stdout);
        std::ifstream stream(file, std::ios::binary);
        // As long as the input, so that a sanitizer sees a step beyond it.
        const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(stream), {}};
        if (!stream.is_open() || stream.bad()) {
            std::fprintf(stderr, "cannot read %s\n", file.c_str());
            return 1;
        }
        (void)LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    std::printf("%zu inputs\n", files.size());
    return files.empty() ? 1 : 0;
}
