// A program that knows only the header of the library. Its arguments name message files; it
// converts them with the built-in rule set and writes the documents to standard output.

#include "adexp.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

namespace {

const std::string Settings = ":/adexp/adexp.ini";

/// Returns whether the file could be read.
bool convertFile(const char* path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return false;
    const std::string message{std::istreambuf_iterator<char>(file), {}};
    unsigned int length = 0;
    const char* const document =
        convert_from_adexp(message.data(), static_cast<unsigned int>(message.size()), &length);
    std::printf("%s: %u\n", path, length);
    if (document)
        std::fwrite(document, 1, length, stdout);
    free_adexp(document);
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    if (init_adexp(Settings.data(), static_cast<int>(Settings.size())) != 0)
        return 1;
    bool allRead = true;
    for (int i = 1; i < argc; ++i)
        allRead = convertFile(argv[i]) && allRead;
    clear_adexp();
    return allRead ? 0 : 1;
}
