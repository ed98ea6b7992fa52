#include "privatefolder.h"

#include "require.h"

#include <QDir>
#include <QTemporaryDir>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

void PrivateFolder::enter()
{
    static const QTemporaryDir folder;
    require(folder.isValid() && QDir::setCurrent(folder.path()), "there is a private folder");
}

void PrivateFolder::clear()
{
    for (const fs::directory_entry& entry : fs::directory_iterator("."))
        fs::remove_all(entry.path());
}

void PrivateFolder::write(const std::string& name, std::string_view content)
{
    std::ofstream file(name, std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    file.close();
    require(file.good(), "a file can be written", name);
}

std::map<std::string, std::string> PrivateFolder::files()
{
    std::map<std::string, std::string> result;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(".")) {
        if (!entry.is_regular_file())
            continue;
        std::ifstream file(entry.path(), std::ios::binary);
        result[entry.path().lexically_relative(".").string()] = {
            std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    return result;
}
