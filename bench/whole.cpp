// The whole conversion, from the bytes of the message to the bytes of the document, beside what
// others need to print the same document alone.

#include "peers.h"
#include "support/converter.h"
#include "support/element.h"
#include "support/messages.h"

#include <benchmark/benchmark.h>

#include <QByteArray>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

// Messages that are measured together; one pass over all of them is one turn.
struct Corpus
{
    std::string name;
    std::vector<std::string> messages;
    std::vector<bench::Utf8Element> documents;
    std::vector<bench::Utf16Element> documentsForQt;
    std::vector<bench::ReadyParts> parts;
};

[[noreturn]] void exitDifferent(const char* peer, const std::string& message)
{
    std::fprintf(stderr, "%s prints another document for %s\n", peer, message.c_str());
    std::exit(EXIT_FAILURE);
}

// The peers print what the library printed: all but the straight-line writing, which gives the very
// bytes, are free in the order of attributes and in white space.
void checkPeers(const Corpus& corpus, std::size_t i, const std::string& printed)
{
    const auto check = [&](const char* peer, std::string_view other) {
        if (!sameContent(bench::readDocument(other), corpus.documents[i]))
            exitDifferent(peer, corpus.messages[i]);
    };
    const auto view = [](const QByteArray& bytes) {
        return std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    };
    check("pugixml", bench::printWithPugixml(corpus.documents[i]));
    check("QDomDocument", view(bench::printWithQDomDocument(corpus.documentsForQt[i])));
    check("QXmlStreamWriter", view(bench::printWithQXmlStreamWriter(corpus.documentsForQt[i])));
    if (corpus.parts[i].write() != printed)
        exitDifferent("straight-line writing", corpus.messages[i]);
}

Corpus makeCorpus(const std::string& name, const std::vector<std::string>& messages)
{
    Corpus corpus{name, messages, {}, {}, {}};
    for (std::size_t i = 0; i < messages.size(); ++i) {
        const std::string printed = bench::convertOrExit(messages[i]);
        corpus.documents.push_back(bench::readDocument(printed));
        corpus.documentsForQt.push_back(bench::toUtf16(corpus.documents.back()));
        corpus.parts.emplace_back(corpus.documents.back());
        checkPeers(corpus, i, printed);
    }
    return corpus;
}

// The messages of a folder of the user's, which may hold some that give no document.
std::vector<std::string> convertibleMessages(const char* folder)
{
    std::vector<std::string> messages = bench::messagesOfFolder(folder);
    const auto isRefused = [](const std::string& message) {
        unsigned int length = 0;
        return bench::convert(message, &length) == nullptr;
    };
    messages.erase(std::remove_if(messages.begin(), messages.end(), isRefused), messages.end());
    return messages;
}

void convertAll(benchmark::State& state, const Corpus& corpus)
{
    std::size_t bytes = 0;
    for (auto _ : state) {
        for (const std::string& message : corpus.messages) {
            unsigned int length = 0;
            const bench::Document document = bench::convert(message, &length);
            benchmark::DoNotOptimize(document.get());
            bytes += length;
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(bytes));
}

// Lets one peer print all `inputs`, one turn after another.
template <typename Inputs, typename Print>
void printAll(benchmark::State& state, const Inputs& inputs, Print print)
{
    std::size_t bytes = 0;
    for (auto _ : state) {
        for (const auto& input : inputs) {
            const auto document = print(input);
            benchmark::DoNotOptimize(document.data());
            bytes += static_cast<std::size_t>(document.size());
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(bytes));
}

void registerCorpus(const Corpus& corpus)
{
    const auto name = [&corpus](const char* what) { return corpus.name + "/" + what; };
    const auto add = [&name](const char* what, auto run) {
        benchmark::RegisterBenchmark(name(what).c_str(), run);
    };
    add("convert", [&corpus](benchmark::State& state) { convertAll(state, corpus); });
    add("ready_parts", [&corpus](benchmark::State& state) {
        printAll(state, corpus.parts, [](const bench::ReadyParts& parts) { return parts.write(); });
    });
    add("pugixml", [&corpus](benchmark::State& state) {
        printAll(state, corpus.documents, bench::printWithPugixml);
    });
    add("QDomDocument", [&corpus](benchmark::State& state) {
        printAll(state, corpus.documentsForQt, bench::printWithQDomDocument);
    });
    add("QXmlStreamWriter", [&corpus](benchmark::State& state) {
        printAll(state, corpus.documentsForQt, bench::printWithQXmlStreamWriter);
    });
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    bench::useEmbeddedRules();

    std::vector<Corpus> corpora;
    corpora.push_back(makeCorpus("flight_plan", {bench::flightPlan()}));
    corpora.push_back(makeCorpus("samples", bench::sampleMessages()));
    corpora.push_back(makeCorpus("varied", bench::variedMessages()));
    for (int i = 1; i < argc; ++i)
        corpora.push_back(makeCorpus(argv[i], convertibleMessages(argv[i])));
    for (const Corpus& corpus : corpora)
        registerCorpus(corpus);

    benchmark::RunSpecifiedBenchmarks();
    clear_adexp();
}
