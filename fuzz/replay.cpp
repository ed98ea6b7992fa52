// A fuzz target as a test: tries every file of the folders that are its arguments, and of the
// folders in them. Needs no fuzzer, and so runs in every build.

#include "target.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> filesIn(const char* folder)
{
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            files.push_back(fs::absolute(entry.path()));
    std::sort(files.begin(), files.end());
    return files;
}

std::string contentOf(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<fs::path> files;
    for (int i = 1; i < argc; ++i) {
        const std::vector<fs::path> more = filesIn(argv[i]);
        files.insert(files.end(), more.begin(), more.end());
    }
    // The target may change the working directory.
    Target::setUp();
    for (const fs::path& file : files) {
        // If the process ends here, this is the last line.
        std::printf("%s\n", file.c_str());
        std::fflush(stdout);
        Target::tryInput(contentOf(file), true);
    }
    std::printf("%zu inputs tried\n", files.size());
    return files.empty() ? 1 : 0;
}
