#include "coveragereport.h"

#include "console.h"

#include <QByteArray>
#include <QXmlStreamReader>

#include <algorithm>
#include <array>
#include <cstdio>

namespace {

std::string columns(const std::string& head, const std::string& messages, const std::string& fields,
                    const std::string& unknown, const std::string& reports)
{
    const auto column = [](const std::string& text, std::size_t width) {
        return std::string(width - std::min(width, text.size()), ' ') + text;
    };
    const std::string title = head + std::string(12 - std::min<std::size_t>(12, head.size()), ' ');
    return title + column(messages, 10) + column(fields, 12) + column(unknown, 10) +
           column(reports, 13) + '\n';
}

} // namespace

void CoverageReport::addDocument(std::string_view document, const DiagnosticCounts& reported)
{
    Counts counts;
    std::string title;
    countFields(document, &title, &counts);

    Counts& sum = m_titles[title];
    ++sum.messages;
    sum.fields += counts.fields;
    sum.unknownFields += counts.unknownFields;
    for (const auto& [text, count] : reported) {
        sum.reports += count;
        sum.diagnostics[text] += count;
    }
}

// Every element with the attribute "valid" is a field, but for the first one: the message itself.
void CoverageReport::countFields(std::string_view document, std::string* title, Counts* counts)
{
    using Size = decltype(QByteArray().size()); // int up to Qt 5
    QXmlStreamReader reader(
        QByteArray::fromRawData(document.data(), static_cast<Size>(document.size())));
    reader.readNextStartElement();
    *title = reader.attributes().value(QLatin1String("rule")).toString().toStdString();
    reader.readNextStartElement();
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        const auto attributes = reader.attributes();
        if (!attributes.hasAttribute(QLatin1String("valid")))
            continue;
        ++counts->fields;
        if (attributes.value(QLatin1String("valid")) == QLatin1String("false"))
            ++counts->unknownFields;
    }
}

void CoverageReport::addNotConverted(const std::string& name, const std::string& reason)
{
    m_notConverted.push_back({name, reason});
}

CoverageReport::Counts CoverageReport::total() const
{
    Counts sum;
    for (const auto& [title, counts] : m_titles) {
        sum.messages += counts.messages;
        sum.fields += counts.fields;
        sum.unknownFields += counts.unknownFields;
        sum.reports += counts.reports;
    }
    return sum;
}

ExitCode CoverageReport::status() const
{
    if (!m_notConverted.empty())
        return ExitCode::NotDone;
    return total().reports == 0 ? ExitCode::Success : ExitCode::WithDiagnostics;
}

std::string CoverageReport::line(const std::string& head, const Counts& counts)
{
    return columns(escaped(head), std::to_string(counts.messages), std::to_string(counts.fields),
                   std::to_string(counts.unknownFields), std::to_string(counts.reports));
}

// The most frequent first.
std::string CoverageReport::diagnosticLines(const DiagnosticCounts& diagnostics)
{
    std::vector<std::pair<std::string, std::int64_t>> sorted(diagnostics.begin(),
                                                             diagnostics.end());
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    std::string lines;
    for (const auto& [text, count] : sorted)
        lines += "    " + std::to_string(count) + " x " + escaped(text) + '\n';
    return lines;
}

std::string CoverageReport::text() const
{
    std::string lines = columns("title", "messages", "fields", "unknown", "diagnostics");
    for (const auto& [title, counts] : m_titles)
        lines += line(title, counts) + diagnosticLines(counts.diagnostics);
    lines += line("total", total());
    lines += "not converted: " + std::to_string(m_notConverted.size()) + '\n';
    for (const NotConverted& input : m_notConverted)
        lines += "    " + escaped(input.name) + ": " + escaped(input.reason) + '\n';
    return lines;
}
