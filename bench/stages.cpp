// What each stage of a conversion costs, called by the classes behind the library.

#include "support/converter.h"
#include "support/messages.h"

#include "api/adexplib.h"
#include "grammar/termstd.h"
#include "load/mainclass.h"
#include "message/adexpdoc.h"
#include "message/adexpfield.h"
#include "report/linereporter.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

LineReporter lines;

// A text and the definition that it was matched against.
struct MatchedData
{
    const TermStd* term;
    QString data;
};

QString decoded(const std::string& message)
{
    return QString::fromUtf8(message.data(), static_cast<int>(message.size()));
}

void collectMatchedData(const AdexpField* field, std::vector<MatchedData>* result)
{
    if (field->fieldTerm && !field->fieldTerm->isContainsCompoundField())
        result->push_back({field->fieldTerm, field->fieldData.toString()});
    for (const AdexpField* sub : field->subFields)
        collectMatchedData(sub, result);
}

void decode(benchmark::State& state, const std::string& message)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(decoded(message));
}

void split(benchmark::State& state, const std::string& message)
{
    const QString text = decoded(message);
    for (auto _ : state) {
        const AdexpDoc document(text, &lines);
        benchmark::DoNotOptimize(document.wordList.size());
    }
}

// Parsing changes the document, so each turn needs one of its own.
void splitAndParse(benchmark::State& state, const std::string& message)
{
    const QString text = decoded(message);
    for (auto _ : state) {
        AdexpDoc document(text, &lines);
        document.setRootField(&mc->msgRules);
        document.parse();
        benchmark::DoNotOptimize(document.rootField);
    }
}

void match(benchmark::State& state, const std::string& message)
{
    AdexpDoc document(decoded(message), &lines);
    document.setRootField(&mc->msgRules);
    document.parse();
    std::vector<MatchedData> matched;
    collectMatchedData(document.rootField, &matched);
    for (auto _ : state)
        for (const MatchedData& item : matched)
            benchmark::DoNotOptimize(item.term->parse(item.data.constData()));
    state.counters["fields"] = static_cast<double>(matched.size());
}

void write(benchmark::State& state, const std::string& message)
{
    AdexpDoc document(decoded(message), &lines);
    document.setRootField(&mc->msgRules);
    document.parse();
    for (auto _ : state)
        benchmark::DoNotOptimize(document.toXMLString());
}

void whole(benchmark::State& state, const std::string& message)
{
    for (auto _ : state) {
        unsigned int length = 0;
        benchmark::DoNotOptimize(bench::convert(message, &length));
    }
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    bench::useEmbeddedRules();
    const std::string message = bench::flightPlan();
    bench::convertFaultlessOrExit(message);

    benchmark::RegisterBenchmark("stage/decode", decode, message);
    benchmark::RegisterBenchmark("stage/split", split, message);
    benchmark::RegisterBenchmark("stage/split_and_parse", splitAndParse, message);
    benchmark::RegisterBenchmark("stage/match", match, message);
    benchmark::RegisterBenchmark("stage/write", write, message);
    benchmark::RegisterBenchmark("stage/whole", whole, message);
    benchmark::RunSpecifiedBenchmarks();
    clear_adexp();
}
