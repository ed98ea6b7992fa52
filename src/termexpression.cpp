#include "termexpression.h"

#include "diagnosticline.h"
#include "termsimple.h"
#include "termvariable.h"

#include <QObject>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

// The text of a separator that the compiler has put between two terms.
constexpr const char* InsertedSeparator = "AUTOSEP";

// True for the characters that no word of an expression holds. Texts of records may hold any white
// space, before it is simplified to blanks.
bool endsWord(QChar c)
{
    return c.isSpace() || QStringView(u"|!+'([{").contains(c);
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

TermExpression::TermExpression(const ConfigInfo* record, int nesting, NotCompiled)
    : TermStd(record), m_nesting(nesting)
{
    ExprRuleStr = record->ruleText.simplified();
}

// Compiles in a constructor that calls another one: then the terms made so far are deleted if
// memory runs out.
TermExpression::TermExpression(const ConfigInfo* record, int nesting)
    : TermExpression(record, nesting, NotCompiled())
{
    fullExprList();
}

TermExpression::~TermExpression()
{
    qDeleteAll(ExprList);
}

QString TermExpression::nestedTooDeepText()
{
    return QObject::tr("brackets and references are nested deeper than %1 levels").arg(MaxNesting);
}

int TermExpression::type() const
{
    return TermTypeExpression;
}

// Structure queries

int TermExpression::calculateOfLengthData(bool withRepeat) const
{
    // In 64 bits, cut to 32 at the end: an overflow has a defined outcome.
    qint64 length = 0;
    for (const TermStd* term : ExprList) {
        const int termLength = term->calculateOfLengthData(true);
        length = isChoice() ? std::max<qint64>(length, termLength) : length + termLength;
    }
    const int total = static_cast<int>(length);
    return withRepeat ? lengthTimesMaxRepeat(total) : total;
}

bool TermExpression::check_config(const TermList* termsList)
{
    for (TermStd* term : std::as_const(ExprList)) {
        if (!term->configChecked) {
            term->check_config(termsList);
            term->configChecked = true;
        }
        if (!term->valid)
            valid = false;
    }
    if (valid) {
        updateSteps();
        collectFirstChars();
    }
    return valid;
}

// In a sequence these are the characters of the terms up to the first one that must be there; a
// separator may be left out with the optional term before it.
void TermExpression::collectFirstChars()
{
    firstChars = FirstChars();
    bool afterOptional = false;
    for (const Step& step : m_steps) {
        firstChars.add(step.firstChars);
        const bool optional = !step.required || (afterOptional && step.isSeparator);
        if (!isChoice() && !optional)
            return;
        afterOptional = !step.required;
    }
}

TermStd* TermExpression::search_TermField(QStringView name) const
{
    if (m_termsByText.isEmpty()) {
        TermIndex whole; // a part of it, made when memory ran out, must not stay
        indexTerms(&whole);
        m_termsByText = std::move(whole);
    }
    return m_termsByText.find(name);
}

void TermExpression::indexTerms(TermIndex* index) const
{
    for (TermStd* term : ExprList) {
        index->insert(term->ExprRuleStr, term);
        if (term->type() == TermTypeExpression)
            static_cast<const TermExpression*>(term)->indexTerms(index);
    }
}

bool TermExpression::isContainsField() const
{
    return containsField ||
           std::any_of(ExprList.cbegin(), ExprList.cend(),
                       [](const TermStd* term) { return term->isContainsField(); });
}

void TermExpression::setCompoundField()
{
    if (std::any_of(ExprList.cbegin(), ExprList.cend(),
                    [](const TermStd* term) { return term->isContainsField(); }))
        compoundField = true;
}

bool TermExpression::isContainsCompoundField() const
{
    return std::any_of(ExprList.cbegin(), ExprList.cend(), [](const TermStd* term) {
        return term->compoundField || term->isContainsCompoundField();
    });
}

bool TermExpression::isFirstRequiredField(const TermStd* field) const
{
    // A choice is walked like a sequence: a required alternative hides those behind it. This is
    // meant; lists write their alternatives as optional terms.
    for (const TermStd* term : ExprList) {
        if (term == field || term->isFirstRequiredField(field))
            return true;
        if (term->isRequired())
            return false;
    }
    DiagnosticLine::internalError(
        "virtual bool TermExpression::isFirstRequiredField(const TermStd*) const",
        "check_term not found");
    return false;
}

// Matching

bool TermExpression::isChoice() const
{
    return !OperatorsList.isEmpty() && OperatorsList.at(0) == u'|';
}

int TermExpression::real_parse(const QChar* data)
{
    return isChoice() ? parse_by_operator_or(data) : parse_by_operator_and(data);
}

// What stands behind references without a repeat count of their own: a check has resolved them, and
// has refused loops.
TermStd* TermExpression::referredTerm(TermStd* term)
{
    while (term->type() == TermTypeVariable && term->bracketType != BracketRepeat) {
        TermStd* const next = static_cast<const TermVariable*>(term)->simpleTerm;
        if (!next)
            break;
        term = next;
    }
    return term;
}

const std::vector<TermExpression::Step>& TermExpression::steps() const
{
    if (m_steps.size() != static_cast<size_t>(ExprList.size()))
        updateSteps(); // not checked yet
    return m_steps;
}

void TermExpression::updateSteps() const
{
    m_steps.clear();
    m_steps.reserve(static_cast<size_t>(ExprList.size()));
    for (TermStd* term : ExprList)
        m_steps.push_back(
            {firstCharsOf(term), referredTerm(term), term->isRequired(), term->isSeparator()});
}

int TermExpression::parse_by_operator_or(const QChar* data) const
{
    int longest = 0;
    for (const Step& step : steps()) {
        if (step.firstChars.contains(*data))
            longest = std::max(longest, step.term->parse(data));
    }
    return longest;
}

int TermExpression::parse_by_operator_and(const QChar* data) const
{
    int pos = 0;
    const Step* step = steps().data();
    const Step* const end = step + m_steps.size();
    for (; step != end && !data[pos].isNull(); ++step) {
        const int matched =
            step->firstChars.contains(data[pos]) ? step->term->parse(data + pos) : 0;
        if (step->required) {
            if (matched == 0)
                return 0;
        } else if (step + 1 != end && step[1].isSeparator && parse_sep(data + pos + matched) == 0) {
            // An optional term without the separator that has to follow it counts as absent, and
            // the separator with it, even where the optional term has matched: this is meant, and
            // it holds at the end of the text as well.
            ++step;
            continue;
        }
        pos += matched;
    }
    // The text is used up: what is left must not be required. Separators never are.
    const bool complete =
        std::all_of(step, end, [](const Step& left) { return left.isSeparator || !left.required; });
    return complete ? pos : 0;
}

// Dump

QString TermExpression::dumpData(bool topLevel) const
{
    QString body;
    for (int i = 0; i < ExprList.size(); ++i) {
        body += ExprList.at(i)->dumpData(false);
        if (i + 1 == ExprList.size())
            break;
        QChar op = u'?';
        if (i < OperatorsList.size()) {
            op = OperatorsList.at(i);
        } else {
            DiagnosticLine(QtCriticalMsg)
                .plain("virtual QString TermExpression::dumpData(bool) const")
                .plain("i = ")
                .number(i)
                .plain("OperatorsList.length() = ")
                .number(OperatorsList.size())
                .send();
        }
        body += u' ';
        body += op;
        body += u' ';
    }
    const QString text =
        QLatin1String("<TermExpression>") + body + QLatin1String("</TermExpression>");
    if (minRepeat != -1 || maxRepeat != -1)
        return dumpDataSetMaxMin(text);
    return topLevel ? text : u'(' + text + u')';
}

// Compiling

TermStd* TermExpression::append_expression(const ConfigInfo* record, bool forceUnwrap, int nesting)
{
    auto expression = std::make_unique<TermExpression>(record, nesting);
    if (!expression->valid)
        return nullptr;
    if (expression->ExprList.size() > 1)
        return expression.release();

    TermStd* const single = expression->get_first_term();
    if (!single) {
        DiagnosticLine(QtCriticalMsg)
            .plain("static TermStd* TermExpression::append_expression(const ConfigInfo*, bool)")
            .plain("expr->exprList_count() = ")
            .number(expression->ExprList.size())
            .plain("but expr->take_first_term() = 0")
            .send();
        return nullptr;
    }
    if (!forceUnwrap &&
        (single->bracketType != BracketNone || single->minRepeat != -1 || single->maxRepeat != -1))
        return expression.release();
    expression->erase_first_term();
    return single;
}

TermStd* TermExpression::isStdTerm(const ConfigInfo* record) const
{
    static constexpr struct
    {
        const char* keyword;
        TermType kind;
    } Keywords[] = {
        {"CHARACTER", TermTypeCharacter},
        {"ALPHANUM", TermTypeAlphanum},
        {"ALPHA", TermTypeAlpha},
        {"DIGIT", TermTypeDigit},
        {"LIM_CHAR", TermTypeLimChar},
        {"SEP", TermTypeSep},
        {"NIL", TermTypeNil},
    };
    for (const auto& entry : Keywords) {
        if (record->ruleText == QLatin1String(entry.keyword))
            return new TermStd(entry.kind, record);
    }
    return nullptr;
}

TermStd* TermExpression::get_first_term()
{
    return ExprList.isEmpty() ? nullptr : ExprList.first();
}

void TermExpression::erase_first_term()
{
    if (ExprList.isEmpty()) {
        DiagnosticLine::internalError("void TermExpression::erase_first_term()",
                                      "it == ExprList.end()");
        return;
    }
    ExprList.removeFirst();
}

ConfigInfo TermExpression::recordWithText(const QString& text, int begin) const
{
    ConfigInfo record;
    record.copyParam(&config);
    record.ruleText = text;
    record.textBegin = config.textBegin + begin;
    return record;
}

int TermExpression::position(const QChar* place) const
{
    return static_cast<int>(place - ExprRuleStr.constData());
}

void TermExpression::errorAt(const QChar* place, const QString& text) const
{
    Finding finding;
    finding.begin = config.textBegin + position(place);
    configErrorMessage(text, finding);
}

// Where the term at the index begins with its bracket, or the one behind it if that is an inserted
// separator.
const QChar* TermExpression::beginOfTerm(int index) const
{
    const TermStd* term = ExprList.at(index);
    if (term->isSeparator() && term->ExprRuleStr == QLatin1String(InsertedSeparator))
        term = ExprList.at(index + 1);
    const QChar* const text = ExprRuleStr.constData();
    const QChar* const begin = text + (term->config.textBegin - config.textBegin);
    const QChar* bracket = begin;
    while (bracket != text && bracket[-1] == u' ')
        --bracket;
    const QStringView brackets = term->type() == TermTypeSimple ? u"'" : u"([{";
    return bracket != text && brackets.contains(bracket[-1]) ? bracket - 1 : begin;
}

const QChar* TermExpression::textEnd() const
{
    return ExprRuleStr.constData() + ExprRuleStr.size();
}

void TermExpression::fullExprList()
{
    if (m_nesting > MaxNesting) {
        configErrorMessage(nestedTooDeepText());
        return;
    }
    reserveTerms();
    parsePos = ExprRuleStr.constData();
    QString pendingWord; // a word read but not yet appended: a count may turn out of it
    if (compileTerms(&pendingWord)) {
        valid = isComplete(&pendingWord);
        settleOperator();
    }
}

// Makes room for the terms at once. Nearly every term stands behind a blank, and a separator before
// it. Without this a tenth of the loading of a large rule set went into lists that grow.
void TermExpression::reserveTerms()
{
    const auto count = 2 * ExprRuleStr.count(u' ') + 1;
    ExprList.reserve(count);
    OperatorsList.reserve(count);
}

// Reads the text up to its end. False: an error was reported, and compiling stops.
bool TermExpression::compileTerms(QString* pendingWord)
{
    while (parsePos != textEnd()) {
        switch (parsePos->unicode()) {
        case u'\'':
            if (!compileLiteral(pendingWord))
                return false;
            break;
        case u'(':
        case u'[':
        case u'{':
            if (!compileGroup(*parsePos, pendingWord))
                return false;
            break;
        case u'|':
        case u'!':
        case u'+':
            if (!readOperator(pendingWord))
                return false;
            break;
        case u' ':
            readBlank(pendingWord);
            break;
        default:
            readWord(pendingWord);
        }
    }
    return true;
}

void TermExpression::readWord(QString* pendingWord)
{
    const QChar* const begin = parsePos;
    parsePos = std::find_if(parsePos, textEnd(), endsWord);
    m_wordBegin = position(begin);
    pendingWord->append(begin, static_cast<int>(parsePos - begin));
}

bool TermExpression::compileLiteral(QString* pendingWord)
{
    const int partBegin = position(parsePos) + 1;
    const QString literal = get_term(u'\'', u'\'', pendingWord, nullptr, nullptr);
    if (literal.isEmpty())
        return false;
    append_operator(QString());
    const ConfigInfo record = recordWithText(literal.toUpper(), partBegin);
    appendTerm(std::make_unique<TermSimple>(&record));
    return true;
}

bool TermExpression::compileGroup(QChar open, QString* pendingWord)
{
    int minCount = -1;
    int maxCount = -1;
    QString inner;
    int bracket = BracketNone;
    const int partBegin = position(parsePos) + 1;
    if (open == u'{') {
        bracket = BracketRepeat;
        inner = get_term(open, u'}', pendingWord, &minCount, &maxCount);
    } else {
        const bool optional = open == u'[';
        bracket = optional ? BracketOptional : BracketNone;
        inner = get_term(open, optional ? u']' : u')', pendingWord, nullptr, nullptr);
    }
    if (inner.isEmpty())
        return false;

    // The text as written, before upper-casing: "(sep)" is preceded by a separator, "(SEP)" is not.
    // This is meant.
    append_operator(inner);
    const int blanks = inner.startsWith(u' ') ? 1 : 0; // not part of the simplified inner text
    const ConfigInfo record = recordWithText(inner.toUpper(), partBegin + blanks);
    std::unique_ptr<TermStd> term = compilePart(&record);
    if (!term)
        return false;
    term->bracketType = bracket;
    if (bracket == BracketRepeat)
        term->setRepeatCount(minCount, maxCount);
    appendTerm(std::move(term));
    return true;
}

void TermExpression::appendTerm(std::unique_ptr<TermStd> term)
{
    ExprList.append(term.get());
    static_cast<void>(term.release()); // only now, since append() may throw
}

// The term for what stands in brackets; null after a report.
std::unique_ptr<TermStd> TermExpression::compilePart(const ConfigInfo* record) const
{
    if (auto standard = std::unique_ptr<TermStd>(isStdTerm(record)))
        return standard;
    // A single word becomes the same as by the way below. Rules are full of such parts ("[RFL]"),
    // and without an expression made and unmade for each the embedded rules load in 9/10 of the
    // time.
    const QString& text = record->ruleText;
    const bool isWord = std::none_of(text.cbegin(), text.cend(), endsWord);
    if (isWord && m_nesting < MaxNesting)
        return std::make_unique<TermVariable>(record);
    return std::unique_ptr<TermStd>(append_expression(record, false, m_nesting + 1));
}

bool TermExpression::readOperator(QString* pendingWord)
{
    if (!pendingWord->isEmpty()) {
        appendPendingWord(pendingWord);
    } else if (!currentOperator.isNull()) {
        errorAt(parsePos, QObject::tr("two statements one after another without the term ") +
                              currentOperator + u' ' + *parsePos);
        return false;
    } else if (ExprList.isEmpty()) {
        errorAt(parsePos, QObject::tr("operator ") + *parsePos + QObject::tr(" without the term"));
        return false;
    }
    currentOperator = *parsePos;
    ++parsePos;
    return true;
}

void TermExpression::readBlank(QString* pendingWord)
{
    ++parsePos;
    // Before a brace the word may be the minimum count: "2 {DIGIT}".
    const bool braceFollows = parsePos != textEnd() && *parsePos == u'{';
    if (!braceFollows && !pendingWord->isEmpty())
        appendPendingWord(pendingWord);
}

// At the end of the text: is the expression complete?
bool TermExpression::isComplete(QString* pendingWord)
{
    if (!pendingWord->isEmpty()) {
        appendPendingWord(pendingWord);
        return true;
    }
    if (ExprList.isEmpty()) {
        configErrorMessage(QObject::tr("term list is empty"));
        return false;
    }
    if (!currentOperator.isNull()) {
        // Nothing but a blank can stand behind it.
        const QChar* const last = textEnd() - (ExprRuleStr.endsWith(u' ') ? 2 : 1);
        errorAt(last, QObject::tr("missing the last term after operator ") + currentOperator);
        return false;
    }
    return true;
}

// At the end of the text: the operators must be all the same.
void TermExpression::settleOperator()
{
    currentOperator = OperatorsList.isEmpty() ? QChar() : OperatorsList.at(0);
    const auto different = std::find_if(OperatorsList.cbegin(), OperatorsList.cend(),
                                        [this](QChar op) { return op != currentOperator; });
    if (different != OperatorsList.cend()) {
        const auto index = static_cast<int>(different - OperatorsList.cbegin()) + 1;
        errorAt(beginOfTerm(index),
                QObject::tr("automatic priority operations are not implemented, please arrange the "
                            "brackets to indicate the priority"));
        valid = false;
    }
}

QString TermExpression::get_term(const QChar& open, const QChar& close, QString* pendingWord,
                                 int* minCount, int* maxCount)
{
    QString inner;
    if (!collectPart(open, close, &inner))
        return QString();

    if (!pendingWord->isEmpty()) {
        bool isNumber = false;
        if (minCount) {
            const int number = pendingWord->toInt(&isNumber);
            if (isNumber)
                *minCount = number;
            else if (isDecimal(*pendingWord))
                reportTooLargeCount(ExprRuleStr.constData() + m_wordBegin, *pendingWord,
                                    QObject::tr(" and is taken for a name"));
        }
        if (isNumber)
            pendingWord->clear();
        else
            appendPendingWord(pendingWord);
    }
    if (maxCount)
        *maxCount = readMaxCount();
    return inner;
}

// Collects what stands between the opening character at the cursor and its closing one, and moves
// the cursor behind it. False: an error was reported.
bool TermExpression::collectPart(QChar open, QChar close, QString* inner)
{
    const QChar* const begin = parsePos + 1;
    const QChar* end = begin;
    // Of quotes the first one closes, as open and close are the same. Only brackets of the same
    // kind count.
    for (int depth = 0; end != textEnd(); ++end) {
        if (*end == close && depth-- == 0)
            break;
        if (*end == open)
            ++depth;
    }
    *inner = QString(begin, static_cast<int>(end - begin));
    if (end == textEnd()) {
        QString text = QObject::tr("no clossing character ") + close; // the spelling is meant
        if (!inner->isEmpty())
            text += u' ' + *inner;
        errorAt(parsePos, text);
        return false;
    }
    if (inner->isEmpty()) {
        errorAt(parsePos, QObject::tr("term in ") + open + close + QObject::tr(" empty"));
        return false;
    }
    parsePos = end + 1;
    return true;
}

// Reads the maximum count behind a closing brace, -1 if there is none. Digits that run on into a
// word ("{DIGIT}5X") are no count and stay for the word.
int TermExpression::readMaxCount()
{
    const QChar* begin = parsePos;
    while (begin != textEnd() && *begin == u' ')
        ++begin;
    const QChar* end = begin;
    while (end != textEnd() && isDecimalDigit(*end))
        ++end;
    const bool isCount =
        begin != end && (end == textEnd() || QStringView(u" !|+'{([").contains(*end));
    if (!isCount)
        return -1;
    parsePos = end;
    const QString digits(begin, static_cast<int>(end - begin));
    bool fits = false;
    const int count = digits.toInt(&fits);
    if (!fits)
        reportTooLargeCount(begin, digits, QObject::tr(" and counts as 0"));
    return fits ? count : 0;
}

void TermExpression::reportTooLargeCount(const QChar* place, const QString& digits,
                                         const QString& outcome) const
{
    errorAt(place,
            QObject::tr("repeat count %1 is larger than %2").arg(digits).arg(MaxRepeatCount) +
                outcome);
}

void TermExpression::append_operator(const QString& nextTermText)
{
    if (ExprList.isEmpty())
        return;
    if (!currentOperator.isNull() && currentOperator != u'+') {
        OperatorsList.append(currentOperator);
        currentOperator = QChar();
        return;
    }
    OperatorsList.append(u'!');
    currentOperator = QChar();
    // No separator before a literal (whose text comes empty here), although there is one behind it:
    // "'X' A" allows white space, "A 'X'" does not. This is meant.
    if (nextTermText.isEmpty() || nextTermText == QLatin1String("SEP") ||
        ExprList.last()->isSeparator())
        return;
    static const ConfigInfo record = [] {
        ConfigInfo nowhere; // it stands nowhere in the rule files
        nowhere.ruleText = QLatin1String(InsertedSeparator);
        return nowhere;
    }();
    appendTerm(std::make_unique<TermStd>(TermTypeSep, &record));
    OperatorsList.append(u'!');
}

void TermExpression::append_variable(const ConfigInfo* record)
{
    append_operator(record->ruleText);
    std::unique_ptr<TermStd> standard(isStdTerm(record));
    appendTerm(standard ? std::move(standard) : std::make_unique<TermVariable>(record));
}

void TermExpression::appendPendingWord(QString* pendingWord)
{
    const ConfigInfo record = recordWithText(pendingWord->toUpper(), m_wordBegin);
    append_variable(&record);
    pendingWord->clear();
}
