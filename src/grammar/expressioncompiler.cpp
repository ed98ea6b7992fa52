#include "grammar/expressioncompiler.h"

#include "grammar/termexpression.h"
#include "grammar/termsimple.h"
#include "grammar/termvariable.h"

#include <QObject>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

// The text of a separator that the compiler inserts between two terms.
QString insertedSeparator()
{
    return QStringLiteral("AUTOSEP");
}

// True for the characters that end a word of an expression. White space of any kind is among them,
// since the text of a record is not simplified yet.
bool endsWord(QChar c)
{
    switch (c.unicode()) {
    case u'|':
    case u'!':
    case u'+':
    case u'\'':
    case u'(':
    case u'[':
    case u'{':
        return true;
    default:
        return c.isSpace();
    }
}

// The largest number that is read as a repeat count.
constexpr int MaxRepeatCount = std::numeric_limits<int>::max();

bool isDecimalDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

bool isDecimal(const QString& word)
{
    return std::all_of(word.cbegin(), word.cend(), isDecimalDigit);
}

} // namespace

ExpressionCompiler::ExpressionCompiler(TermExpression* expression, Reporter* reporter, int nesting)
    : m_expression(expression),
      m_text(expression->ExprRuleStr),
      m_terms(expression->ExprList),
      m_operators(expression->OperatorsList),
      m_reporter(reporter),
      m_nesting(nesting),
      m_parsePos(m_text.constData())
{
    m_partRecord.copyParam(&expression->config);
}

void ExpressionCompiler::fullExprList()
{
    if (m_nesting > TermExpression::MaxNesting) {
        m_expression->configErrorMessage(ADEXP_CODE_NESTED_TOO_DEEP,
                                         TermExpression::nestedTooDeepText(), m_reporter);
        return;
    }
    reserveTerms();
    if (compileTerms()) {
        m_expression->valid = isComplete();
        settleOperator();
    }
}

// Reserves memory for all terms at once. Nearly every term follows a blank, which stands for a
// separator. Without this a tenth of the loading time of a large rule set went into growing lists.
void ExpressionCompiler::reserveTerms()
{
    const auto count = 2 * m_text.count(u' ') + 1;
    m_terms.reserve(count);
    m_operators.reserve(count);
}

// Reads the text to its end. False: an error was reported, and compiling stops.
bool ExpressionCompiler::compileTerms()
{
    while (m_parsePos != textEnd()) {
        switch (m_parsePos->unicode()) {
        case u'\'':
            if (!compileLiteral())
                return false;
            break;
        case u'(':
        case u'[':
        case u'{':
            if (!compileGroup(*m_parsePos))
                return false;
            break;
        case u'|':
        case u'!':
        case u'+':
            if (!readOperator())
                return false;
            break;
        case u' ':
            readBlank();
            break;
        default:
            readWord();
        }
    }
    return true;
}

void ExpressionCompiler::readWord()
{
    const QChar* const begin = m_parsePos;
    m_parsePos = std::find_if(m_parsePos, textEnd(), endsWord);
    m_wordBegin = position(begin);
    m_pendingWord.append(begin, static_cast<int>(m_parsePos - begin));
}

bool ExpressionCompiler::compileLiteral()
{
    const int partBegin = position(m_parsePos) + 1;
    const QString literal = get_term(u'\'', u'\'', nullptr, nullptr);
    if (literal.isEmpty())
        return false;
    append_operator(QString());
    appendTerm(std::make_unique<TermSimple>(recordWithText(literal.toUpper(), partBegin)));
    return true;
}

bool ExpressionCompiler::compileGroup(QChar open)
{
    int minCount = -1;
    int maxCount = -1;
    QString inner;
    int bracket = BracketNone;
    const int partBegin = position(m_parsePos) + 1;
    if (open == u'{') {
        bracket = BracketRepeat;
        inner = get_term(open, u'}', &minCount, &maxCount);
    } else {
        const bool optional = open == u'[';
        bracket = optional ? BracketOptional : BracketNone;
        inner = get_term(open, optional ? u']' : u')', nullptr, nullptr);
    }
    if (inner.isEmpty())
        return false;

    // The text as written, before upper-casing: a separator is inserted before "(sep)" but not
    // before "(SEP)"; pinned by `CompilerTable.no_separator_is_inserted_beside_a_written_one`.
    append_operator(inner);
    const int blanks = inner.startsWith(u' ') ? 1 : 0; // not part of the simplified inner text
    std::unique_ptr<TermStd> term =
        compilePart(recordWithText(inner.toUpper(), partBegin + blanks));
    if (!term)
        return false;
    term->bracketType = bracket;
    if (bracket == BracketRepeat)
        term->setRepeatCount(minCount, maxCount, m_reporter);
    appendTerm(std::move(term));
    return true;
}

void ExpressionCompiler::appendTerm(std::unique_ptr<TermStd> term)
{
    m_terms.append(term.get());
    static_cast<void>(term.release()); // not before, since append() may throw
}

// The term for the text in brackets; null after a report.
std::unique_ptr<TermStd> ExpressionCompiler::compilePart(const ConfigInfo* record) const
{
    if (auto standard = std::unique_ptr<TermStd>(m_expression->isStdTerm(record)))
        return standard;
    // A shortcut for a single word, with the same result as the call below. Rules are full of such
    // parts ("[RFL]"), and this saves making an expression for each. The call below reports what is
    // nested too deep.
    const QString& text = record->ruleText;
    const bool isWord = std::none_of(text.cbegin(), text.cend(), endsWord);
    if (isWord && m_nesting < TermExpression::MaxNesting)
        return std::make_unique<TermVariable>(record);
    return std::unique_ptr<TermStd>(
        TermExpression::append_expression(record, false, m_reporter, m_nesting + 1));
}

bool ExpressionCompiler::readOperator()
{
    if (!m_pendingWord.isEmpty()) {
        appendPendingWord();
    } else if (!m_operator.isNull()) {
        errorAt(m_parsePos, ADEXP_CODE_REPEATED_OPERATOR,
                QObject::tr("two statements one after another without the term ") + m_operator +
                    u' ' + *m_parsePos);
        return false;
    } else if (m_terms.isEmpty()) {
        errorAt(m_parsePos, ADEXP_CODE_LEADING_OPERATOR,
                QObject::tr("operator ") + *m_parsePos + QObject::tr(" without the term"));
        return false;
    }
    m_operator = *m_parsePos;
    ++m_parsePos;
    return true;
}

void ExpressionCompiler::readBlank()
{
    ++m_parsePos;
    // A word before a brace may be the minimum count: "2 {DIGIT}".
    const bool braceFollows = m_parsePos != textEnd() && *m_parsePos == u'{';
    if (!braceFollows && !m_pendingWord.isEmpty())
        appendPendingWord();
}

// At the end of the text: is the expression complete?
bool ExpressionCompiler::isComplete()
{
    if (!m_pendingWord.isEmpty()) {
        appendPendingWord();
        return true;
    }
    if (m_terms.isEmpty()) {
        m_expression->configErrorMessage(ADEXP_CODE_EMPTY_EXPRESSION,
                                         QObject::tr("term list is empty"), m_reporter);
        return false;
    }
    if (!m_operator.isNull()) {
        // Only a blank can follow it.
        const QChar* const last = textEnd() - (m_text.endsWith(u' ') ? 2 : 1);
        errorAt(last, ADEXP_CODE_TRAILING_OPERATOR,
                QObject::tr("missing the last term after operator ") + m_operator);
        return false;
    }
    return true;
}

// At the end of the text: all operators must be the same.
void ExpressionCompiler::settleOperator()
{
    if (m_operators.isEmpty())
        return;
    const QChar first = m_operators.at(0);
    m_expression->currentOperator = first;
    const auto different = std::find_if(m_operators.cbegin(), m_operators.cend(),
                                        [first](QChar op) { return op != first; });
    if (different != m_operators.cend()) {
        const auto index = static_cast<int>(different - m_operators.cbegin()) + 1;
        errorAt(beginOfTerm(index), ADEXP_CODE_MIXED_OPERATORS,
                QObject::tr("automatic priority operations are not implemented, please arrange the "
                            "brackets to indicate the priority"));
        m_expression->valid = false;
    }
}

QString ExpressionCompiler::get_term(const QChar& open, const QChar& close, int* minCount,
                                     int* maxCount)
{
    QString inner;
    if (!collectPart(open, close, &inner))
        return QString();

    if (!m_pendingWord.isEmpty()) {
        bool isNumber = false;
        if (minCount) {
            const int number = m_pendingWord.toInt(&isNumber);
            if (isNumber)
                *minCount = number;
            else if (isDecimal(m_pendingWord))
                reportTooLargeCount(m_text.constData() + m_wordBegin, m_pendingWord,
                                    ADEXP_CODE_COUNT_TAKEN_AS_NAME,
                                    QObject::tr(" and is taken for a name"));
        }
        if (isNumber)
            m_pendingWord.clear();
        else
            appendPendingWord();
    }
    if (maxCount)
        *maxCount = readMaxCount();
    return inner;
}

// Collects the text between the opening character at the cursor and its closing one, and moves the
// cursor past it. False: an error was reported.
bool ExpressionCompiler::collectPart(QChar open, QChar close, QString* inner)
{
    const QChar* const begin = m_parsePos + 1;
    const QChar* end = begin;
    // Quotes end at the next quote, since both characters are the same. Only brackets of the same
    // kind count.
    for (int depth = 0; end != textEnd(); ++end) {
        if (*end == close && depth-- == 0)
            break;
        if (*end == open)
            ++depth;
    }
    *inner = QString(begin, static_cast<int>(end - begin));
    if (end == textEnd()) {
        // The spelling is pinned by `CompilerTable.literals`.
        QString text = QObject::tr("no clossing character ") + close;
        if (!inner->isEmpty())
            text += u' ' + *inner;
        errorAt(m_parsePos, ADEXP_CODE_UNCLOSED_BRACKET, text);
        return false;
    }
    if (inner->isEmpty()) {
        errorAt(m_parsePos, ADEXP_CODE_EMPTY_BRACKETS,
                QObject::tr("term in ") + open + close + QObject::tr(" empty"));
        return false;
    }
    m_parsePos = end + 1;
    return true;
}

// Reads the maximum count after a closing brace, -1 if there is none. Digits at the beginning of a
// word ("{DIGIT}5X") are no count; they are left to the word.
int ExpressionCompiler::readMaxCount()
{
    const QChar* begin = m_parsePos;
    while (begin != textEnd() && *begin == u' ')
        ++begin;
    const QChar* end = begin;
    while (end != textEnd() && isDecimalDigit(*end))
        ++end;
    const bool isCount =
        begin != end && (end == textEnd() || QStringView(u" !|+'{([").contains(*end));
    if (!isCount)
        return -1;
    m_parsePos = end;
    const QString digits(begin, static_cast<int>(end - begin));
    bool fits = false;
    const int count = digits.toInt(&fits);
    if (!fits)
        reportTooLargeCount(begin, digits, ADEXP_CODE_COUNT_TOO_LARGE,
                            QObject::tr(" and counts as 0"));
    return fits ? count : 0;
}

void ExpressionCompiler::reportTooLargeCount(const QChar* place, const QString& digits,
                                             adexp_code code, const QString& outcome) const
{
    errorAt(place, code,
            QObject::tr("repeat count %1 is larger than %2").arg(digits).arg(MaxRepeatCount) +
                outcome);
}

void ExpressionCompiler::append_operator(const QString& nextTermText)
{
    if (m_terms.isEmpty())
        return;
    if (!m_operator.isNull() && m_operator != u'+') {
        m_operators.append(m_operator);
        m_operator = QChar();
        return;
    }
    m_operators.append(u'!');
    m_operator = QChar();
    // No separator before a literal (its text is empty here), although there is one after it:
    // "'X' A" allows white space, "A 'X'" does not; pinned by `CompilerTable.literals`.
    if (nextTermText.isEmpty() || nextTermText == QLatin1String("SEP") ||
        m_terms.last()->isSeparator())
        return;
    // A new term each time: a list tells its items by the first required term, and a message can
    // name a separator by its text.
    ConfigInfo nowhere; // it stands nowhere in the rule files
    nowhere.ruleText = insertedSeparator();
    appendTerm(std::make_unique<TermStd>(TermTypeSep, &nowhere));
    m_operators.append(u'!');
}

void ExpressionCompiler::append_variable(const ConfigInfo* record)
{
    append_operator(record->ruleText);
    std::unique_ptr<TermStd> standard(m_expression->isStdTerm(record));
    appendTerm(standard ? std::move(standard) : std::make_unique<TermVariable>(record));
}

void ExpressionCompiler::appendPendingWord()
{
    append_variable(recordWithText(m_pendingWord.toUpper(), m_wordBegin));
    m_pendingWord.clear();
}

const ConfigInfo* ExpressionCompiler::recordWithText(const QString& text, int begin)
{
    m_partRecord.ruleText = text;
    m_partRecord.textBegin = m_expression->config.textBegin + begin;
    return &m_partRecord;
}

int ExpressionCompiler::position(const QChar* place) const
{
    return static_cast<int>(place - m_text.constData());
}

void ExpressionCompiler::errorAt(const QChar* place, adexp_code code, const QString& text) const
{
    m_expression->configErrorMessage(code, text, m_reporter,
                                     m_expression->config.textBegin + position(place));
}

// Where the term at the index begins, bracket included. For an inserted separator: where the term
// after it begins.
const QChar* ExpressionCompiler::beginOfTerm(int index) const
{
    const TermStd* term = m_terms.at(index);
    if (term->isSeparator() && term->ExprRuleStr == insertedSeparator())
        term = m_terms.at(index + 1);
    const QChar* const text = m_text.constData();
    const QChar* const begin = text + (term->config.textBegin - m_expression->config.textBegin);
    const QChar* bracket = begin;
    while (bracket != text && bracket[-1] == u' ')
        --bracket;
    const QStringView brackets = term->type() == TermTypeSimple ? u"'" : u"([{";
    return bracket != text && brackets.contains(bracket[-1]) ? bracket - 1 : begin;
}

const QChar* ExpressionCompiler::textEnd() const
{
    return m_text.constData() + m_text.size();
}
