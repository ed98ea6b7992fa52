#include "message/adexpfield.h"

#include "grammar/match.h"
#include "grammar/termstd.h"
#include "message/adexpdoc.h"
#include "output/xmlwriter.h"
#include "report/linereporter.h"

#include <QObject>
#include <QScopedValueRollback>

#include <algorithm>

namespace {

constexpr const char* LoopDetected = "\"loop detected in the AdexpField\"";

// Fills two names into the text. A place marker in the first one ("-%2") takes the second one as
// well; pinned by the golden case percent-signs-in-names. Qt would complain of a digit beyond ASCII
// there.
QString withNames(const QString& text, QStringView first, QStringView second)
{
    const bool hasForeignDigit = std::any_of(
        first.begin(), first.end(), [](QChar c) { return c.unicode() > 0x7f && c.isDigit(); });
    return hasForeignDigit ? text.arg(first.toString(), second.toString())
                           : text.arg(first.toString()).arg(second.toString());
}

} // namespace

// Where a block ends; a plain field has the defaults.
struct AdexpField::Block
{
    int end = -1;     // position after the name that follows "-END"
    int textEnd = -1; // position of the "-END" word

    bool isList() const { return end != -1; }
};

AdexpField::AdexpField(AdexpDoc* document, QStringView name, const TermStd* term)
    : doc(document),
      fieldTerm(term),
      parentField(nullptr),
      subFields(doc->arena()),
      fieldName(name),
      endBlockPoint(static_cast<int>(document->msgParam.text.size())),
      endTextPoint(endBlockPoint)
{
}

AdexpField::AdexpField(AdexpField* parent, const TermStd* term, QStringView name, int blockLimit,
                       int textLimit)
    : doc(parent->doc),
      fieldTerm(term),
      parentField(parent),
      subFields(doc->arena()),
      fieldName(name),
      endBlockPoint(blockLimit == -1 ? parent->endBlockPoint : blockLimit),
      endTextPoint(blockLimit == -1 ? parent->endTextPoint : textLimit)
{
    if (endBlockPoint >= endTextPoint && endTextPoint >= 0)
        return;
    doc->reporter()->internalError(
        "AdexpField::AdexpField(AdexpField*, TermStd*, const QString&, int, int)",
        QStringLiteral("endTextPoint= %1 endBlockPoint= %2").arg(endTextPoint).arg(endBlockPoint));
    endTextPoint = endBlockPoint;
}

AdexpField::AdexpField(AdexpField* parent, QStringView name)
    : doc(parent->doc), parentField(parent), subFields(doc->arena()), fieldName(name)
{
}

void AdexpField::subFieldsListAppend(AdexpField* sub)
{
    if (isList) {
        // The first field opens the first item whatever it is; later ones ask the definition.
        if (subFields.empty() || (fieldTerm && sub->fieldTerm &&
                                  fieldTerm->isFirstRequiredField(sub->fieldTerm, doc->reporter())))
            ++itemCount;
        sub->itemIndex = itemCount;
    }
    subFields.push_back(sub);
}

AdexpField* AdexpField::searchSubField(QStringView name) const
{
    const auto found =
        std::find_if(subFields.cbegin(), subFields.cend(), [name](const AdexpField* sub) {
            return !sub->dataReady && sub->fieldName == name;
        });
    return found == subFields.cend() ? nullptr : *found;
}

void AdexpField::clearAlreadyDBBeenProcessed()
{
    dataReady = false;
    if (inGetData) {
        doc->reporter()->internalError("void AdexpField::clearAlreadyDBBeenProcessed()",
                                       LoopDetected);
        return;
    }
    const QScopedValueRollback<bool> guard(inGetData, true);
    for (AdexpField* sub : subFields)
        sub->clearAlreadyDBBeenProcessed();
}

// Parsing

void AdexpField::parse()
{
    if (!fieldTerm)
        return;
    doc->setCurrentField(this);
    if (fieldTerm->fieldKind(doc->reporter()) != FieldKind::Compound) {
        parseBasicField();
        return;
    }
    int fieldPos = 0;
    for (;;) {
        const QStringView word = doc->getNextField(endBlockPoint, &fieldPos);
        if (word.isEmpty() || parseFieldWord(word, fieldPos) == Next::Stop)
            return;
    }
}

AdexpField::Next AdexpField::parseFieldWord(QStringView word, int fieldPos)
{
    if (word == u"-COMMENT") {
        doc->getTextFromCurrentToField(endTextPoint);
        return Next::Continue;
    }
    if (word == u"-BEGIN")
        return parseBegin(fieldPos);
    if (word == u"-END")
        return parseEnd();
    return parseField(word.mid(1), fieldPos, Block());
}

AdexpField::Next AdexpField::parseBegin(int fieldPos)
{
    const QStringView name = doc->getNextWord(endBlockPoint, nullptr);
    if (name.isEmpty()) {
        // The "с" of "bloсk" is the Cyrillic letter, and stays so: users know the text in this
        // form; pinned by `FieldTree.BeginAsLastWordIsReported`.
        doc->addError(ADEXP_CODE_MISSING_BLOCK_NAME, QObject::tr("the bloсk is empty"), {});
        return Next::Stop;
    }
    Block block;
    block.end = doc->searchEndBlock(name, endBlockPoint, &block.textEnd);
    if (block.end == -1)
        return parseUnendedBlock(name, fieldPos);
    return parseField(name, fieldPos, block);
}

AdexpField::Next AdexpField::parseUnendedBlock(QStringView name, int fieldPos)
{
    AdexpField* const sub = parentField ? doc->createField(this, name) : nullptr;
    doc->setCurrentField(sub ? sub : this);
    doc->addError(ADEXP_CODE_MISSING_END, QObject::tr("not found the end of the block"), u"-END");
    doc->setCurrentField(this);
    if (!sub)
        return Next::Continue;
    // Inside another field, the block takes all the rest of that field as its data.
    sub->fieldData = doc->getTextFromCurrentToPoint(endTextPoint, endBlockPoint);
    doc->ignoreTextFromCurrentToPoint(endBlockPoint);
    sub->fieldBegin = fieldPos;
    sub->fieldEnd = endBlockPoint;
    subFieldsListAppend(sub);
    return Next::Stop;
}

AdexpField::Next AdexpField::parseEnd()
{
    if (isList) {
        const QStringView end = doc->getNextWord(endBlockPoint, nullptr);
        endWithLastWord();
        if (end.isEmpty()) // "wich" is pinned by `FieldTree.MissingNameBehindEndIsReported`
            doc->addErrorAt(doc->lastRead(), ADEXP_CODE_MISSING_END_NAME,
                            QObject::tr("end block wich out word"), fieldName);
        else if (end != fieldName)
            doc->addError(ADEXP_CODE_WRONG_END_NAME,
                          withNames(QObject::tr("end block %1 but wait %2"), end, fieldName), {});
        return Next::Stop;
    }
    if (parentField)
        return leaveToParent();
    doc->addError(ADEXP_CODE_UNEXPECTED_END,
                  QObject::tr("found the end of the block without the block start"), {});
    return Next::Continue;
}

AdexpField::Next AdexpField::parseField(QStringView name, int fieldPos, const Block& block)
{
    if (const TermStd* const term = fieldTerm->search_TermField(name)) {
        parseKnownField(term, name, fieldPos, block);
        return Next::Continue;
    }
    // A compound field ends at the first field that is not one of its own.
    if (parentField && !isList)
        return leaveToParent();
    parseUnknownField(name, fieldPos, block);
    return Next::Continue;
}

void AdexpField::parseKnownField(const TermStd* term, QStringView name, int fieldPos,
                                 const Block& block)
{
    AdexpField* const sub = doc->createField(this, term, name, block.end, block.textEnd);
    sub->isList = block.isList();
    sub->fieldBegin = fieldPos;
    sub->fieldEnd = block.textEnd;
    subFieldsListAppend(sub);
    sub->parse();
    doc->setCurrentField(this);
}

void AdexpField::parseUnknownField(QStringView name, int fieldPos, const Block& block)
{
    AdexpField* const sub = doc->createField(this, name);
    doc->setCurrentField(sub);
    doc->addError(ADEXP_CODE_UNKNOWN_FIELD,
                  withNames(QObject::tr("rule %1 for %2 not found"), name, fieldName), {});
    doc->setCurrentField(this);
    sub->fieldBegin = fieldPos;
    if (block.isList()) {
        doc->currWordListIt = doc->lastFieldWordListIt;
        sub->fieldData = doc->getTextFromCurrentToPoint(block.end, block.end);
        doc->ignoreTextFromCurrentToPoint(block.end);
        sub->fieldEnd = block.end;
    } else {
        sub->fieldData = doc->getTextFromCurrentToField(endBlockPoint);
        sub->endWithLastWord();
    }
    subFieldsListAppend(sub);
}

// Puts the field word that was read last back: the parent looks it up among its own fields.
AdexpField::Next AdexpField::leaveToParent()
{
    doc->currWordListIt = doc->lastFieldWordListIt;
    endWithLastWord();
    return Next::Stop;
}

void AdexpField::endWithLastWord()
{
    fieldEnd = doc->getLastDWTextEndPoint();
}

void AdexpField::parseBasicField()
{
    if (!isList && fieldTerm->fieldKind(doc->reporter()) != FieldKind::BasicToLimit) {
        fieldData = doc->getTextFromCurrentToField(endTextPoint);
    } else {
        // Field words before the limit are data.
        fieldData = doc->getTextFromCurrentToPoint(endTextPoint, endBlockPoint);
        doc->ignoreTextFromCurrentToPoint(endBlockPoint);
    }
    endWithLastWord();
    if (fieldEnd == -1)
        fieldEnd = endTextPoint;

    Match match(fieldData.size(), doc->reporter());
    const int matched = fieldTerm->match(doc->nullTerminated(fieldData), &match);
    if (match.areStepsExhausted()) {
        doc->addError(ADEXP_CODE_TOO_MANY_STEPS,
                      fieldName.toString() + u' ' +
                          QObject::tr("field takes too many steps to be matched"),
                      fieldData);
        return;
    }
    if (matched >= fieldData.size())
        return;
    // The field keeps its definition with either report; pinned by
    // `BasicField.SurplusDataIsReportedAndDropped` and `BasicField.IncorrectDataIsReportedAndKept`.
    if (matched > 0) {
        doc->addWarning(ADEXP_CODE_SURPLUS_DATA,
                        fieldName.toString() + u' ' +
                            QObject::tr("field contains the extra data is not described in Rule"),
                        fieldData.mid(matched));
        fieldData = fieldData.left(matched);
    } else {
        doc->addError(ADEXP_CODE_INCORRECT_DATA,
                      fieldName.toString() + u' ' + QObject::tr("field contains incorrect data"),
                      fieldData);
    }
}

// Output

QString AdexpField::getData(bool* isSimple)
{
    const auto setSimple = [isSimple](bool simple) {
        if (isSimple)
            *isSimple = simple;
    };
    if (!fieldTerm || !fieldTerm->isContainsCompoundField()) {
        dataReady = true;
        setSimple(true);
        return fieldData.toString();
    }
    if (inGetData) {
        doc->reporter()->internalError("QString AdexpField::getData(bool*)", LoopDetected);
        setSimple(true);
        return fieldData.toString();
    }
    setSimple(false);
    QString result;
    {
        const QScopedValueRollback<bool> guard(inGetData, true);
        for (AdexpField* sub : subFields) {
            bool subIsSimple = false;
            // Sub-fields with data are left out, and those without data give their names, not the
            // other way round; pinned by `FieldData.LeavesOutSubFieldsWithData`.
            if (!sub->getData(&subIsSimple).isEmpty())
                continue;
            if (result.isEmpty())
                result += u' ';
            if (subIsSimple)
                result += sub->fieldName.toString() + u'=';
        }
    }
    dataReady = true;
    return result;
}

void AdexpField::dataToXML(XmlWriter* writer) const
{
    if (fieldName.isEmpty())
        return;
    writer->startElement(fieldName);
    writer->attribute("valid", fieldTerm ? "true" : "false");
    writer->attribute("field_begin", fieldBegin);
    writer->attribute("field_end", fieldEnd);
    writer->attribute("list", isList ? "true" : "false");
    if (!fieldData.isEmpty())
        writer->text(fieldData);

    for (auto it = subFields.cbegin(); it != subFields.cend();) {
        if (!isList) {
            (*it++)->dataToXML(writer);
            continue;
        }
        const auto itemEnd =
            std::find_if(it, subFields.cend(), [index = (*it)->itemIndex](const AdexpField* sub) {
                return sub->itemIndex != index;
            });
        writer->startElement(u"item");
        writer->attribute("field_begin", (*it)->fieldBegin);
        writer->attribute("field_end", (*(itemEnd - 1))->fieldEnd);
        for (; it != itemEnd; ++it)
            (*it)->dataToXML(writer);
        writer->endElement();
    }
    writer->endElement();
}

QString AdexpField::path() const
{
    QString path;
    for (const AdexpField* field = this; field->parentField; field = field->parentField)
        path.prepend(path.isEmpty() ? field->fieldName.toString()
                                    : field->fieldName.toString() + u'/');
    return path;
}

void AdexpField::dumpData() const
{
    dumpData(0);
}

void AdexpField::dumpData(int depth) const
{
    const QString indent = QStringLiteral("   ").repeated(depth);
    const auto writeLine = [](const QString& line) { LineReporter::send(QtDebugMsg, line + u' '); };

    QString line = indent + fieldName.toString() + u' ' + fieldData.toString();
    if (!fieldTerm)
        line += QLatin1String(" : -- <") +
                (parentField ? parentField->fieldName.toString() : QStringLiteral("???")) +
                QLatin1String("> Unknown field --");
    writeLine(line);
    if (subFields.empty())
        return;
    const QString marked =
        QLatin1String(" sub fields for ") + fieldName.toString() + QLatin1String(" ++");
    writeLine(indent + QLatin1String("++ Begin") + marked);
    for (const AdexpField* sub : subFields)
        sub->dumpData(depth + 1);
    writeLine(indent + QLatin1String("++ End") + marked);
}
