// Replays inputs through a harness without libFuzzer: every file of the folders given (and
// every file given), in name order. A fault in the harness ends the run as it would the fuzzer.
#include "fuzzSupport.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* argc, char*** argv);

namespace {

namespace fs = std::filesystem;

// Absolute paths, taken before the harness moves into its device root.
std::vector<fs::path> inputsOf(int argc, char** argv)
{
    std::vector<fs::path> inputs;
    for (int i = 1; i < argc; ++i) {
        const fs::path arg = fs::absolute(argv[i]);
        if (!fs::is_directory(arg)) {
            inputs.push_back(arg);
            continue;
        }
        std::vector<fs::path> files;
        for (const fs::directory_entry& entry : fs::directory_iterator(arg)) {
            if (entry.is_regular_file())
                files.push_back(entry.path());
        }
        std::sort(files.begin(), files.end());
        inputs.insert(inputs.end(), files.begin(), files.end());
    }
    return inputs;
}

std::vector<uint8_t> bytesOf(const fs::path& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        std::fprintf(stderr, "replay: cannot read %s\n", file.c_str());
        std::exit(1);
    }
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in),
                                std::istreambuf_iterator<char>());
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<fs::path> inputs = inputsOf(argc, argv);
    if (inputs.empty()) {
        std::fprintf(stderr, "usage: %s <corpus folder or input>...  (no inputs found)\n", argv[0]);
        return 1;
    }
    if (LLVMFuzzerInitialize)
        LLVMFuzzerInitialize(&argc, &argv);
    for (const fs::path& input : inputs) {
        const std::vector<uint8_t> bytes = bytesOf(input);
        std::printf("replay: %s (%zu bytes)\n", input.c_str(), bytes.size());
        std::fflush(stdout);
        static const uint8_t none = 0;
        LLVMFuzzerTestOneInput(bytes.empty() ? &none : bytes.data(), bytes.size());
    }
    std::printf("replay: %zu inputs, no fault\n", inputs.size());
    return 0;
}
