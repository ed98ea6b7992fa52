#include "adexpdoc.h"

#include "diagnosticline.h"
#include "largememory.h"
#include "msgrule.h"

#include <QObject>

#include <algorithm>
#include <functional>

namespace {

const char* const NullWord = "dw == 0";
const char* const GetNextFieldSignature = "QString AdexpDoc::getNextField(int, int*)";
const char* const SetIteratorSignature = "int AdexpDoc::setIteratorToNextField(int, int)";

// Between words. Without a branch, so that the compiler can look at many characters at once.
constexpr bool isSeparator(QChar c)
{
    return (c == u' ') | (c == u'\n') | (c == u'\t');
}

// The words that begin in the text: the characters of words that stand behind none. Counted in
// blocks whose count fits into the width of a character, which makes the most of each step.
int countWords(QStringView text)
{
    constexpr qsizetype blockSize = 4096;
    int count = !text.isEmpty() && !isSeparator(text.front());
    for (qsizetype begin = 1; begin < text.size(); begin += blockSize) {
        const QChar* const in = text.data() + begin;
        const qsizetype size = std::min(blockSize, text.size() - begin);
        quint16 blockCount = 0;
        for (qsizetype i = 0; i < size; ++i)
            blockCount =
                static_cast<quint16>(blockCount + (!isSeparator(in[i]) & isSeparator(in[i - 1])));
        count += blockCount;
    }
    return count;
}

} // namespace

AdexpDoc::AdexpDoc(const QString& text)
    : m_arena(m_firstMemory.data(), m_firstMemory.size(), LargeMemory::heap())
{
    msgParam.text = text;
    msgParam.text.remove(u'\r');
    wordListSplit();
    lastFieldWordListIt = currWordListIt = wordList.constBegin();
}

void AdexpDoc::wordListSplit()
{
    const QChar* const begin = msgParam.text.constData();
    const QChar* const end = begin + msgParam.text.size();
    const auto count = static_cast<size_t>(countWords(msgParam.text));
    m_words.reserve(count);
    wordList.resize(static_cast<int>(count));

    const QChar* in = begin;
    for (size_t i = 0; i < count; ++i) {
        const QChar* const wordBegin = std::find_if_not(in, end, isSeparator);
        in = wordBegin;
        while (in != end && !isSeparator(*in))
            ++in;
        m_words.push_back({QStringView(wordBegin, in), static_cast<int>(wordBegin - begin)});
    }
    std::transform(m_words.begin(), m_words.end(), wordList.begin(),
                   [](DocWord& word) { return &word; });
}

// Rule and header

MsgRule* AdexpDoc::search_rule(const RuleList* rules, QStringView title)
{
    return rules ? rules->search(title) : nullptr;
}

void AdexpDoc::setRootField(const RuleList* rules)
{
    rootField = nullptr;
    currWordListIt = wordList.constBegin();

    // Placeholders for the values of a message's envelope, which the library never sees. They are
    // the same in every document, and this is meant.
    msgParam.rating = QStringLiteral(u"ГГ");
    msgParam.to = QStringLiteral(u"БУДУТ_АДРЕСА_КОМУ");
    msgParam.datatime = QStringLiteral(u"БУДЕТ_ДАТА_ВРЕМЯ");
    msgParam.from = QStringLiteral(u"БУДЕТ_АДРЕС_ОТПРАВИТЕЛЯ");

    const int textEnd = static_cast<int>(msgParam.text.size());
    int pos = 0;
    QStringView field = getNextField(textEnd, &pos);
    while (!field.isEmpty() && field != u"-TITLE") {
        addWarning(QObject::tr("begin message still not found, field ") + field.toString() +
                       QObject::tr(" ignored"),
                   {});
        field = getNextField(textEnd, &pos);
    }
    if (field.isEmpty()) {
        addErrorAt(firstWord(), QObject::tr("begin message (-TITLE) not found"), {});
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

QByteArray AdexpDoc::toXMLString()
{
    if (!rootField || !rootField->fieldTerm || rootField->fieldTerm->type() != TermTypeMsgRule)
        return QByteArray();
    return static_cast<const MsgRule*>(rootField->fieldTerm)->toXMLString(this);
}

// Cursor

// The word at the cursor, which is not at the end. Null, after a report, for a broken list.
const DocWord* AdexpDoc::currentWord(const char* signature) const
{
    const DocWord* const dw = *currWordListIt;
    if (!dw)
        DiagnosticLine::internalError(signature, NullWord);
    return dw;
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
    return dw->text;
}

void AdexpDoc::undoGetNextWord()
{
    if (currWordListIt == wordList.constBegin()) {
        DiagnosticLine::internalError("void AdexpDoc::undoGetNextWord()",
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
        if (!dw->isField()) {
            addWarning(QObject::tr("ignore word"), dw->text);
            continue;
        }
        if (dw->text.size() > 1) {
            if (beginPoint)
                *beginPoint = dw->beginPoint;
            return dw->text;
        }
        // A lone hyphen: its keyword is the next word.
        if (atEnd())
            return {};
        const DocWord* const keyword = currentWord(GetNextFieldSignature);
        if (!keyword || keyword->beginPoint > limit) {
            currWordListIt = lastFieldWordListIt;
            return {};
        }
        if (keyword->isField()) {
            reportLoneHyphen(dw->text);
            continue;
        }
        ++currWordListIt;
        if (beginPoint)
            *beginPoint = keyword->beginPoint;
        return m_joinedWords.emplace_front(u'-' + keyword->text.toString());
    }
    return {};
}

int AdexpDoc::setIteratorToNextField(int startPoint, int endPoint)
{
    for (; !atEnd(); ++currWordListIt) {
        const DocWord* const dw = currentWord(SetIteratorSignature);
        if (!dw)
            break;
        if (dw->isField() && dw->beginPoint >= startPoint)
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
    if (currWordListIt == wordList.constBegin())
        return -1;
    const DocWord* const dw = *(currWordListIt - 1);
    if (!dw) {
        DiagnosticLine::internalError("int AdexpDoc::getLastDWTextEndPoint() const", NullWord);
        return -1;
    }
    return dw->endPoint();
}

int AdexpDoc::searchEndBlock(QStringView blockName, int limit, int* endWordPoint)
{
    if (!m_endBlocks)
        m_endBlocks.emplace(&wordList, &m_arena);
    const auto cursor = static_cast<int>(currWordListIt - wordList.constBegin());
    const EndBlockIndex::Result found = m_endBlocks->search(cursor, blockName, limit);
    for (const int hyphen : found.loneHyphens)
        reportLoneHyphen(wordList.at(hyphen)->text);
    if (found.nameWord == -1) {
        if (cursor <= m_endBlocks->nullWord()) {
            // What the two operations that read on to the null word say.
            DiagnosticLine::internalError(SetIteratorSignature, NullWord);
            DiagnosticLine::internalError(GetNextFieldSignature, NullWord);
        }
        return -1;
    }
    if (endWordPoint)
        *endWordPoint = wordList.at(found.endWord)->beginPoint;
    return wordList.at(found.nameWord)->endPoint();
}

// Reports

void AdexpDoc::addError(const QString& message, QStringView detail)
{
    report(placeOf(detail), message, detail, Severity::Error);
}

void AdexpDoc::addWarning(const QString& message, QStringView detail)
{
    report(placeOf(detail), message, detail, Severity::Warning);
}

void AdexpDoc::addErrorAt(QStringView place, const QString& message, QStringView detail)
{
    report(place, message, detail, Severity::Error);
}

void AdexpDoc::reportLoneHyphen(QStringView hyphen)
{
    report(hyphen, QObject::tr("field consists of a single character"), {}, Severity::Warning);
}

void AdexpDoc::report(QStringView place, const QString& message, QStringView detail,
                      Severity severity)
{
    isValid = false;
    DiagnosticLine line(QtDebugMsg);
    line.quoted(message);
    if (!detail.isEmpty())
        line.quoted(detail);
    Finding finding;
    finding.severity = severity;
    finding.text = message;
    finding.detail = detail.toString();
    if (!place.isEmpty()) {
        // cppcheck-suppress mismatchingContainerExpression  // place is a part of the text
        finding.begin = static_cast<int>(place.begin() - QStringView(msgParam.text).begin());
        finding.end = finding.begin + static_cast<int>(place.size());
    }
    line.send(finding);
}

// The detail, if it was cut out of the text, else what was read last.
QStringView AdexpDoc::placeOf(QStringView detail) const
{
    const QStringView text(msgParam.text);
    const bool isInText = !detail.isEmpty() && std::less_equal<>()(text.begin(), detail.begin()) &&
                          std::less_equal<>()(detail.end(), text.end());
    return isInText ? detail : lastRead();
}

QStringView AdexpDoc::lastRead() const
{
    if (currWordListIt == wordList.constBegin())
        return {};
    const DocWord* const last = *(currWordListIt - 1);
    const DocWord* const first = *std::min(lastFieldWordListIt, currWordListIt - 1);
    return QStringView(first->text.begin(), last->text.end());
}

QStringView AdexpDoc::firstWord() const
{
    return wordList.isEmpty() || !wordList.front() ? QStringView() : wordList.front()->text;
}

const QChar* AdexpDoc::nullTerminated(QStringView data)
{
    m_nullTerminated.resize(static_cast<int>(data.size() + 1));
    QChar* const end = std::copy(data.begin(), data.end(), m_nullTerminated.begin());
    *end = QChar();
    return m_nullTerminated.constData();
}
