#include "termexpression.h"

#include "diagnosticline.h"
#include "expressioncompiler.h"
#include "termvariable.h"

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
TermExpression::TermExpression(const ConfigInfo* record, int nesting)
    : TermExpression(record, NotCompiled())
{
    ExpressionCompiler(this, nesting).fullExprList();
}

TermExpression::~TermExpression()
{
    qDeleteAll(ExprList);
}

QString TermExpression::nestedTooDeepText()
{
    return QObject::tr("brackets and references are nested deeper than %1 levels").arg(MaxNesting);
}

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

TermStd* TermExpression::search_TermField(QStringView name) const
{
    if (m_termsByText.isEmpty()) {
        TermIndex whole; // stored only when complete, since memory may run out
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
    // A choice is treated like a sequence: a required alternative hides those after it; pinned by
    // `ExpressionFirstField.walk_stops_at_the_first_required_term`. Lists write their alternatives
    // as optional terms.
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

// Follows references without a repeat count of their own to their target. The check has resolved
// them and refused loops.
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
