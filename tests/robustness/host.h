#ifndef HOST_H
#define HOST_H

// The library as a host calls it.

#include "adexp.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

const std::string BuiltInRuleSet = ":/adexp/adexp.ini";

inline int init(const std::string& settings = BuiltInRuleSet)
{
    return init_adexp(settings.data(), static_cast<int>(settings.size()));
}

// What a conversion gives; "null" if that is no document.
inline std::string convert(const std::string& message)
{
    unsigned int length = 0;
    const char* const document =
        convert_from_adexp(message.data(), static_cast<unsigned int>(message.size()), &length);
    const std::string result = document ? std::string(document, length) : "null";
    free_adexp(document);
    return result;
}

// The messages in a folder and its sub-folders.
inline std::vector<std::string> readMessages(const char* folder)
{
    std::vector<std::string> messages;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file())
            continue;
        std::ifstream file(entry.path(), std::ios::binary);
        messages.emplace_back(std::istreambuf_iterator<char>(file),
                              std::istreambuf_iterator<char>());
    }
    return messages;
}

#endif
