// Many threads convert while others load, swap and clear rule sets: each result is that of one
// thread. Meant for ThreadSanitizer (preset "tsan"); without it the results are compared all the
// same.
//
// Usage: adexp_threads_test FOLDER...   with messages in the folders

#include "adexp.hpp"
#include "support/hostilemessages.h"

#include <QtGlobal>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int Converters = 8;
constexpr int Rounds = 150;
constexpr int Loads = 6;

std::vector<std::string> messages;

void fail(const char* text)
{
    std::fprintf(stderr, "%s\n", text);
    std::_Exit(EXIT_FAILURE);
}

void readMessages(const char* folder)
{
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file())
            continue;
        std::ifstream file(entry.path(), std::ios::binary);
        messages.emplace_back(std::istreambuf_iterator<char>(file),
                              std::istreambuf_iterator<char>());
    }
}

// A small rule set in the working folder, whose name is the default one.
void writeSmallRules()
{
    std::ofstream("adexp.ini") << "[rules]\nsimpleTermsFile=simple.xml\nsubFieldsFile=sub.xml\n"
                                  "primaryFieldsFile=primary.xml\nmsgRulesFile=rules.xml\n";
    std::ofstream("simple.xml") << "<t><simpleTerm name='N'><term>1{DIGIT}</term></simpleTerm></t>";
    std::ofstream("sub.xml") << "<t><SubField name='PT'><term>N</term></SubField></t>";
    std::ofstream("primary.xml")
        << "<t><PrimaryField name='ARCID'><term>1{ALPHA}</term></PrimaryField>"
           "<PrimaryField name='RTEPTS'><term>{PT}</term></PrimaryField></t>";
    std::ofstream("rules.xml")
        << "<r><msgRule title='IFPL'><fields>[ARCID] [RTEPTS]</fields></msgRule>"
           "<msgRule title='BAD'><fields>[NOBODY]</fields></msgRule></r>";
}

// All of a result in one text.
std::string textOf(const adexp::Result& result)
{
    std::string text = std::to_string(static_cast<int>(result.status())) + '\n';
    text += result.document();
    for (const adexp::Field field : result.fields()) {
        text += field.name();
        text += field.data();
        text += std::to_string(field.place().byte_begin) + ' ' + std::to_string(field.place().line);
    }
    for (const adexp::Finding finding : result.findings()) {
        text += finding.codeName();
        text += finding.text();
        text += finding.path();
        text += std::to_string(finding.place().byte_end) + '\n';
    }
    return text;
}

std::string convertWithDefault(const std::string& message)
{
    unsigned int length = 0;
    const char* const document =
        convert_from_adexp(message.data(), static_cast<unsigned int>(message.size()), &length);
    std::string copy(document ? document : "", length);
    free_adexp(document);
    return copy;
}

// What one thread gives.
struct Expected
{
    explicit Expected(const adexp::RuleSet& rules)
    {
        for (const std::string& message : messages) {
            const adexp::Result result = rules.convert(message);
            results.push_back(textOf(result));
            documents.emplace_back(result.document());
        }
    }

    std::vector<std::string> results;
    std::vector<std::string> documents;
};

// The rule set that is in use, and is swapped meanwhile.
class Current
{
public:
    explicit Current(const adexp::RuleSet& rules) : m_rules(rules) {}

    std::pair<adexp::RuleSet, int> get() const
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        return {m_rules, m_number};
    }
    void set(adexp::RuleSet rules, int number)
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        m_rules = std::move(rules);
        m_number = number;
    }

private:
    mutable std::mutex m_lock;
    adexp::RuleSet m_rules;
    int m_number = 0;
};

std::string_view settingsOf(int number)
{
    return number == 0 ? adexp::BuiltIn : std::string_view("adexp.ini");
}

void loadAndSwap(Current* current, std::atomic<bool>* isOver)
{
    for (int i = 1; i <= Loads; ++i) {
        const int number = i % 2;
        current->set(adexp::RuleSet(settingsOf(number)), number);
        if (init_adexp(settingsOf(number).data(), static_cast<int>(settingsOf(number).size())) != 0)
            fail("the default rule set is not loaded");
        if (i % 3 == 0)
            clear_adexp();
    }
    *isOver = true;
}

void convert(unsigned seed, const Current& current, const std::vector<Expected>& expected,
             const std::atomic<bool>& isOver)
{
    std::mt19937 random(seed);
    adexp::Result result;
    for (int i = 0; i < Rounds || !isOver; ++i) {
        const std::size_t message = random() % messages.size();
        if (random() % 2 == 0) {
            const auto [rules, number] = current.get();
            rules.convert(messages[message], &result);
            if (textOf(result) != expected[static_cast<std::size_t>(number)].results[message])
                fail("a result is not that of one thread");
        } else {
            const std::string document = convertWithDefault(messages[message]);
            if (document != expected[0].documents[message] &&
                document != expected[1].documents[message])
                fail("a document is not that of one thread");
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i)
        readMessages(argv[i]);
    for (const HostileShape& shape : HostileShapes)
        messages.push_back(hostileMessage(shape, 60));
    const auto folder = std::filesystem::temp_directory_path() /
                        ("adexp-threads-" + std::to_string(std::random_device()()));
    std::filesystem::create_directory(folder);
    std::filesystem::current_path(folder);
    writeSmallRules();
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});

    const adexp::RuleSet builtIn(adexp::BuiltIn);
    const std::vector<Expected> expected{Expected(builtIn), Expected(adexp::RuleSet("adexp.ini"))};
    Current current(builtIn);
    std::atomic<bool> isOver{false};
    std::vector<std::thread> threads;
    threads.emplace_back([&] { loadAndSwap(&current, &isOver); });
    for (unsigned seed = 0; seed < Converters; ++seed)
        threads.emplace_back([&, seed] { convert(seed, current, expected, isOver); });
    for (std::thread& thread : threads)
        thread.join();
    clear_adexp();
    std::filesystem::current_path("/");
    std::filesystem::remove_all(folder);
    return 0;
}
