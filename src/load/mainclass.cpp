#include "load/mainclass.h"

#include "grammar/definitionnesting.h"
#include "grammar/termexpression.h"
#include "load/rulefilereader.h"
#include "message/adexpdoc.h"
#include "message/msgrule.h"
#include "report/reporter.h"

#include <QSettings>

#include <algorithm>
#include <memory>
#include <utility>

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

bool MainClass::ruleDomDocumentsetContent(const QString& path, RuleFileReader* reader,
                                          Reporter* reporter)
{
    if (reader->read(path))
        return true;
    const auto& [code, text, place] = reader->fault;
    ConfigInfo record = placeOf(path);
    record.setXMLData(place.line, place.column, QString());
    QString head;
    // Nothing stands between column and error text; pinned by
    // `TermFiles.MalformedFileIsReportedTwiceAndFails`.
    if (place.line > 0)
        head = tr("Parse error at line ") + QString::number(place.line) + tr(", column ") +
               QString::number(place.column);
    report(reporter, SetContentSignature, record, code, text, head);
    return false;
}

bool MainClass::readRecords(const QString& path, const QString& tag,
                            const std::function<void(const RuleRecord&)>& use, Reporter* reporter)
{
    RuleFileReader reader(tag, keptRecords != nullptr);
    if (!ruleDomDocumentsetContent(path, &reader, reporter))
        return false;
    for (RuleRecord& record : reader.records) {
        if (record.isActive)
            use(record);
        if (keptRecords)
            keptRecords->push_back(std::move(record));
    }
    return true;
}

bool MainClass::readTermsXMLFile(const QString& path, const QString& recordTag, bool containsField,
                                 Reporter* reporter)
{
    ConfigInfo last = placeOf(path); // the last record with the right tag
    const auto readRecord = [&](const RuleRecord& record) {
        readTermRecord(record, containsField, &last, reporter);
    };
    if (readRecords(path, recordTag, readRecord, reporter))
        return true;
    report(reporter, ReadTermsSignature, placeOf(path), ADEXP_CODE_FILE_NOT_LOADED,
           tr("can not read ") + recordTag + tr(" records"));
    return false;
}

void MainClass::readTermRecord(const RuleRecord& record, bool containsField, ConfigInfo* last,
                               Reporter* reporter)
{
    if (record.isForeign) {
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
    const auto readRecord = [&](const RuleRecord& record) { readMsgRuleRecord(record, reporter); };
    return readRecords(path, QStringLiteral("msgRule"), readRecord, reporter);
}

void MainClass::readMsgRuleRecord(const RuleRecord& record, Reporter* reporter)
{
    // A record with a wrong tag is reported at its own place, unlike in the term files; pinned by
    // `MsgRuleFile.MisnamedRecordIsReportedAtItsOwnPlaceWithItsOwnTitle`.
    const auto reportRule = [&record, reporter](adexp_code code, const QString& text) {
        report(reporter, ReadMsgRulesSignature, record, code, text, record.xmlErrorHead());
    };
    if (record.isForeign) {
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
