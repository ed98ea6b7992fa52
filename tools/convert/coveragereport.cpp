#include "coveragereport.h"

#include "console.h"
#include "findingjson.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <algorithm>
#include <utility>

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

std::vector<std::pair<std::string, std::int64_t>> mostFrequentFirst(const DiagnosticCounts& counts)
{
    std::vector<std::pair<std::string, std::int64_t>> sorted(counts.begin(), counts.end());
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    return sorted;
}

} // namespace

void MessageCoverage::count(const adexp::Result& result)
{
    title = result.title();
    for (const adexp::Field field : result.fields()) {
        if (field.name().empty())
            continue; // nor is it in the document
        ++fields;
        if (!field.isKnown())
            ++unknownFields;
    }
}

void CoverageReport::add(const MessageCoverage& message)
{
    if (!message.failure.empty()) {
        ++m_notConverted;
        if (m_listed.size() < MaxListed)
            m_listed.push_back({message.name, message.failure});
        return;
    }
    Counts& sum = m_titles[message.title];
    for (Counts* counts : {&sum, &m_total}) {
        ++counts->messages;
        counts->fields += message.fields;
        counts->unknownFields += message.unknownFields;
    }
    for (const auto& [text, count] : message.diagnostics) {
        m_total.reports += count;
        addDiagnostic(text, count, &sum);
    }
}

void CoverageReport::addDiagnostic(const std::string& text, std::int64_t count, Counts* counts)
{
    counts->reports += count;
    const auto known = counts->diagnostics.find(text);
    if (known != counts->diagnostics.end())
        known->second += count;
    else if (counts->diagnostics.size() < MaxListed)
        counts->diagnostics.emplace(text, count);
    else
        counts->unlisted += count;
}

std::string CoverageReport::line(const std::string& head, const Counts& counts)
{
    return columns(escaped(head), std::to_string(counts.messages), std::to_string(counts.fields),
                   std::to_string(counts.unknownFields), std::to_string(counts.reports));
}

std::string CoverageReport::diagnosticLines(const Counts& counts)
{
    std::string lines;
    for (const auto& [text, count] : mostFrequentFirst(counts.diagnostics))
        lines += "    " + std::to_string(count) + " x " + escaped(text) + '\n';
    if (counts.unlisted != 0)
        lines += "    " + std::to_string(counts.unlisted) + " x (others)\n";
    return lines;
}

std::string CoverageReport::text() const
{
    std::string lines = columns("title", "messages", "fields", "unknown", "diagnostics");
    for (const auto& [title, counts] : m_titles)
        lines += line(title, counts) + diagnosticLines(counts);
    lines += line("total", m_total);
    lines += "not converted: " + std::to_string(m_notConverted) + '\n';
    for (const NotConverted& message : m_listed)
        lines += "    " + escaped(message.name) + ": " + escaped(message.reason) + '\n';
    const std::int64_t others = m_notConverted - static_cast<std::int64_t>(m_listed.size());
    if (others != 0)
        lines += "    (" + std::to_string(others) + " others)\n";
    return lines;
}

std::string CoverageReport::json() const
{
    const auto numbers = [](const Counts& counts) {
        return QJsonObject{{QStringLiteral("messages"), static_cast<qint64>(counts.messages)},
                           {QStringLiteral("fields"), static_cast<qint64>(counts.fields)},
                           {QStringLiteral("unknown"), static_cast<qint64>(counts.unknownFields)},
                           {QStringLiteral("diagnostics"), static_cast<qint64>(counts.reports)}};
    };
    QJsonArray titles;
    for (const auto& [title, counts] : m_titles) {
        QJsonArray reports;
        for (const auto& [text, count] : mostFrequentFirst(counts.diagnostics))
            reports.append(QJsonObject{{QStringLiteral("count"), static_cast<qint64>(count)},
                                       {QStringLiteral("text"), QString::fromStdString(text)}});
        QJsonObject object = numbers(counts);
        object.insert(QStringLiteral("title"), QString::fromStdString(title));
        object.insert(QStringLiteral("reports"), reports);
        titles.append(object);
    }
    QJsonArray notConverted;
    for (const NotConverted& message : m_listed)
        notConverted.append(
            QJsonObject{{QStringLiteral("file"), QString::fromStdString(message.name)},
                        {QStringLiteral("text"), QString::fromStdString(message.reason)}});
    QJsonObject sum = numbers(m_total);
    sum.insert(QStringLiteral("notConverted"), static_cast<qint64>(m_notConverted));
    return jsonLine({{QStringLiteral("titles"), titles},
                     {QStringLiteral("total"), sum},
                     {QStringLiteral("notConverted"), notConverted}});
}
