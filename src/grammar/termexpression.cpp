#include "grammar/termexpression.h"

#include "grammar/expressioncompiler.h"
#include "grammar/termvariable.h"
#include "report/linereporter.h"

#include <QObject>

#include <algorithm>
#include <memory>
#include <utility>

TermExpression::TermExpression(const ConfigInfo* record, NotCompiled) : TermStd(record)
{
    ExprRuleStr = record->ruleText.simplified();
}

// Calls another constructor first: if memory runs out while compiling, the destructor then deletes
// the terms made so far.
TermExpression::TermExpression(const ConfigInfo* record, Reporter* reporter, int nesting)
    : TermExpression(record, NotCompiled())
{
    ExpressionCompiler(this, reporter, nesting).fullExprList();
}

TermExpression::~TermExpression()
{
    qDeleteAll(ExprList);
}

QString TermExpression::nestedTooDeepText()
{
    return QObject::tr("brackets and references are nested deeper than %1 levels").arg(MaxNesting);
}

TermStd* TermExpression::append_expression(const ConfigInfo* record, bool forceUnwrap,
                                           Reporter* reporter, int nesting)
{
    auto expression = std::make_unique<TermExpression>(record, reporter, nesting);
    if (!expression->valid)
        return nullptr;
    if (expression->ExprList.size() > 1)
        return expression.release();

    TermStd* const single = expression->get_first_term();
    if (!single) {
        reporter->internalError(
            "static TermStd* TermExpression::append_expression(const ConfigInfo*, bool)",
            QStringLiteral("expr->exprList_count() =  %1 but expr->take_first_term() = 0")
                .arg(expression->ExprList.size()));
        return nullptr;
    }
    if (!forceUnwrap &&
        (single->bracketType != BracketNone || single->minRepeat != -1 || single->maxRepeat != -1))
        return expression.release();
    expression->erase_first_term(reporter);
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

void TermExpression::erase_first_term(Reporter* reporter)
{
    if (ExprList.isEmpty()) {
        reporter->internalError("void TermExpression::erase_first_term()", "it == ExprList.end()");
        return;
    }
    ExprList.removeFirst();
}

int TermExpression::type() const
{
    return TermTypeExpression;
}

// Structure queries

int TermExpression::calculateOfLengthData(bool withRepeat) const
{
    // In 64 bits, cut to 32 at the end: an overflow has a defined result.
    qint64 length = 0;
    for (const TermStd* term : ExprList) {
        const int termLength = term->calculateOfLengthData(true);
        length = isChoice() ? std::max<qint64>(length, termLength) : length + termLength;
    }
    const int total = static_cast<int>(length);
    return withRepeat ? lengthTimesMaxRepeat(total) : total;
}

bool TermExpression::check(Check* check)
{
    for (TermStd* term : std::as_const(ExprList)) {
        if (!term->configChecked) {
            term->check(check);
            term->configChecked = true;
        }
        if (!term->valid)
            valid = false;
    }
    if (valid) {
        m_steps = makeSteps();
        collectFirstChars();
    }
    return valid;
}

// In a sequence: the characters of the terms up to the first required one. A separator may be
// absent together with the optional term before it.
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

void TermExpression::settle(Reporter* reporter)
{
    for (TermStd* term : std::as_const(ExprList))
        term->settle(reporter);
    TermStd::settle(reporter);
}

void TermExpression::indexFields()
{
    TermIndex whole; // a part of it, made when memory ran out, must not stay
    whole.reserve(static_cast<size_t>(ExprList.size()));
    indexTerms(&whole);
    m_termsByText = std::move(whole);
}

const TermStd* TermExpression::search_TermField(QStringView name) const
{
    if (!m_termsByText.isEmpty())
        return m_termsByText.find(name);
    for (const TermStd* term : ExprList) {
        if (term->ExprRuleStr == name)
            return term;
        if (term->type() != TermTypeExpression)
            continue;
        if (const TermStd* const found = term->search_TermField(name))
            return found;
    }
    return nullptr;
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

bool TermExpression::isFirstRequiredField(const TermStd* field, Reporter* reporter) const
{
    // A choice is treated like a sequence: a required alternative hides those after it; pinned by
    // `ExpressionFirstField.walk_stops_at_the_first_required_term`. Lists write their alternatives
    // as optional terms.
    for (const TermStd* term : ExprList) {
        if (term == field || term->isFirstRequiredField(field, reporter))
            return true;
        if (term->isRequired())
            return false;
    }
    reporter->internalError(
        "virtual bool TermExpression::isFirstRequiredField(const TermStd*) const",
        "check_term not found");
    return false;
}

// Matching

bool TermExpression::isChoice() const
{
    return !OperatorsList.isEmpty() && OperatorsList.at(0) == u'|';
}

int TermExpression::matchOnce(const QChar* data, Match* match) const
{
    if (m_steps.empty())
        return matchUnchecked(data, match);
    return isChoice() ? matchChoice(m_steps, data, match) : matchSequence(m_steps, data, match);
}

// The term behind references without a repeat count of their own. The check has resolved them and
// refused loops.
const TermStd* TermExpression::referredTerm(const TermStd* term)
{
    while (term->type() == TermTypeVariable && term->bracketType != BracketRepeat) {
        const TermStd* const next = static_cast<const TermVariable*>(term)->simpleTerm;
        if (!next)
            break;
        term = next;
    }
    return term;
}

TermExpression::Steps TermExpression::makeSteps() const
{
    Steps steps;
    steps.reserve(static_cast<size_t>(ExprList.size()));
    for (const TermStd* term : ExprList)
        steps.push_back(
            {firstCharsOf(term), referredTerm(term), term->isRequired(), term->isSeparator()});
    return steps;
}

// An expression that was not checked has no steps yet.
[[gnu::noinline]] int TermExpression::matchUnchecked(const QChar* data, Match* match) const
{
    return isChoice() ? parse_by_operator_or(data, match) : parse_by_operator_and(data, match);
}

int TermExpression::parse_by_operator_or(const QChar* data, Match* match) const
{
    return matchChoice(m_steps.empty() ? makeSteps() : m_steps, data, match);
}

int TermExpression::parse_by_operator_and(const QChar* data, Match* match) const
{
    return matchSequence(m_steps.empty() ? makeSteps() : m_steps, data, match);
}

int TermExpression::matchChoice(const Steps& steps, const QChar* data, Match* match) const
{
    int longest = 0;
    for (const Step& step : steps) {
        if (step.firstChars.contains(*data))
            longest = std::max(longest, step.term->match(data, match));
    }
    return longest;
}

int TermExpression::matchSequence(const Steps& steps, const QChar* data, Match* match) const
{
    int pos = 0;
    const Step* step = steps.data();
    const Step* const end = step + steps.size();
    for (; step != end && !data[pos].isNull(); ++step) {
        const int matched =
            step->firstChars.contains(data[pos]) ? step->term->match(data + pos, match) : 0;
        if (step->required) {
            if (matched == 0)
                return 0;
        } else if (step + 1 != end && step[1].isSeparator &&
                   matchSeparator(data + pos + matched, match) == 0) {
            // An optional term counts as absent if the separator that must follow it is missing,
            // even if the term has matched, and also at the end of the text; pinned by
            // `MatcherTable.optional_term_counts_as_absent_if_its_separator_is_missing`.
            ++step;
            continue;
        }
        pos += matched;
    }
    // At the end of the text: no term that is left may be required. Separators never are.
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
            LineReporter().internalError("virtual QString TermExpression::dumpData(bool) const",
                                         QStringLiteral("i =  %1 OperatorsList.length() =  %2")
                                             .arg(i)
                                             .arg(OperatorsList.size()));
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
