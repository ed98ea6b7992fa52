// A host that calls the library from a thread of its own, with little stack.

#include "support/diagnosticcapture.h"
#include "support/smallstack.h"

#include "adexp.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

const std::string Settings = ":/adexp/adexp.ini";

std::vector<std::string> samples()
{
    std::vector<std::string> messages;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(ADEXP_SOURCE_DIR "/samples")) {
        if (!entry.is_regular_file())
            continue;
        std::ifstream file(entry.path(), std::ios::binary);
        messages.emplace_back(std::istreambuf_iterator<char>(file),
                              std::istreambuf_iterator<char>());
    }
    return messages;
}

int load()
{
    return init_adexp(Settings.data(), static_cast<int>(Settings.size()));
}

std::string convert(const std::string& message)
{
    unsigned int length = 0;
    const char* const document =
        convert_from_adexp(message.data(), static_cast<unsigned int>(message.size()), &length);
    const std::string result = document ? std::string(document, length) : "null";
    free_adexp(document);
    return result;
}

std::vector<std::string> convertAll(const std::vector<std::string>& messages)
{
    std::vector<std::string> documents;
    documents.reserve(messages.size());
    for (const std::string& message : messages)
        documents.push_back(convert(message));
    return documents;
}

TEST(Threads, LoadingAndConvertingNeedLittleStack)
{
    const DiagnosticCapture diagnostics;
    const std::vector<std::string> messages = samples();
    ASSERT_GT(messages.size(), 50U);
    std::vector<std::string> documents;
    runWithSmallStack([&] {
        EXPECT_EQ(load(), 0);
        documents = convertAll(messages);
        clear_adexp();
    });
    ASSERT_EQ(load(), 0);
    EXPECT_EQ(documents, convertAll(messages));
    clear_adexp();
}

// One call at a time, but each may come from another thread.
TEST(Threads, EachCallMayComeFromAnotherThread)
{
    const DiagnosticCapture diagnostics;
    const std::vector<std::string> messages = samples();
    runWithSmallStack([] { EXPECT_EQ(load(), 0); });
    const std::vector<std::string> documents = convertAll(messages);
    for (size_t i = 0; i < messages.size(); ++i)
        runWithSmallStack([&] { EXPECT_EQ(convert(messages[i]), documents[i]); });
    runWithSmallStack(clear_adexp);
    runWithSmallStack([] { EXPECT_EQ(load(), 0); });
    EXPECT_EQ(convertAll(messages), documents);
    clear_adexp();
}

} // namespace
