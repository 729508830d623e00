#include "Fuzz.h"

#include <algorithm>
#include <iterator>
#include <vector>

/// Runs a target with each file of the folder in its argument, the stored inputs. Needs no fuzzer.
int main(int argc, char** argv) {
    fuzz::require(argc == 2, "a corpus is named");
    std::vector<std::filesystem::path> files;
    std::ranges::copy(std::filesystem::directory_iterator(argv[1]), std::back_inserter(files));
    fuzz::require(!files.empty(), "a corpus has files");
    std::ranges::sort(files);
    for (const auto& file : files) {
        std::fprintf(stderr, "%s\n", file.c_str()); // the last one is to blame
        std::ifstream in(file, std::ios::binary);
        // Exactly as large as the input, so that a sanitizer notices a read past its end.
        const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
        fuzz::require(!in.bad() && LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                                          bytes.size()) == 0,
                      "an input can be read");
    }
    return 0;
}
