#ifndef TERMEXPRESSION_H
#define TERMEXPRESSION_H

#include "termindex.h"
#include "termstd.h"

#include <QList>

#include <vector>

/// A compiled expression: terms in text order and, between each two of them, one operator.
///
/// The text
///
///     2{ALPHA}3 '/' (DIGIT | REF)
///
/// has words (a standard term or the name of another term), literals between apostrophes, groups in
/// round (required), square (optional) and curly brackets (repeated, with an optional minimum
/// before and maximum behind), and the operators `|` (choice), `!` (follows at once) and `+`, blank
/// or nothing (follows behind white space). Where white space may stand a SEP term is inserted, so
/// the compiled form knows only two operators, and only one kind of them in one expression: it is a
/// sequence ("!") or a choice ("|"). Brackets become nested expressions.
///
/// Matching is greedy and never goes back: each term takes what it can, the longest alternative
/// wins.
class TermExpression : public TermStd
{
public:
    /// How deep brackets, and references to other definitions, may nest altogether. It bounds the
    /// stack that compiling and matching take; rule sets of the published format need less than 20.
    static constexpr int MaxNesting = 128;

    /// The text of the report about what nests deeper.
    static QString nestedTooDeepText();

    /// Compiles the rule text of @p record (not null, copied). Errors are reported; look at `valid`
    /// afterwards. @p nesting is the number of brackets that the text stands in.
    explicit TermExpression(const ConfigInfo* record, int nesting = 0);

    ~TermExpression() override;

    /// Compiles @p record into the simplest term that stands for it: an expression of one term is
    /// that term. Returns null, after a report, if the text does not compile; the caller owns the
    /// term. @p forceUnwrap: also take a single term out of its expression that has brackets of its
    /// own, which is right for a definition and wrong for a bracketed part, whose brackets would
    /// overwrite those of the single term.
    static TermStd* append_expression(const ConfigInfo* record, bool forceUnwrap, int nesting = 0);

    int type() const override;

    /// The longest alternative, or the sum over a sequence, in UTF-16 units.
    int calculateOfLengthData(bool withRepeat) const override;

    /// Checks every term, also behind one that fails, so that everything is reported at once.
    bool check_config(const TermList* termsList) override;

    QString dumpData(bool topLevel) const override;

    /// The first term, depth first, whose own text (name, literal, keyword or expression: any kind
    /// of term counts, and this is meant) equals @p name. Nested brackets are searched, references
    /// are not followed. The terms must not change any more after the first call.
    TermStd* search_TermField(QStringView name) const override;

    bool isContainsField() const override;
    void setCompoundField() override;
    bool isContainsCompoundField() const override;
    bool isFirstRequiredField(const TermStd* field) const override;
    int real_parse(const QChar* data) override;

    /// Matches the longest alternative; all are tried.
    int parse_by_operator_or(const QChar* data) const;

    /// Matches the terms one after another.
    int parse_by_operator_and(const QChar* data) const;

    /// The standard term that the whole rule text of @p record names (exactly), owned by the
    /// caller; null if it is none of the seven.
    TermStd* isStdTerm(const ConfigInfo* record) const;

    /// The first term, or null. It stays owned by the expression.
    TermStd* get_first_term();

    /// Takes the first term out without deleting it; the caller takes it over.
    void erase_first_term();

    QString OperatorsList;    ///< the operators: character i stands between terms i and i + 1
    QList<TermStd*> ExprList; ///< the terms, owned
    QChar currentOperator;    ///< the first operator, null if there is none

private:
    struct NotCompiled // makes a constructor of its own
    {
    };
    TermExpression(const ConfigInfo* record, NotCompiled);

    bool isChoice() const;

    // A term as the matchers see it. They lie side by side in memory: most terms are passed over by
    // their first characters alone, without a look at the term itself.
    struct Step
    {
        FirstChars firstChars;
        TermStd* term;
        bool required;
        bool isSeparator;
    };

    static TermStd* referredTerm(TermStd* term);
    const std::vector<Step>& steps() const;
    void updateSteps() const;
    void collectFirstChars();
    void indexTerms(TermIndex* index) const;

    // For search_TermField(), filled by its first call: the first term of each text, depth first. A
    // rule has a hundred fields and more, and is searched for each field of a message.
    mutable TermIndex m_termsByText;

    mutable std::vector<Step> m_steps; // of ExprList
};

#endif
