// The expression language. Each line of the input but the last is a definition, named A, B, C and
// so on; the last line is a text to be matched. All must be as the reference matcher of the tests,
// a second implementation, has it.

#include "checks/require.h"
#include "reference/referencematcher.h"
#include "support/diagnosticcapture.h"
#include "support/termset.h"
#include "support/tooutput.h"
#include "target.h"

#include "grammar/termexpression.h"
#include "grammar/termvariable.h"
#include "load/mainclass.h"

#include <QString>
#include <QStringList>

#include <algorithm>
#include <limits>
#include <memory>
#include <vector>

namespace {

constexpr int MostDefinitions = 26;

// The reference, and the dumps, write out what definitions refer to. Twenty definitions that name
// the one before twice would make a million terms.
constexpr int MostTerms = 2000;

const TermExpression* asExpression(const TermStd* term)
{
    return term->type() == TermTypeExpression ? static_cast<const TermExpression*>(term) : nullptr;
}

// The terms below and with this one, references followed; stops counting when they are too many.
void countTerms(const TermStd* term, int* count)
{
    if (++*count > MostTerms)
        return;
    if (const TermExpression* const expression = asExpression(term)) {
        for (const TermStd* part : expression->ExprList)
            countTerms(part, count);
    } else if (term->type() == TermTypeVariable) {
        if (const TermStd* const referred = static_cast<const TermVariable*>(term)->simpleTerm)
            countTerms(referred, count);
    }
}

bool isSmall(const TermStd* term)
{
    int count = 0;
    countTerms(term, &count);
    return count <= MostTerms;
}

// What is true of every compiled term.
void checkStructure(const TermStd* term)
{
    if (term->bracketType == BracketRepeat)
        require(term->minRepeat <= term->maxRepeat && term->maxRepeat >= 0, "counts make sense");
    else
        require(term->minRepeat == -1 && term->maxRepeat == -1, "without braces no count");
    const TermExpression* const expression = asExpression(term);
    if (!expression)
        return;
    const QString& operators = expression->OperatorsList;
    require(!expression->ExprList.isEmpty(), "an expression has terms");
    require(operators.size() + 1 == expression->ExprList.size(), "operators stand between terms");
    require(operators.count(u'!') == operators.size() || operators.count(u'|') == operators.size(),
            "the operators are all the same");
    require(operators.isEmpty() ? expression->currentOperator.isNull()
                                : expression->currentOperator == operators.at(0),
            "the expression knows its operator");
    for (const TermStd* part : expression->ExprList) {
        require(part != nullptr, "no term is missing");
        checkStructure(part);
    }
}

// The texts of all reports.
class ReportedTexts : public Reporter
{
public:
    void report(const Finding& finding) override
    {
        require(finding.severity != Severity::Internal, "no internal error is reported",
                finding.text.toStdString());
        m_texts.append(finding.text);
    }
    const QStringList& texts() const { return m_texts; }

private:
    QStringList m_texts;
};

class Comparison
{
public:
    explicit Comparison(const QStringList& definitions)
    {
        const DiagnosticCapture silence;
        for (int i = 0; i + 1 < definitions.size(); ++i) {
            const QString name(QChar(u'A' + i));
            m_terms.define(name, definitions.at(i));
            m_grammar.define(name, definitions.at(i));
        }
        m_name = QString(QChar(u'A' + static_cast<int>(definitions.size()) - 1));
        m_expression = definitions.last();
    }

    void compare(const QString& text)
    {
        const DiagnosticCapture silence;
        ReportedTexts reported;
        const std::unique_ptr<TermStd> term = compileDefinition(m_name, m_expression, &reported);
        // The nesting that the reference has no limit for.
        if (reported.texts().contains(TermExpression::nestedTooDeepText()))
            return;
        const reference::Compiled expected = reference::compile(m_expression);
        require(reported.texts() == expected.messages, "the reports are those expected",
                reported.texts().join(u'/').toStdString());
        require((term != nullptr) == expected.term.has_value(), "it compiles if it should");
        if (!term)
            return;
        checkStructure(term.get());
        require(term->dumpData(true) == reference::Grammar().dump(*expected.term, true),
                "the dump before the check is the one expected");
        const bool isValid = term->check_config(m_terms.terms(), &reported);
        if (!isSmall(term.get()))
            return;
        require(isValid == m_grammar.isSound(*expected.term, m_name), "it is valid if it should");
        if (isValid)
            compareChecked(term.get(), *expected.term, text);
    }

private:
    void compareChecked(TermStd* term, const reference::Term& expected, const QString& text) const
    {
        require(term->dumpData(true) == m_grammar.dump(expected, true),
                "the dump is the one expected");
        for (const bool withRepeat : {false, true}) {
            const qint64 length = m_grammar.longestLength(expected, withRepeat);
            const bool fits = length <= std::numeric_limits<int>::max();
            const int actual = term->calculateOfLengthData(withRepeat);
            require(!fits || actual == length, "the length is the one expected");
        }
        // Of exactly this size, so that reading on behind it is found out.
        std::vector<QChar> data(text.begin(), text.end());
        data.push_back(QChar());
        const int matched = term->parse(data.data());
        require(matched == m_grammar.matchedLength(expected, text),
                "it matches as much as expected");
        require(matched >= 0 && matched <= text.size(), "a match lies in the text");
        require(term->parse(data.data()) == matched, "it matches the same twice");
        checkQueries(term);
    }

    static void checkQueries(TermStd* term)
    {
        term->setCompoundField();
        require(!term->isContainsField() && !term->isContainsCompoundField(),
                "no field is where none was defined");
        require(term->fieldKind(&toOutput) != FieldKind::Compound,
                "without fields it is no compound");
        if (const TermExpression* const expression = asExpression(term)) {
            for (const TermStd* part : expression->ExprList) {
                const TermStd* const found = term->search_TermField(part->ExprRuleStr);
                require(found && found->ExprRuleStr == part->ExprRuleStr,
                        "a term is found by name");
            }
        }
    }

    TermSet m_terms;
    reference::Grammar m_grammar;
    QString m_name;
    QString m_expression;
};

} // namespace

void Target::setUp() {}

void Target::tryInput(std::string_view input, bool)
{
    QStringList lines =
        QString::fromUtf8(input.data(), static_cast<int>(input.size())).split(u'\n');
    if (lines.size() < 2 || lines.size() > MostDefinitions + 1)
        return;
    const QString text = lines.takeLast();
    // A text ends at its first null character.
    Comparison(lines).compare(text.left(text.indexOf(QChar())));
}
