#include "api/result.h"

#include "load/mainclass.h"
#include "message/adexpdoc.h"
#include "message/messageplaces.h"
#include "message/msgrule.h"

#include <algorithm>

namespace {

class NoReports : public Reporter
{
public:
    void report(const Finding&) override {}
};

// Behind the last unit of the part, which may be no part of the text (a joined keyword).
int endIn(const AdexpDoc& doc, QStringView part)
{
    const QChar* const end = part.data() + part.size();
    return doc.isInText(part) ? static_cast<int>(end - doc.msgParam.text.constData()) : 0;
}

} // namespace

void adexp_result::fail(adexp_status status)
{
    m_data.restart(status, 0);
    m_document = {};
}

void adexp_result::convert(const MainClass& rules, std::string_view message,
                           const adexp_options& options)
{
    m_data.restart(ADEXP_OK, options.max_findings);
    m_document = {};
    NoReports none;
    const bool wantsFindings = (options.want & ADEXP_FINDINGS) != 0;
    AdexpDoc doc(QString::fromUtf8(message.data(), static_cast<int>(message.size())),
                 wantsFindings ? static_cast<Reporter*>(&m_data) : &none);
    doc.setRootField(&rules.msgRules);
    doc.parse();

    const MsgRule* const rule = doc.rule();
    m_data.title = m_data.add(doc.msgParam.title);
    m_data.status = rule ? ADEXP_OK : doc.rootField ? ADEXP_NO_RULE : ADEXP_NO_TITLE;
    if (doc.rootField && (options.want & ADEXP_FIELDS) != 0)
        addFields(*doc.rootField, -1);
    if (!m_data.fields.empty() || !m_data.findings.empty())
        locate(doc, message);
    if (rule && (options.want & ADEXP_DOCUMENT) != 0) {
        m_writer.restart(MsgRule::expectedSize(doc));
        rule->packDoc(&doc, &m_writer);
        m_document = m_writer.finish();
    }
}

// The field and all below. As deep as definitions nest, which is bounded. The real end, in units,
// goes to byte_end until locate() is called.
void adexp_result::addFields(const AdexpField& field, int parent)
{
    const size_t index = m_data.fields.size();
    adexp_field added{};
    added.name = m_data.add(field.fieldName);
    added.data = m_data.add(field.fieldData);
    added.parent = parent;
    added.item = field.itemIndex;
    added.flags = (field.fieldTerm ? unsigned{ADEXP_FIELD_KNOWN} : 0U) |
                  (field.isList ? unsigned{ADEXP_FIELD_LIST} : 0U);
    added.place.begin = field.fieldBegin;
    added.place.end = field.fieldEnd;
    m_data.fields.push_back(added);

    const AdexpDoc& doc = *field.doc;
    int end =
        std::max({field.fieldBegin, endIn(doc, field.fieldName), endIn(doc, field.fieldData)});
    for (const AdexpField* sub : field.subFields) {
        const size_t subIndex = m_data.fields.size();
        addFields(*sub, static_cast<int>(index));
        end = std::max(end, static_cast<int>(m_data.fields[subIndex].place.byte_end));
    }
    adexp_field& kept = m_data.fields[index];
    kept.place.byte_end = field.fieldEnd == -1 ? end : field.fieldEnd;
    kept.next = static_cast<std::int32_t>(m_data.fields.size());
}

void adexp_result::locate(const AdexpDoc& doc, std::string_view message)
{
    const MessagePlaces places(doc.msgParam.text, message);
    for (adexp_field& field : m_data.fields)
        places.locate(field.place.begin, static_cast<int>(field.place.byte_end), &field.place);
    for (adexp_finding& finding : m_data.findings) {
        if (finding.place.begin >= 0)
            places.locate(finding.place.begin, finding.place.end, &finding.place);
    }
}
