// Messages made to cost as much as they can: what a byte costs is to stay the same at a hundred
// times the size. The lines that a message makes the library report count like the document.

#include "support/converter.h"
#include "support/element.h"
#include "support/messages.h"
#include "support/timing.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

// A message of one thing many times over.
struct Shape
{
    const char* name;
    const char* before;
    const char* repeated;
    const char* behind;
    std::size_t linesForEach; // what is reported for each of the repeated things
    std::size_t linesForAll;  // what is reported once, of all of them together
};

constexpr Shape Shapes[] = {
    {"blocks_never_ended", "-TITLE IFPL", " -BEGIN X", "", 1, 0},
    {"unknown_blocks", "-TITLE IFPL", " -BEGIN A -ARCID B -END A", "", 1, 0},
    {"ends_without_begin", "-TITLE IFPL", " -END X", "", 2, 0},
    {"words_in_a_field", "-TITLE IFPL -RMK", " A", "", 0, 0},
    {"words_before_title", "", "A ", "-TITLE IFPL", 1, 0},
    {"lone_hyphens", "-TITLE IFPL", " -", " - ARCID AAA1", 1, 0},
    {"unknown_fields", "-TITLE IFPL", " -XYZZY A", "", 1, 0},
    {"list_items", "-TITLE IFPL -BEGIN RTEPTS", " -PT -PTID BEPAN -FL F182", " -END RTEPTS", 0, 0},
    {"compounds_cut_short", "-TITLE IFPL", " -ORIGIN -NETWORKTYPE AFTN -ADEP EIDW", "", 0, 0},
    {"text_to_escape", "-TITLE IFPL -RMK ", "<&]]>", "", 0, 1},
    {"one_long_word", "-TITLE IFPL -RMK ", "A", "", 0, 0},
};

struct Message
{
    std::string text;
    std::size_t repeated;
};

Message makeMessage(const Shape& shape, std::size_t bytes)
{
    Message message{shape.before, 0};
    for (; message.text.size() < bytes; ++message.repeated)
        message.text += shape.repeated;
    message.text += shape.behind;
    return message;
}

// Makes sure that the shape provokes what it is made for, and that the document is right as far as
// that can be said for all shapes.
void check(const Shape& shape, const Message& message)
{
    const std::size_t before = bench::diagnosticLines();
    const bench::Utf8Element document = bench::readDocument(bench::convertOrExit(message.text));
    const std::size_t lines = bench::diagnosticLines() - before;
    if (lines != message.repeated * shape.linesForEach + shape.linesForAll) {
        std::fprintf(stderr, "%s: %zu lines were reported\n", shape.name, lines);
        std::exit(EXIT_FAILURE);
    }
    if (document.children.size() != 2 || document.children.back().text != message.text) {
        std::fprintf(stderr, "%s: the document does not hold the message\n", shape.name);
        std::exit(EXIT_FAILURE);
    }
}

// All that the message makes the library read and write.
std::size_t bytesFor(const std::string& message)
{
    const std::size_t before = bench::diagnosticBytes();
    const std::size_t documentBytes = bench::convertOrExit(message).size();
    return message.size() + documentBytes + bench::diagnosticBytes() - before;
}

} // namespace

int main(int argc, char** argv)
{
    constexpr std::pair<const char*, std::size_t> Sizes[] = {{"20KB", 20'000}, {"2MB", 2'000'000}};

    benchmark::Initialize(&argc, argv);
    bench::useEmbeddedRules();
    for (const Shape& shape : Shapes) {
        check(shape, makeMessage(shape, 20'000));
        for (const auto& [size, bytes] : Sizes) {
            const Message message = makeMessage(shape, bytes);
            const std::string name = std::string("hostile/") + shape.name + "/" + size;
            benchmark::RegisterBenchmark(name.c_str(), bench::timePerByte, message.text,
                                         bytesFor(message.text));
        }
    }
    benchmark::RunSpecifiedBenchmarks();
    clear_adexp();
}
