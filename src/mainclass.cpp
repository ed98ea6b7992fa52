#include "mainclass.h"

#include "adexpdoc.h"
#include "definitionnesting.h"
#include "diagnosticline.h"
#include "msgrule.h"
#include "qtmemory.h"
#include "termexpression.h"
#include "xmllimits.h"

#include <QDomDocument>
#include <QFile>
#include <QSettings>

#include <memory>
#include <vector>

namespace {

// The reports begin with the full signature of the operation: scripts of users expect it.
void report(const char* signature, const QString& file, const QString& text,
            FindingKind kind = FindingKind::Cause)
{
    Finding finding;
    finding.kind = kind;
    finding.text = text;
    finding.record.xmlFile = file;
    DiagnosticLine(QtDebugMsg).plain(signature).quoted(text).send(finding);
}

// The same, about the record at @p place. The line has @p head before the text, the finding has
// not.
void reportRecord(const char* signature, const ConfigInfo& place, const QString& head,
                  const QString& text, FindingKind kind = FindingKind::Cause)
{
    Finding finding;
    finding.kind = kind;
    finding.text = text;
    finding.detail = place.ruleText;
    finding.record = place;
    DiagnosticLine(QtDebugMsg).plain(signature).quoted(head + text).send(finding);
}

const char* const ReadTermsSignature =
    "bool MainClass::readTermsXMLFile(const QString&, const QString&, bool)";
const char* const ReadMsgRulesSignature = "bool MainClass::readMsgRulesXMLFile(const QString&)";

bool isDisabled(const QDomElement& record)
{
    return record.attribute(QStringLiteral("active")) == QLatin1String("false");
}

// The same text as QDomElement::text(), which leaks when memory runs out. The recursion is bounded:
// no file with elements nested deeper than XmlLimits::MaxDepth is read.
QString textOf(const QDomNode& element)
{
    QString text;
    for (QDomNode node = element.firstChild(); !node.isNull(); node = node.nextSibling()) {
        if (node.isText()) // a CDATA section is a text, too
            text += node.nodeValue();
        else if (node.isElement())
            text += textOf(node);
    }
    return text;
}

// A copy that shares no memory with the document.
QString ownCopy(const QString& text)
{
    return QString(text.constData(), text.size());
}

// Takes the records that are not disabled out of the document of a rule file, and clears the
// document. Terms are made only afterwards: otherwise they would lie between the nodes of the
// document, the heap would be full of holes once it is cleared, and loading would be slower.
std::vector<ConfigInfo> takeRecords(QDomDocument* document, const QString& file,
                                    const QString& nameAttribute, const QString& textElement)
{
    std::vector<ConfigInfo> records;
    for (QDomElement element = document->documentElement().firstChildElement(); !element.isNull();
         element = element.nextSiblingElement()) {
        if (isDisabled(element))
            continue;
        ConfigInfo record;
        record.setXMLFile(file);
        record.setXMLData(&element);
        record.tagName = ownCopy(record.tagName);
        record.recordName = ownCopy(element.attribute(nameAttribute).toUpper());
        record.ruleText = ownCopy(textOf(element.firstChildElement(textElement)).toUpper());
        records.push_back(std::move(record));
    }
    document->clear();
    return records;
}

QString limitText(XmlLimits::Limit limit)
{
    switch (limit) {
    case XmlLimits::Limit::Depth:
        return MainClass::tr("elements are nested deeper than %1 levels").arg(XmlLimits::MaxDepth);
    case XmlLimits::Limit::Attributes:
        return MainClass::tr("an element has more than %1 attributes")
            .arg(XmlLimits::MaxAttributes);
    case XmlLimits::Limit::TypeSize:
        return MainClass::tr("the document type is longer than %1 bytes")
            .arg(XmlLimits::MaxTypeSize);
    default:
        return MainClass::tr("entities, default attributes and namespaces make the content more "
                             "than %1 times as long as the file")
            .arg(XmlLimits::MaxGrowth);
    }
}

template <typename Item>
void appendTo(NamedList<Item>* list, std::unique_ptr<Item> item)
{
    list->append(item.get());
    static_cast<void>(item.release()); // not before, since append() may throw
}

} // namespace

MainClass::MainClass(QObject* parent) : QObject(parent) {}

MainClass::~MainClass()
{
    qDeleteAll(msgRules);
    qDeleteAll(termsList);
}

QString MainClass::getPathFromSettings(const QSettings* settings, const QString& key)
{
    return settings->value(key).toString();
}

bool MainClass::readSettingsRules(QSettings* settings)
{
    // Simple terms are checked before any field is loaded, so they cannot refer to fields. The
    // fields of both files are checked together, so they can refer to each other.
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    settings->setIniCodec("UTF-8"); // the default of later versions of Qt
#endif
    settings->beginGroup(QStringLiteral("rules"));
    const auto path = [settings](const char* key) {
        return getPathFromSettings(settings, QLatin1String(key));
    };
    if (!readTermsXMLFile(path("simpleTermsFile"), QStringLiteral("simpleTerm"), false))
        return false;
    termsList_checkConfig();
    if (!readTermsXMLFile(path("subFieldsFile"), QStringLiteral("SubField"), true))
        return false;
    if (!readTermsXMLFile(path("primaryFieldsFile"), QStringLiteral("PrimaryField"), true))
        return false;
    termsList_checkConfig();
    return readMsgRulesXMLFile(path("msgRulesFile"));
}

bool MainClass::ruleDomDocumentsetContent(const QString& path, QDomDocument* document)
{
    static const char* const Signature =
        "bool MainClass::ruleDomDocumentsetContent(const QString&, QDomDocument*)";
    if (path.isEmpty()) {
        report(Signature, path, tr("file path is empty"));
        return false;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        report(Signature, path,
               tr("can not open file ") + path + tr(" for read: ") + file.errorString());
        return false;
    }
    const auto reportParseError = [&path](qint64 line, qint64 column, const QString& error) {
        ConfigInfo place;
        place.setXMLFile(path);
        place.lineNumber = static_cast<int>(line);
        place.columnNumber = static_cast<int>(column);
        // Nothing stands between column and error text; pinned by
        // `TermFiles.MalformedFileIsReportedTwiceAndFails`.
        const QString head = tr("Parse error at line ") + QString::number(line) + tr(", column ") +
                             QString::number(column);
        reportRecord(Signature, place, head, error);
        return false;
    };
    const QByteArray content = file.readAll();
    if (const auto excess = XmlLimits::firstExcess(content))
        return reportParseError(excess->line, excess->column, limitText(excess->limit));
    QtMemory::requireForDom(content);
    QString error;
    int line = 0;
    int column = 0;
    return document->setContent(content, true, &error, &line, &column) ||
           reportParseError(line, column, error);
}

bool MainClass::readTermsXMLFile(const QString& path, const QString& recordTag, bool containsField)
{
    QDomDocument document;
    if (!ruleDomDocumentsetContent(path, &document)) {
        report(ReadTermsSignature, path, tr("can not read ") + recordTag + tr(" records"),
               FindingKind::Consequence);
        return false;
    }
    ConfigInfo last; // the last record with the right tag
    last.setXMLFile(path);
    for (const ConfigInfo& record :
         takeRecords(&document, path, QStringLiteral("name"), QStringLiteral("term")))
        readTermRecord(record, recordTag, containsField, &last);
    return true;
}

void MainClass::readTermRecord(const ConfigInfo& record, const QString& recordTag,
                               bool containsField, ConfigInfo* last)
{
    if (record.tagName != recordTag) {
        // The head names the last record with the right tag, unlike in the message rules; pinned by
        // `TermFiles.WrongTagIsReportedUnderTheRecordBeforeIt`.
        reportRecord(ReadTermsSignature, record, last->xmlErrorHead(),
                     tr("bad tag name ") + record.tagName);
        return;
    }
    *last = record;
    if (const TermStd* const previous = termsList_search(&termsList, record.recordName)) {
        reportRecord(ReadTermsSignature, record, record.xmlErrorHead(),
                     tr("detect replay record, previous record (") +
                         previous->config.xmlErrorHeadShort() + tr(") contains rule \"") +
                         previous->config.ruleText + tr("\" ignored record contains rule \"") +
                         record.ruleText + u'"');
        return;
    }
    // The compiler has reported a text that does not compile. There is no second report, unlike for
    // the message rules; pinned by
    // `TermFiles.RecordThatDoesNotCompileIsSkippedWithoutAReportOfTheLoader`.
    std::unique_ptr<TermStd> term(TermExpression::append_expression(&record, true));
    if (!term)
        return;
    term->containsField = containsField;
    appendTo(&termsList, std::move(term));
}

TermStd* MainClass::termsList_search(const TermList* list, const QString& name)
{
    return list->search(name);
}

bool MainClass::readMsgRulesXMLFile(const QString& path)
{
    QDomDocument document;
    if (!ruleDomDocumentsetContent(path, &document))
        return false;
    for (const ConfigInfo& record :
         takeRecords(&document, path, QStringLiteral("title"), QStringLiteral("fields")))
        readMsgRuleRecord(record);
    return true;
}

void MainClass::readMsgRuleRecord(const ConfigInfo& record)
{
    // A record with a wrong tag is reported at its own place, unlike in the term files; pinned by
    // `MsgRuleFile.MisnamedRecordIsReportedAtItsOwnPlaceWithItsOwnTitle`.
    const auto reportRule = [&record](const QString& text, FindingKind kind = FindingKind::Cause) {
        reportRecord(ReadMsgRulesSignature, record, record.xmlErrorHead(), text, kind);
    };
    if (record.tagName != QLatin1String("msgRule")) {
        reportRule(tr("bad tag name ") + record.tagName);
        return;
    }
    if (const MsgRule* const previous = AdexpDoc::search_rule(&msgRules, record.recordName)) {
        reportRule(tr("detect replay msgRule ") + record.recordName +
                   tr(" previous msgRule contains fields ") + previous->config.ruleText +
                   tr(" ignored msgRule contains fields ") + record.ruleText);
        return;
    }
    auto rule = std::make_unique<MsgRule>(&record, this);
    if (!rule->check_config(&termsList)) {
        reportRule(tr("rule \"") + record.ruleText + tr("\" no valid, record ignored"),
                   FindingKind::Consequence);
        return;
    }
    appendTo(&msgRules, std::move(rule));
}

void MainClass::termsList_checkConfig()
{
    DefinitionNesting nesting(&termsList);
    qDeleteAll(termsList.takeUnless([this, &nesting](TermStd* term) {
        if (!term->configChecked) {
            if (!nesting.isWithinLimits(term) || !term->check_config(&termsList)) {
                Finding finding;
                finding.kind = FindingKind::Consequence;
                // The two blanks are pinned by `Validation.TermWithUnknownReferenceIsRemoved`.
                term->configErrorMessage(tr("term  no valid, entry is removed"), finding);
                return false;
            }
            term->configChecked = true;
        }
        if (term->containsField)
            term->setCompoundField();
        return true;
    }));
}

XmlDocument MainClass::charAdexpToCharXml(const QString& text)
{
    AdexpDoc doc(text);
    doc.setRootField(&msgRules);
    doc.parse();
    return doc.toXMLString();
}
