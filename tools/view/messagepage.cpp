#include "messagepage.h"

#include "html.h"
#include "markedtext.h"
#include "markedtree.h"

#include <QCryptographicHash>
#include <QFile>

#include <algorithm>
#include <map>
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

// Texts of the page's own may quote the message, which may be long.
constexpr int MostText = 500;

std::string plainHtml(const std::string& text)
{
    return plainHtml(shortened(QString::fromStdString(text), MostText));
}

std::string inlineHtml(const std::string& text)
{
    std::string html;
    appendHtml(shortened(QString::fromStdString(text), MostText), &html);
    return html;
}

std::string chip(const char* kind, const std::string& text)
{
    return std::string("<span class=\"chip ") + kind + "\">" + text + "</span>\n";
}

// The text of the message has the rest.
constexpr int MostFindingText = 200;

// "error, line 3, column 12, reported 2 times"
std::string whereabouts(const MessageFinding& finding, const TextPlaces& places)
{
    std::string text = finding.kind();
    if (finding.begin >= 0) {
        const TextPlaces::Place place = places.placeOf(finding.begin);
        text += ", line " + withCommas(place.line) + ", column " + withCommas(place.column);
    }
    if (finding.count > 1)
        text += ", reported " + withCommas(finding.count) + " times";
    return text;
}

void appendWhat(const MessageFinding& finding, std::string* html)
{
    *html += "<span class=\"what\">";
    appendHtml(shortened(finding.text, MostFindingText), html);
    if (!finding.detail.isEmpty()) {
        *html += " <span class=\"detail\">";
        appendHtml(shortened(finding.detail, MostFindingText), html);
        *html += "</span>";
    }
    *html += "</span>";
}

// A list with an <li id="fN" data-f="N"> for each finding, N being its number from 1, with a link
// to its place in the text. Fields (none, if there are none) and findings are those that are shown.
std::string findingList(const Excerpt& excerpt, const TextPlaces& places)
{
    const MessageFindings& findings = excerpt.findings();
    const MessageFields& fields = excerpt.fields();
    std::string html = "<ol id=\"list\">\n";
    for (size_t i = 0; i < findings.size(); ++i) {
        const MessageFinding& finding = findings[i];
        const std::string number = std::to_string(i + 1);
        const bool hasPlace = finding.begin >= 0;
        html += "<li id=\"f" + number + "\" data-f=\"" + number + '"';
        if (hasPlace && !fields.empty())
            html += " data-i=\"" + std::to_string(fieldAt(fields, finding.begin)) + '"';
        html += "><a href=\"#" + (hasPlace ? 'm' + number : std::string("text")) +
                "\" tabindex=\"" + (i == 0 ? "0" : "-1") + "\"><span class=\"number " +
                finding.kind() + "\">" + number + "</span> ";
        appendWhat(finding, &html);
        html += " <span class=\"where\">" + whereabouts(finding, places) + "</span></a></li>\n";
    }
    return html + "</ol>";
}

} // namespace

MessagePage::MessagePage(PageContent content)
    : m_content(std::move(content)),
      m_places(m_content.text),
      m_excerpt(m_content.text, m_places, m_content.fields, m_content.findings)
{
}

std::string MessagePage::html() const
{
    const QByteArray style = resource("page.css");
    const QByteArray script = resource("page.js");
    const std::map<std::string, std::string> values{
        {"STYLE", style.toStdString()},
        {"STYLE_HASH", hashOf(style)},
        {"SCRIPT", script.toStdString()},
        {"SCRIPT_HASH", hashOf(script)},
        {"TITLE", plainHtml(heading())},
        {"HEADING", inlineHtml(heading())},
        {"PLAIN_NAME", plainHtml(m_content.name)},
        {"NAME", inlineHtml(m_content.name)},
        {"COUNTS", counts()},
        {"FAILURE", failure()},
        {"LEFT_OUT", leftOut()},
        {"TEXT", MarkedText(m_content.text, m_places, m_excerpt).html()},
        {"FINDINGS", findings()},
        {"FIELDS", fields()},
        {"SETTINGS", inlineHtml(m_content.settings)},
        {"VERSION", ADEXP_VERSION},
    };
    // The values are not searched for placeholders.
    const std::string page = resource("page.html").toStdString();
    std::string html;
    size_t begin = 0;
    for (size_t at = page.find('@'); at != std::string::npos; at = page.find('@', begin)) {
        const size_t end = page.find('@', at + 1);
        html += page.substr(begin, at - begin) + values.at(page.substr(at + 1, end - at - 1));
        begin = end + 1;
    }
    return html + page.substr(begin);
}

std::string MessagePage::heading() const
{
    return m_content.title.isEmpty() ? "No title" : m_content.title.toStdString();
}

std::string MessagePage::counts() const
{
    const auto warnings = std::count_if(m_content.findings.cbegin(), m_content.findings.cend(),
                                        [](const auto& finding) { return finding.isWarning; });
    const auto errors = static_cast<qint64>(m_content.findings.size()) - warnings;
    const auto unknown = std::count_if(m_content.fields.cbegin(), m_content.fields.cend(),
                                       [](const MessageField& field) { return !field.isKnown; });

    std::string html;
    if (!m_content.fields.empty()) // the message itself does not count
        html += chip("", counted(static_cast<qint64>(m_content.fields.size()) - 1, "field"));
    if (unknown > 0)
        html += chip("unknown", withCommas(unknown) + " unknown");
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
           inlineHtml(m_content.failure) + "</p>";
}

// What is shown of how much, and where the rest is to be seen.
std::string MessagePage::leftOut() const
{
    std::string parts;
    const auto addPart = [&parts](qint64 shown, qint64 all, const char* thing) {
        if (shown == all)
            return;
        parts += parts.empty() ? "" : ", ";
        parts += withCommas(shown) + " of " + counted(all, thing);
    };
    const auto sizeOf = [](const auto& items) { return static_cast<qint64>(items.size()); };
    addPart(m_excerpt.shownUnits(), m_places.size(), "character");
    addPart(sizeOf(m_excerpt.fields()) - 1, sizeOf(m_content.fields) - 1, "field");
    addPart(sizeOf(m_excerpt.findings()), sizeOf(m_content.findings), "finding");
    if (parts.empty())
        return {};
    return "<p class=\"left-out\"><strong>Too large for one page.</strong> Shown are " + parts +
           ". The message itself has the whole text, <code>adexp tree</code> prints all fields, "
           "<code>adexp convert</code> reports all findings.</p>";
}

std::string MessagePage::findings() const
{
    if (m_content.findings.empty() && !m_content.failure.empty())
        return "<p class=\"none\">Nothing else was reported.</p>";
    if (m_content.findings.empty())
        return "<p class=\"none fine\">Nothing was reported.</p>";
    std::string html = findingList(m_excerpt, m_places);
    const size_t leftOut = m_content.findings.size() - m_excerpt.findings().size();
    if (leftOut > 0)
        html += "\n<p class=\"gap\">" + counted(static_cast<qint64>(leftOut), "finding") +
                " left out</p>";
    return html;
}

std::string MessagePage::fields() const
{
    if (m_content.fields.empty())
        return {};
    return "<section class=\"fields\" aria-labelledby=\"fields-heading\">\n"
           "<h2 id=\"fields-heading\">Fields</h2>\n" +
           MarkedTree(m_excerpt).html() + "\n</section>";
}
