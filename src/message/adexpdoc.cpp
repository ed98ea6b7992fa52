#include "message/adexpdoc.h"

#include "message/msgrule.h"
#include "output/largememory.h"

#include <QObject>

#include <algorithm>
#include <functional>

namespace {

const char* const NullWord = "dw == 0";
const char* const GetNextFieldSignature = "QString AdexpDoc::getNextField(int, int*)";
const char* const SetIteratorSignature = "int AdexpDoc::setIteratorToNextField(int, int)";

} // namespace

AdexpDoc::AdexpDoc(const QString& text, Reporter* reporter)
    : m_arena(m_firstMemory.data(), m_firstMemory.size(), &m_heap), m_reporter(reporter)
{
    msgParam.text = text;
    msgParam.text.remove(u'\r');
    wordListSplit();
    lastFieldWordListIt = currWordListIt = wordList.cbegin();
}

void AdexpDoc::wordListSplit()
{
    splitIntoWords(msgParam.text, &wordList);
}

// Rule and header

const MsgRule* AdexpDoc::search_rule(const RuleList* rules, QStringView title)
{
    return rules ? rules->search(title) : nullptr;
}

void AdexpDoc::setRootField(const RuleList* rules)
{
    rootField = nullptr;
    currWordListIt = wordList.cbegin();

    // Placeholders for the values of a message's envelope, which the library never sees. They are
    // the same in every document; pinned by `OutputDocument.HoldsHeaderFieldsAndMessage`.
    msgParam.rating = QStringLiteral(u"ГГ");
    msgParam.to = QStringLiteral(u"БУДУТ_АДРЕСА_КОМУ");
    msgParam.datatime = QStringLiteral(u"БУДЕТ_ДАТА_ВРЕМЯ");
    msgParam.from = QStringLiteral(u"БУДЕТ_АДРЕС_ОТПРАВИТЕЛЯ");

    const int textEnd = static_cast<int>(msgParam.text.size());
    int pos = 0;
    QStringView field = getNextField(textEnd, &pos);
    while (!field.isEmpty() && field != u"-TITLE") {
        addWarning(ADEXP_CODE_FIELD_BEFORE_TITLE,
                   QObject::tr("begin message still not found, field ") + field.toString() +
                       QObject::tr(" ignored"),
                   {});
        field = getNextField(textEnd, &pos);
    }
    if (field.isEmpty()) {
        addErrorAt(firstWord(), ADEXP_CODE_MISSING_TITLE,
                   QObject::tr("begin message (-TITLE) not found"), {});
        return;
    }
    const QStringView title = getNextWord(textEnd, nullptr);
    rootField = createField(this, title, search_rule(rules, title));
    msgParam.title = title.toString();
    rootField->fieldBegin = pos;
    rootField->fieldEnd = textEnd;
}

void AdexpDoc::parse()
{
    if (rootField)
        rootField->parse();
}

const MsgRule* AdexpDoc::rule() const
{
    if (!rootField || !rootField->fieldTerm || rootField->fieldTerm->type() != TermTypeMsgRule)
        return nullptr;
    return static_cast<const MsgRule*>(rootField->fieldTerm);
}

XmlDocument AdexpDoc::toXMLString()
{
    const MsgRule* const own = rule();
    return own ? own->toXMLString(this) : XmlDocument();
}

// Cursor

// The word at the cursor, which is not at the end. Null, after a report, for a broken list.
const DocWord* AdexpDoc::currentWord(const char* signature) const
{
    if (!currWordListIt->isNull())
        return &*currWordListIt;
    m_reporter->internalError(signature, NullWord);
    return nullptr;
}

QStringView AdexpDoc::getNextWord(int limit, int* beginPoint)
{
    if (atEnd())
        return {};
    const DocWord* const dw = currentWord("QString AdexpDoc::getNextWord(int, int*)");
    if (!dw || dw->beginPoint > limit)
        return {};
    ++currWordListIt;
    if (beginPoint)
        *beginPoint = dw->beginPoint;
    return textOf(dw);
}

void AdexpDoc::undoGetNextWord()
{
    if (currWordListIt == wordList.cbegin()) {
        m_reporter->internalError("void AdexpDoc::undoGetNextWord()",
                                  "currWordListIt == wordList.constBegin()");
        return;
    }
    --currWordListIt;
}

QStringView AdexpDoc::getNextField(int limit, int* beginPoint)
{
    while (!atEnd()) {
        const DocWord* const dw = currentWord(GetNextFieldSignature);
        if (!dw || dw->beginPoint > limit)
            return {};
        lastFieldWordListIt = currWordListIt;
        ++currWordListIt;
        if (!dw->isField) {
            addWarning(ADEXP_CODE_STRAY_WORD, QObject::tr("ignore word"), textOf(dw));
            continue;
        }
        if (dw->size > 1) {
            if (beginPoint)
                *beginPoint = dw->beginPoint;
            return textOf(dw);
        }
        // A lone hyphen: its keyword is the next word.
        if (atEnd())
            return {};
        const DocWord* const keyword = currentWord(GetNextFieldSignature);
        if (!keyword || keyword->beginPoint > limit) {
            currWordListIt = lastFieldWordListIt;
            return {};
        }
        if (keyword->isField) {
            reportLoneHyphen(textOf(dw));
            continue;
        }
        ++currWordListIt;
        if (beginPoint)
            *beginPoint = keyword->beginPoint;
        return joinedWithHyphen(textOf(keyword));
    }
    return {};
}

// The view is valid as long as the document.
QStringView AdexpDoc::joinedWithHyphen(QStringView keyword)
{
    const auto size = static_cast<size_t>(keyword.size()) + 1;
    auto* const joined =
        static_cast<QChar*>(m_arena.allocate(size * sizeof(QChar), alignof(QChar)));
    *joined = u'-';
    std::copy(keyword.begin(), keyword.end(), joined + 1);
    return QStringView(joined, static_cast<int>(size));
}

int AdexpDoc::setIteratorToNextField(int startPoint, int endPoint)
{
    for (; !atEnd(); ++currWordListIt) {
        const DocWord* const dw = currentWord(SetIteratorSignature);
        if (!dw)
            break;
        if (dw->isField && dw->beginPoint >= startPoint)
            return dw->beginPoint;
        if (endPoint > 0 && endPoint < dw->endPoint())
            return endPoint;
    }
    const int textEnd = static_cast<int>(msgParam.text.size());
    return endPoint > 0 && endPoint < textEnd ? endPoint : textEnd;
}

QStringView AdexpDoc::getTextFromCurrentToPoint(int startPoint, int endPoint)
{
    if (atEnd())
        return {};
    const DocWord* const dw = currentWord("QString AdexpDoc::getTextFromCurrentToPoint(int, int)");
    if (!dw)
        return {};
    const int from = dw->beginPoint;
    const int to = setIteratorToNextField(startPoint, endPoint);
    if (to <= from)
        return {};
    QStringView text = QStringView(msgParam.text).mid(from, to - from);
    while (!text.isEmpty() && text.back().isSpace())
        text.chop(1);
    while (!text.isEmpty() && text.front().isSpace())
        text = text.mid(1);
    return text;
}

QStringView AdexpDoc::getTextFromCurrentToField(int endPoint)
{
    return getTextFromCurrentToPoint(0, endPoint);
}

void AdexpDoc::ignoreTextFromCurrentToPoint(int point)
{
    if (!atEnd() && currentWord("void AdexpDoc::ignoreTextFromCurrentToPoint(int)"))
        setIteratorToNextField(point, point);
}

int AdexpDoc::getLastDWTextEndPoint() const
{
    if (currWordListIt == wordList.cbegin())
        return -1;
    const DocWord& dw = *(currWordListIt - 1);
    if (dw.isNull()) {
        m_reporter->internalError("int AdexpDoc::getLastDWTextEndPoint() const", NullWord);
        return -1;
    }
    return dw.endPoint();
}

int AdexpDoc::searchEndBlock(QStringView blockName, int limit, int* endWordPoint)
{
    if (!m_endBlocks)
        m_endBlocks.emplace(&wordList, msgParam.text, &m_arena);
    const auto cursor = static_cast<int>(currWordListIt - wordList.cbegin());
    const auto word = [this](int index) -> const DocWord& {
        return wordList[static_cast<size_t>(index)];
    };
    const EndBlockIndex::Result found = m_endBlocks->search(cursor, blockName, limit);
    for (const int hyphen : found.loneHyphens)
        reportLoneHyphen(textOf(&word(hyphen)));
    if (found.nameWord == -1) {
        if (cursor <= m_endBlocks->nullWord()) {
            // Reading on to the null word would give these two reports.
            m_reporter->internalError(SetIteratorSignature, NullWord);
            m_reporter->internalError(GetNextFieldSignature, NullWord);
        }
        return -1;
    }
    if (endWordPoint)
        *endWordPoint = word(found.endWord).beginPoint;
    return word(found.nameWord).endPoint();
}

// Reports

void AdexpDoc::addError(adexp_code code, const QString& message, QStringView detail)
{
    report(placeOf(detail), code, message, detail, Severity::Error);
}

void AdexpDoc::addWarning(adexp_code code, const QString& message, QStringView detail)
{
    report(placeOf(detail), code, message, detail, Severity::Warning);
}

void AdexpDoc::addErrorAt(QStringView place, adexp_code code, const QString& message,
                          QStringView detail)
{
    report(place, code, message, detail, Severity::Error);
}

void AdexpDoc::reportLoneHyphen(QStringView hyphen)
{
    report(hyphen, ADEXP_CODE_LONE_HYPHEN, QObject::tr("field consists of a single character"), {},
           Severity::Warning);
}

void AdexpDoc::report(QStringView place, adexp_code code, const QString& message,
                      QStringView detail, Severity severity)
{
    isValid = false;
    Finding finding;
    finding.code = code;
    finding.severity = severity;
    finding.text = message;
    finding.detail = detail.toString();
    if (!place.isEmpty()) {
        // cppcheck-suppress mismatchingContainerExpression  // place is a part of the text
        finding.begin = static_cast<int>(place.begin() - QStringView(msgParam.text).begin());
        finding.end = finding.begin + static_cast<int>(place.size());
    }
    if (m_currentField) {
        finding.field = m_currentField->index;
        finding.path = m_currentField->path();
    }
    m_reporter->report(finding);
}

// The detail if it is a part of the text, otherwise what was read last.
QStringView AdexpDoc::placeOf(QStringView detail) const
{
    return isInText(detail) ? detail : lastRead();
}

bool AdexpDoc::isInText(QStringView part) const
{
    const QStringView text(msgParam.text);
    return !part.isEmpty() && std::less_equal<>()(text.begin(), part.begin()) &&
           std::less_equal<>()(part.end(), text.end());
}

QStringView AdexpDoc::lastRead() const
{
    if (currWordListIt == wordList.cbegin())
        return {};
    const auto last = currWordListIt - 1;
    const auto first = std::min(lastFieldWordListIt, last);
    return QStringView(textOf(&*first).begin(), textOf(&*last).end());
}

QStringView AdexpDoc::firstWord() const
{
    return wordList.empty() ? QStringView() : textOf(&wordList.front());
}

const QChar* AdexpDoc::nullTerminated(QStringView data)
{
    m_nullTerminated.resize(static_cast<int>(data.size() + 1));
    QChar* const end = std::copy(data.begin(), data.end(), m_nullTerminated.begin());
    *end = QChar();
    return m_nullTerminated.constData();
}
