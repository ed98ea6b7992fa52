#include "load/mainclass.h"

#include "grammar/definitionnesting.h"
#include "grammar/termexpression.h"
#include "load/qtmemory.h"
#include "load/xmllimits.h"
#include "message/adexpdoc.h"
#include "message/msgrule.h"
#include "report/reporter.h"

#include <QDomDocument>
#include <QFile>
#include <QSettings>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace {

// Reports a finding about a file or record. The line begins with the full signature of the
// operation: scripts of users expect it. Behind it come, quoted, the head and the text.
void report(Reporter* reporter, const char* signature, const ConfigInfo& record, adexp_code code,
            const QString& text, const QString& head = QString())
{
    Finding finding;
    finding.signature = signature;
    finding.record = record;
    finding.detail = record.ruleText;
    finding.code = code;
    finding.text = text;
    finding.head = head;
    reporter->report(finding);
}

ConfigInfo placeOf(const QString& file)
{
    ConfigInfo place;
    place.setXMLFile(file);
    return place;
}

const char* const SetContentSignature =
    "bool MainClass::ruleDomDocumentsetContent(const QString&, QDomDocument*)";
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

// The kind and the text of the finding about a limit.
std::pair<adexp_code, QString> limitFinding(XmlLimits::Limit limit)
{
    switch (limit) {
    case XmlLimits::Limit::Depth:
        return {
            ADEXP_CODE_XML_TOO_DEEP,
            MainClass::tr("elements are nested deeper than %1 levels").arg(XmlLimits::MaxDepth)};
    case XmlLimits::Limit::Attributes:
        return {
            ADEXP_CODE_XML_TOO_MANY_ATTRIBUTES,
            MainClass::tr("an element has more than %1 attributes").arg(XmlLimits::MaxAttributes)};
    case XmlLimits::Limit::TypeSize:
        return {
            ADEXP_CODE_XML_TYPE_TOO_LONG,
            MainClass::tr("the document type is longer than %1 bytes").arg(XmlLimits::MaxTypeSize)};
    default:
        return {ADEXP_CODE_XML_GROWS_TOO_MUCH,
                MainClass::tr("entities, default attributes and namespaces make the content more "
                              "than %1 times as long as the file")
                    .arg(XmlLimits::MaxGrowth)};
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

bool MainClass::readSettingsRules(QSettings* settings, Reporter* reporter)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    settings->setIniCodec("UTF-8"); // the default of later versions of Qt
#endif
    settings->beginGroup(QStringLiteral("rules"));
    const bool isLoaded = readRuleFiles(*settings, reporter);
    settle(reporter);
    return isLoaded;
}

bool MainClass::readRuleFiles(const QSettings& settings, Reporter* reporter)
{
    // Simple terms are checked before any field is loaded, so they cannot refer to fields. The
    // fields of both files are checked together, so they can refer to each other.
    const auto path = [&settings](const char* key) {
        return getPathFromSettings(&settings, QLatin1String(key));
    };
    const auto readTerms = [&](const char* key, const char* tag, bool areFields) {
        return readTermsXMLFile(path(key), QLatin1String(tag), areFields, reporter);
    };
    if (!readTerms("simpleTermsFile", "simpleTerm", false))
        return false;
    termsList_checkConfig(reporter);
    if (!readTerms("subFieldsFile", "SubField", true) ||
        !readTerms("primaryFieldsFile", "PrimaryField", true))
        return false;
    termsList_checkConfig(reporter);
    return readMsgRulesXMLFile(path("msgRulesFile"), reporter);
}

bool MainClass::ruleDomDocumentsetContent(const QString& path, QDomDocument* document,
                                          Reporter* reporter)
{
    ConfigInfo place = placeOf(path);
    const auto fail = [&place, reporter](adexp_code code, const QString& text,
                                         const QString& head = QString()) {
        report(reporter, SetContentSignature, place, code, text, head);
        return false;
    };
    if (path.isEmpty())
        return fail(ADEXP_CODE_MISSING_PATH, tr("file path is empty"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(ADEXP_CODE_UNREADABLE_FILE,
                    tr("can not open file ") + path + tr(" for read: ") + file.errorString());
    const auto failToParse = [&place, &fail](qint64 line, qint64 column, adexp_code code,
                                             const QString& text) {
        place.lineNumber = static_cast<int>(line);
        place.columnNumber = static_cast<int>(column);
        // Nothing stands between column and error text; pinned by
        // `TermFiles.MalformedFileIsReportedTwiceAndFails`.
        return fail(code, text,
                    tr("Parse error at line ") + QString::number(line) + tr(", column ") +
                        QString::number(column));
    };
    const QByteArray content = file.readAll();
    if (const auto excess = XmlLimits::firstExcess(content)) {
        const auto [code, text] = limitFinding(excess->limit);
        return failToParse(excess->line, excess->column, code, text);
    }
    QtMemory::requireForDom(content);
    QString error;
    int line = 0;
    int column = 0;
    return document->setContent(content, true, &error, &line, &column) ||
           failToParse(line, column, ADEXP_CODE_MALFORMED_XML, error);
}

bool MainClass::readTermsXMLFile(const QString& path, const QString& recordTag, bool containsField,
                                 Reporter* reporter)
{
    QDomDocument document;
    if (!ruleDomDocumentsetContent(path, &document, reporter)) {
        report(reporter, ReadTermsSignature, placeOf(path), ADEXP_CODE_FILE_NOT_LOADED,
               tr("can not read ") + recordTag + tr(" records"));
        return false;
    }
    ConfigInfo last = placeOf(path); // the last record with the right tag
    for (const ConfigInfo& record :
         takeRecords(&document, path, QStringLiteral("name"), QStringLiteral("term")))
        readTermRecord(record, recordTag, containsField, &last, reporter);
    return true;
}

void MainClass::readTermRecord(const ConfigInfo& record, const QString& recordTag,
                               bool containsField, ConfigInfo* last, Reporter* reporter)
{
    if (record.tagName != recordTag) {
        // The head names the last record with the right tag, unlike in the message rules; pinned by
        // `TermFiles.WrongTagIsReportedUnderTheRecordBeforeIt`.
        report(reporter, ReadTermsSignature, record, ADEXP_CODE_WRONG_TAG,
               tr("bad tag name ") + record.tagName, last->xmlErrorHead());
        return;
    }
    *last = record;
    if (const TermStd* const previous = termsList_search(&termsList, record.recordName)) {
        report(reporter, ReadTermsSignature, record, ADEXP_CODE_REPEATED_DEFINITION,
               tr("detect replay record, previous record (") +
                   previous->config.xmlErrorHeadShort() + tr(") contains rule \"") +
                   previous->config.ruleText + tr("\" ignored record contains rule \"") +
                   record.ruleText + u'"',
               record.xmlErrorHead());
        return;
    }
    // The compiler has reported a text that does not compile. There is no second report, unlike for
    // the message rules; pinned by
    // `TermFiles.RecordThatDoesNotCompileIsSkippedWithoutAReportOfTheLoader`.
    std::unique_ptr<TermStd> term(TermExpression::append_expression(&record, true, reporter));
    if (!term)
        return;
    term->containsField = containsField;
    appendTo(&termsList, std::move(term));
}

TermStd* MainClass::termsList_search(const TermList* list, const QString& name)
{
    return list->search(name);
}

bool MainClass::readMsgRulesXMLFile(const QString& path, Reporter* reporter)
{
    QDomDocument document;
    if (!ruleDomDocumentsetContent(path, &document, reporter))
        return false;
    for (const ConfigInfo& record :
         takeRecords(&document, path, QStringLiteral("title"), QStringLiteral("fields")))
        readMsgRuleRecord(record, reporter);
    return true;
}

void MainClass::readMsgRuleRecord(const ConfigInfo& record, Reporter* reporter)
{
    // A record with a wrong tag is reported at its own place, unlike in the term files; pinned by
    // `MsgRuleFile.MisnamedRecordIsReportedAtItsOwnPlaceWithItsOwnTitle`.
    const auto reportRule = [&record, reporter](adexp_code code, const QString& text) {
        report(reporter, ReadMsgRulesSignature, record, code, text, record.xmlErrorHead());
    };
    if (record.tagName != QLatin1String("msgRule")) {
        reportRule(ADEXP_CODE_WRONG_TAG, tr("bad tag name ") + record.tagName);
        return;
    }
    if (const MsgRule* const previous = AdexpDoc::search_rule(&msgRules, record.recordName)) {
        reportRule(ADEXP_CODE_REPEATED_RULE,
                   tr("detect replay msgRule ") + record.recordName +
                       tr(" previous msgRule contains fields ") + previous->config.ruleText +
                       tr(" ignored msgRule contains fields ") + record.ruleText);
        return;
    }
    auto rule = std::make_unique<MsgRule>(&record, this, reporter);
    if (!rule->check_config(&termsList, reporter)) {
        reportRule(ADEXP_CODE_RULE_IGNORED,
                   tr("rule \"") + record.ruleText + tr("\" no valid, record ignored"));
        return;
    }
    appendTo(&msgRules, std::move(rule));
}

void MainClass::termsList_checkConfig(Reporter* reporter)
{
    DefinitionNesting nesting(&termsList);
    qDeleteAll(termsList.takeUnless([this, &nesting, reporter](TermStd* term) {
        if (!term->configChecked) {
            if (!nesting.isWithinLimits(term, reporter) ||
                !term->check_config(&termsList, reporter)) {
                // The two blanks are pinned by `Validation.TermWithUnknownReferenceIsRemoved`.
                term->configErrorMessage(ADEXP_CODE_DEFINITION_REMOVED,
                                         tr("term  no valid, entry is removed"), reporter);
                return false;
            }
            term->configChecked = true;
        }
        if (term->containsField)
            term->setCompoundField();
        return true;
    }));
}

void MainClass::settle(Reporter* reporter)
{
    const auto settleItem = [reporter](TermStd* term) {
        if (!term->compoundField && !term->isContainsCompoundField())
            return; // nobody looks for fields in it
        term->settle(reporter);
        if (auto* const expression = dynamic_cast<TermExpression*>(term))
            expression->indexFields();
    };
    std::for_each(termsList.begin(), termsList.end(), settleItem);
    std::for_each(msgRules.begin(), msgRules.end(), settleItem);
}

XmlDocument MainClass::charAdexpToCharXml(const QString& text, Reporter* reporter) const
{
    AdexpDoc doc(text, reporter);
    doc.setRootField(&msgRules);
    doc.parse();
    return doc.toXMLString();
}
