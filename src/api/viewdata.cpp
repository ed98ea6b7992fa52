#include "api/viewdata.h"

#include "report/linereporter.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <stdexcept>

void copyKnown(adexp_view all, adexp_view* view)
{
    all.size = view->size;
    std::memcpy(view, &all, std::min(view->size, sizeof all));
}

void ViewData::restart(adexp_status newStatus, std::uint32_t maxFindings)
{
    status = newStatus;
    title = {};
    fields.clear();
    findings.clear();
    m_strings.assign(1, '\0'); // the empty text
    m_maxFindings = maxFindings;
    m_leftOut = 0;
}

void ViewData::report(const Finding& finding)
{
    if (m_maxFindings != 0 && findings.size() >= m_maxFindings) {
        ++m_leftOut;
        return;
    }
    const ConfigInfo& record = finding.record;
    const bool isAboutRules = finding.code >= ADEXP_CODE_SETTINGS_ACCESS;
    adexp_finding added{};
    added.code = finding.code;
    added.severity = static_cast<std::int32_t>(finding.severity);
    added.text = add(finding.text);
    added.detail = add(finding.detail);
    added.path = add(isAboutRules ? record.recordName : finding.path);
    added.file = add(record.xmlFile);
    added.report = add(LineReporter::lineOf(finding));
    added.field = finding.field;
    added.place = {finding.begin, finding.end, -1, -1, record.lineNumber, record.columnNumber};
    findings.push_back(added);
}

adexp_text ViewData::add(QStringView text)
{
    if (text.isEmpty())
        return {};
    const size_t at = m_strings.size();
    const auto isAscii = [](QChar c) { return c.unicode() < 0x80; };
    if (std::all_of(text.begin(), text.end(), isAscii)) {
        m_strings.resize(at + static_cast<size_t>(text.size()));
        std::transform(text.begin(), text.end(),
                       m_strings.begin() + static_cast<std::ptrdiff_t>(at),
                       [](QChar c) { return static_cast<char>(c.unicode()); });
    } else {
        const QByteArray bytes = text.toUtf8();
        m_strings.append(bytes.constData(), static_cast<size_t>(bytes.size()));
    }
    const size_t size = m_strings.size() - at;
    m_strings.push_back('\0');
    if (m_strings.size() > INT_MAX)
        throw std::length_error("strings of a result");
    return {static_cast<std::uint32_t>(at), static_cast<std::uint32_t>(size)};
}

void ViewData::show(std::string_view document, adexp_view* view) const
{
    adexp_view all{};
    all.status = status;
    all.left_out = m_leftOut;
    all.document = document.empty() ? nullptr : document.data();
    all.document_size = document.size();
    all.strings = m_strings.c_str();
    all.strings_size = m_strings.size();
    all.fields = fields.data();
    all.field_count = fields.size();
    all.field_stride = sizeof(adexp_field);
    all.findings = findings.data();
    all.finding_count = findings.size();
    all.finding_stride = sizeof(adexp_finding);
    all.title = title;
    copyKnown(all, view);
}
