// The command. The input is its arguments, a line for each; behind an empty line follows the
// message that is in plan.adexp, in messages/flight.adexp and in standard input.

#include "checks/privatefolder.h"
#include "checks/require.h"
#include "target.h"

#include <libxml/parser.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

/// main() of the command.
int commandMain(int argc, char** argv);

namespace {

using Files = std::map<std::string, std::string>;

struct CommandLine
{
    std::vector<std::string> arguments;
    std::string message;
};

CommandLine cut(std::string_view input)
{
    CommandLine line;
    while (!input.empty()) {
        const std::size_t end = std::min(input.find('\n'), input.size());
        const std::string_view argument = input.substr(0, end);
        input.remove_prefix(std::min(end + 1, input.size()));
        if (argument.empty()) {
            line.message = input;
            break;
        }
        line.arguments.emplace_back(argument);
    }
    return line;
}

std::string without(std::string text, std::string_view piece)
{
    for (std::size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at))
        text.erase(at, piece.size());
    return text;
}

// Only what is in the private folder may be read and written: no slash but that of the two folders
// in it and of files that are compiled in, and no way up. An argument never holds a null character.
bool isHarmless(const std::string& argument)
{
    const std::string rest = without(without(without(argument, ":/adexp/"), "out/"), "messages/");
    return rest.find('/') == std::string::npos && argument.find("..") == std::string::npos &&
           argument.find('\0') == std::string::npos;
}

void fillFolder(const std::string& message)
{
    PrivateFolder::clear();
    std::filesystem::create_directory("out");
    std::filesystem::create_directory("messages");
    PrivateFolder::write("plan.adexp", message);
    PrivateFolder::write("messages/flight.adexp", message);
    PrivateFolder::write("adexp.ini", "[rules]\nsimpleTermsFile=simple.xml\nsubFieldsFile=sub.xml\n"
                                      "primaryFieldsFile=primary.xml\nmsgRulesFile=rules.xml\n");
    PrivateFolder::write("broken.ini", "[rules]\nsimpleTermsFile=plan.adexp\n");
    PrivateFolder::write("simple.xml",
                         "<t><simpleTerm name='N'><term>3{DIGIT}3</term></simpleTerm></t>");
    PrivateFolder::write("sub.xml",
                         "<t><SubField name='PTID'><term>{ALPHANUM}5</term></SubField></t>");
    PrivateFolder::write("primary.xml",
                         "<t><PrimaryField name='ARCID'><term>N</term></PrimaryField>"
                         "<PrimaryField name='RTEPTS'><term>{[PTID]}</term></PrimaryField></t>");
    PrivateFolder::write("rules.xml",
                         "<t><msgRule title='PLAN'><fields>ARCID [RTEPTS]</fields></msgRule></t>");
}

// What is written through one of the standard streams of the process while an object lives.
class StreamCapture
{
public:
    explicit StreamCapture(std::FILE** stream) : m_stream(stream), m_before(*stream)
    {
        *stream = open_memstream(&m_bytes, &m_size);
        require(*stream != nullptr, "there is memory for what the command writes");
    }
    ~StreamCapture()
    {
        std::fclose(*m_stream);
        std::free(m_bytes);
        *m_stream = m_before;
    }
    StreamCapture(const StreamCapture&) = delete;
    StreamCapture& operator=(const StreamCapture&) = delete;

    std::string text() const
    {
        std::fflush(*m_stream);
        return {m_bytes, m_size};
    }

private:
    std::FILE** m_stream;
    std::FILE* m_before;
    char* m_bytes = nullptr;
    std::size_t m_size = 0;
};

struct Outcome
{
    int status = 0;
    std::string output;
    std::string errors;
    Files files;

    bool operator==(const Outcome& other) const
    {
        return status == other.status && output == other.output && errors == other.errors &&
               files == other.files;
    }
};

// The streams of the C library can be exchanged. The process keeps its own: the sanitizers and the
// fuzzer write to them.
Outcome run(const CommandLine& line)
{
    fillFolder(line.message);
    std::vector<std::string> words{"adexp"};
    words.insert(words.end(), line.arguments.begin(), line.arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);

    std::FILE* const standardInput = stdin;
    stdin = std::fopen("plan.adexp", "rb");
    Outcome outcome;
    {
        const StreamCapture output(&stdout);
        const StreamCapture errors(&stderr);
        outcome.status = commandMain(static_cast<int>(words.size()), argv.data());
        outcome.output = output.text();
        outcome.errors = errors.text();
    }
    std::fclose(stdin);
    stdin = standardInput;
    outcome.files = PrivateFolder::files();
    return outcome;
}

bool isDocument(const std::string& text)
{
    const xmlDocPtr document =
        xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, "UTF-8",
                      XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
    xmlFreeDoc(document);
    return document != nullptr;
}

// An HTML page, which is no XML.
bool isPage(const std::string& text)
{
    constexpr std::string_view begin = "<!DOCTYPE html>";
    constexpr std::string_view end = "</html>\n";
    return text.size() > begin.size() + end.size() && text.compare(0, begin.size(), begin) == 0 &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

void check(const Outcome& outcome, const Files& before)
{
    enum { Success = 0, WithDiagnostics = 1, NotDone = 2, Usage = 64 };
    const auto& [status, output, errors, files] = outcome;
    require(status == Success || status == WithDiagnostics || status == NotDone || status == Usage,
            "the status is one of the table");
    require(status != Success || errors.empty(), "success is silent", errors);
    require(status != NotDone || !errors.empty(), "a failure is explained");
    if (status == Usage) {
        require(output.empty() && files == before, "wrong arguments do nothing");
        require(std::count(errors.begin(), errors.end(), '\n') == 1,
                "wrong arguments are explained in one line", errors);
    }
    require(errors.empty() || errors.back() == '\n', "an error is a line", errors);
    require(std::none_of(errors.begin(), errors.end(),
                         [](char c) { return (c >= 0 && c < ' ' && c != '\n') || c == 0x7f; }),
            "no control character reaches the terminal", errors);
    for (const auto& [name, content] : before)
        require(files.count(name) != 0, "no file is taken away", name);
    for (const auto& [name, content] : files) {
        const auto old = before.find(name);
        if (old != before.end() && old->second == content)
            continue;
        require(isDocument(content) || isPage(content), "what was written is complete", name);
    }
}

} // namespace

void Target::setUp()
{
    PrivateFolder::enter();
}

void Target::tryInput(std::string_view input, bool thorough)
{
    CommandLine line = cut(input);
    const auto namesSettings = [](const std::string& argument) {
        return argument.find(".ini") != std::string::npos;
    };
    // Loading the built-in rule set takes a hundred times as long as all else.
    if (!thorough && std::none_of(line.arguments.begin(), line.arguments.end(), namesSettings))
        line.arguments.emplace_back("--settings=adexp.ini");
    if (!std::all_of(line.arguments.begin(), line.arguments.end(), isHarmless))
        return;
    fillFolder(line.message);
    const Files before = PrivateFolder::files();
    const Outcome outcome = run(line);
    check(outcome, before);
    if (thorough)
        require(run(line) == outcome, "the same arguments do the same again");
}
