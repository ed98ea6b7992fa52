// Loading a rule set: how the time grows with the number of definitions, and how much of it is the
// reading of the XML files.

#include "support/converter.h"

#include <benchmark/benchmark.h>

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

[[noreturn]] void exitWith(const char* what)
{
    std::fprintf(stderr, "%s\n", what);
    std::exit(EXIT_FAILURE);
}

bool load(const std::string& path)
{
    return init_adexp(path.data(), static_cast<int>(path.size())) == 0;
}

// Writes rule sets of any size, with references from each kind of definition to the kinds before
// it.
class RuleSetWriter
{
public:
    RuleSetWriter(const std::string& folder, int definitions)
        : m_folder(folder),
          m_terms(definitions / 20),
          m_subFields(definitions * 7 / 20),
          m_fields(definitions / 2),
          m_rules(definitions / 10)
    {
    }

    // Returns the path of the settings file.
    std::string write() const
    {
        std::ofstream settings(path("adexp.ini"));
        settings << "[rules]\n"
                 << "simpleTermsFile=" << writeTerms() << "\n"
                 << "subFieldsFile=" << writeSubFields() << "\n"
                 << "primaryFieldsFile=" << writeFields() << "\n"
                 << "msgRulesFile=" << writeRules() << "\n";
        return path("adexp.ini");
    }

    // A message for the rule defined last.
    std::string messageForLastRule() const
    {
        return "-TITLE " + numbered("MSG", m_rules - 1) + " -" + fieldOfRule(m_rules - 1, 1) + " A";
    }

private:
    static std::string numbered(const char* name, int number)
    {
        return name + std::to_string(number);
    }

    std::string path(const char* file) const { return m_folder + "/" + file; }

    template <typename TextOf>
    std::string writeRecords(const char* file, const char* tag, const char* nameAttribute,
                             const char* textTag, const char* name, int count, TextOf textOf) const
    {
        std::ofstream out(path(file));
        out << "<definitions>\n";
        for (int i = 0; i < count; ++i)
            out << "  <" << tag << " " << nameAttribute << "=\"" << numbered(name, i) << "\">\n"
                << "    <description>What the definition is for</description>\n"
                << "    <" << textTag << ">" << textOf(i) << "</" << textTag << ">\n"
                << "  </" << tag << ">\n";
        out << "</definitions>\n";
        return path(file);
    }

    std::string writeTerms() const
    {
        return writeRecords("terms.xml", "simpleTerm", "name", "term", "TERM", m_terms, [](int i) {
            return i % 2 == 0 ? "1{ALPHANUM}7" : "('F' | 'A') ! 3{DIGIT}3";
        });
    }

    std::string writeSubFields() const
    {
        return writeRecords("subfields.xml", "SubField", "name", "term", "SUB", m_subFields,
                            [this](int i) { return numbered("TERM", i % m_terms); });
    }

    // Every second field is a compound of sub-fields.
    std::string writeFields() const
    {
        return writeRecords("fields.xml", "PrimaryField", "name", "term", "FIELD", m_fields,
                            [this](int i) {
                                if (i % 2 != 0)
                                    return std::string("1{LIM_CHAR}");
                                return numbered("SUB", i % m_subFields) + " [" +
                                       numbered("SUB", (i + 1) % m_subFields) + "]";
                            });
    }

    std::string writeRules() const
    {
        return writeRecords(
            "rules.xml", "msgRule", "title", "fields", "MSG", m_rules, [this](int i) {
                constexpr int FieldsOfRule = 30;
                std::string text;
                for (int k = 0; k < FieldsOfRule; ++k)
                    text += (k == 0 ? "" : " ") + std::string("[") + fieldOfRule(i, k) + "]";
                return text;
            });
    }

    std::string fieldOfRule(int rule, int k) const
    {
        return numbered("FIELD", (rule * 10 + k) % m_fields);
    }

    std::string m_folder;
    int m_terms;
    int m_subFields;
    int m_fields;
    int m_rules;
};

void loadRules(benchmark::State& state, const std::string& path)
{
    for (auto _ : state) {
        if (!load(path))
            state.SkipWithError("the rule set was not loaded");
        state.PauseTiming();
        clear_adexp();
        state.ResumeTiming();
    }
}

void readFiles(benchmark::State& state)
{
    const char* const paths[] = {":/adexp/simpleterms.xml", ":/adexp/subfields.xml",
                                 ":/adexp/primaryfields.xml", ":/adexp/msgrules.xml"};
    for (auto _ : state) {
        for (const char* path : paths) {
            QFile file(path);
            QDomDocument document;
            if (!file.open(QIODevice::ReadOnly) || !document.setContent(&file, true))
                state.SkipWithError("a rule file was not read");
            benchmark::DoNotOptimize(document);
        }
    }
}

void registerGenerated(const QTemporaryDir& folder, int definitions)
{
    const std::string number = std::to_string(definitions);
    const QString subFolder = folder.filePath(QString::fromStdString(number));
    if (!QDir().mkpath(subFolder))
        exitWith("There is no room for the generated rule set");
    const RuleSetWriter writer(subFolder.toStdString(), definitions);
    const std::string settings = writer.write();
    const std::size_t before = bench::diagnosticLines();
    if (!load(settings) || bench::diagnosticLines() != before)
        exitWith("The generated rule set has faults");
    bench::convertFaultlessOrExit(writer.messageForLastRule());
    benchmark::RegisterBenchmark(("load/" + number).c_str(), loadRules, settings);
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    bench::useEmbeddedRules();
    static const QTemporaryDir folder; // static, to be removed by exit() too
    registerGenerated(folder, 2'000);
    registerGenerated(folder, 20'000);
    benchmark::RegisterBenchmark("load/embedded", loadRules, ":/adexp/adexp.ini");
    benchmark::RegisterBenchmark("load/QDomDocument", readFiles);
    benchmark::RunSpecifiedBenchmarks();
    clear_adexp();
}
