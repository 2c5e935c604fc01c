#include <fuzz/fuzzing.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

/// Gives every file of the folders and files that it is called with to the target that it is linked with.
int main(int count, char** arguments) {
    namespace fs = std::filesystem;
    std::vector<fs::path> files;
    for (int i = 1; i < count; ++i) {
        const fs::path path = arguments[i];
        if (!fs::is_directory(path)) {
            files.push_back(path);
            continue;
        }
        for (const auto& entry : fs::directory_iterator(path)) {
            if (entry.is_regular_file()) files.push_back(entry.path());
        }
    }
    std::ranges::sort(files);
    for (const fs::path& file : files) {
        std::ifstream stream(file, std::ios::binary);
        if (!stream) {
            std::fprintf(stderr, "%s cannot be read.\n", file.c_str());
            return 2;
        }
        const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
        // Exactly as long as the input, so that a sanitizer sees every step beyond it.
        const auto exact = std::make_unique<std::uint8_t[]>(bytes.size());
        std::ranges::copy(bytes, exact.get());
        // What is said last, should this one stop the program.
        std::fprintf(stderr, "%s\r", file.filename().c_str());
        LLVMFuzzerTestOneInput(exact.get(), bytes.size());
    }
    std::fprintf(stderr, "\n");
    std::printf("%zu inputs\n", files.size());
    return files.empty() ? 2 : 0;
}
