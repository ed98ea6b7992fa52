// Messages made to cost as much as they can: what a byte costs is to stay the same at a hundred
// times the size. The lines that a message makes the library report count like the document.

#include "support/converter.h"
#include "support/element.h"
#include "support/hostilemessages.h"
#include "support/messages.h"
#include "support/timing.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

struct Message
{
    std::string text;
    std::size_t repeated;
};

Message makeMessage(const HostileShape& shape, std::size_t bytes)
{
    const std::size_t count = bytes / std::strlen(shape.repeated);
    return {hostileMessage(shape, count), count};
}

// Makes sure that the shape provokes what it is made for, and that the document is right as far as
// that can be said for all shapes.
void check(const HostileShape& shape, const Message& message)
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
    for (const HostileShape& shape : HostileShapes) {
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
