#include "messagepage.h"

#include "html.h"
#include "markedtext.h"
#include "markedtree.h"

#include <QCryptographicHash>
#include <QFile>

#include <algorithm>
#include <utility>

namespace {

QByteArray resource(const char* name)
{
    QFile file(QLatin1String(":/adexp/view/") + QLatin1String(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// As the policy of the page wants it.
std::string hashOf(const QByteArray& text)
{
    return "sha256-" +
           QCryptographicHash::hash(text, QCryptographicHash::Sha256).toBase64().toStdString();
}

std::string plainHtml(const std::string& text)
{
    return plainHtml(QString::fromStdString(text));
}

std::string counted(qint64 count, const std::string& thing)
{
    return std::to_string(count) + ' ' + thing + (count == 1 ? "" : "s");
}

std::string chip(const char* kind, const std::string& text)
{
    return std::string("<span class=\"chip ") + kind + "\">" + text + "</span>\n";
}

} // namespace

MessagePage::MessagePage(PageContent content)
    : m_content(std::move(content)), m_places(m_content.text)
{
}

std::string MessagePage::html() const
{
    // The values are not searched for placeholders.
    const std::string page = resource("page.html").toStdString();
    std::string html;
    size_t begin = 0;
    for (size_t at = page.find('@'); at != std::string::npos; at = page.find('@', begin)) {
        const size_t end = page.find('@', at + 1);
        html += page.substr(begin, at - begin) + valueOf(page.substr(at + 1, end - at - 1));
        begin = end + 1;
    }
    return html + page.substr(begin);
}

std::string MessagePage::valueOf(const std::string& placeholder) const
{
    if (placeholder == "STYLE")
        return resource("page.css").toStdString();
    if (placeholder == "STYLE_HASH")
        return hashOf(resource("page.css"));
    if (placeholder == "SCRIPT")
        return resource("page.js").toStdString();
    if (placeholder == "SCRIPT_HASH")
        return hashOf(resource("page.js"));
    if (placeholder == "HEADING")
        return heading();
    if (placeholder == "NAME")
        return plainHtml(m_content.name);
    if (placeholder == "COUNTS")
        return counts();
    if (placeholder == "FAILURE")
        return failure();
    if (placeholder == "TEXT")
        return text();
    if (placeholder == "FINDINGS")
        return findingList();
    if (placeholder == "TREE")
        return tree();
    return placeholder == "SETTINGS" ? plainHtml(m_content.settings) : ADEXP_VERSION;
}

std::string MessagePage::heading() const
{
    return m_content.title.isEmpty() ? "No title" : plainHtml(m_content.title);
}

std::string MessagePage::counts() const
{
    const auto countFindings = [this](Severity severity) {
        return std::count_if(m_content.findings.cbegin(), m_content.findings.cend(),
                             [severity](const auto& item) { return item.severity == severity; });
    };
    const auto errors = countFindings(Severity::Error);
    const auto warnings = countFindings(Severity::Warning);
    const auto unknown = std::count_if(m_content.fields.cbegin(), m_content.fields.cend(),
                                       [](const MessageField& field) { return !field.isKnown; });

    std::string html;
    if (!m_content.fields.empty()) // the message itself does not count
        html += chip("", counted(static_cast<qint64>(m_content.fields.size()) - 1, "field"));
    if (unknown > 0)
        html += chip("unknown", std::to_string(unknown) + " unknown");
    if (errors > 0)
        html += chip("error", counted(errors, "error"));
    if (warnings > 0)
        html += chip("warning", counted(warnings, "warning"));
    if (m_content.findings.empty() && m_content.failure.empty())
        html += chip("fine", "nothing reported");
    return html;
}

std::string MessagePage::failure() const
{
    if (m_content.failure.empty())
        return {};
    return "<p class=\"failure\" role=\"alert\"><strong>No fields:</strong> " +
           plainHtml(m_content.failure) + "</p>";
}

std::string MessagePage::text() const
{
    return MarkedText(m_content.text, m_places, m_content.fields, m_content.findings).html();
}

std::string MessagePage::findingList() const
{
    if (m_content.findings.empty() && !m_content.failure.empty())
        return "<p class=\"none\">Nothing else was reported.</p>";
    if (m_content.findings.empty())
        return "<p class=\"none fine\">Nothing was reported.</p>";
    std::string html = "<ol id=\"list\">\n";
    for (size_t i = 0; i < m_content.findings.size(); ++i)
        appendFinding(i, &html);
    return html + "</ol>";
}

void MessagePage::appendFinding(size_t index, std::string* html) const
{
    const MessageFinding& finding = m_content.findings[index];
    const std::string number = std::to_string(index + 1);
    const bool hasPlace = finding.begin >= 0;
    *html += "<li id=\"f" + number + "\" data-f=\"" + number + '"';
    if (hasPlace && !m_content.fields.empty())
        *html += " data-i=\"" + std::to_string(fieldAt(m_content.fields, finding.begin)) + '"';
    *html += "><a href=\"#" + (hasPlace ? 'm' + number : std::string("text")) + "\" tabindex=\"" +
             (index == 0 ? "0" : "-1") + "\"><span class=\"number " +
             (finding.severity == Severity::Warning ? "warning" : "error") + "\">" + number +
             "</span> <span class=\"what\">";
    appendHtml(finding.text, html);
    if (!finding.detail.isEmpty()) {
        *html += " <span class=\"detail\">";
        appendHtml(finding.detail, html);
        *html += "</span>";
    }
    *html += "</span> <span class=\"where\">" + whereabouts(finding) + "</span></a></li>\n";
}

// "error, line 3, column 12, reported 2 times"
std::string MessagePage::whereabouts(const MessageFinding& finding) const
{
    std::string text = finding.severity == Severity::Warning ? "warning" : "error";
    if (finding.begin >= 0) {
        const TextPlaces::Place place = m_places.placeOf(finding.begin);
        text += ", line " + std::to_string(place.line) + ", column " + std::to_string(place.column);
    }
    if (finding.count > 1)
        text += ", reported " + std::to_string(finding.count) + " times";
    return text;
}

std::string MessagePage::tree() const
{
    if (m_content.fields.empty())
        return {};
    return "<section class=\"fields\" aria-labelledby=\"fields-heading\">\n"
           "<h2 id=\"fields-heading\">Fields</h2>\n" +
           MarkedTree(m_content.fields, m_content.findings).html() + "\n</section>";
}
