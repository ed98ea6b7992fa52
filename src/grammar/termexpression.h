#ifndef TERMEXPRESSION_H
#define TERMEXPRESSION_H

#include "grammar/termindex.h"
#include "grammar/termstd.h"

#include <QList>

#include <vector>

/// A compiled expression: terms in text order, with one operator between each two of them.
///
/// The text
///
///     2{ALPHA}3 '/' (DIGIT | REF)
///
/// has words (a standard term or the name of another term), literals between apostrophes, groups in
/// round (required), square (optional) and curly brackets (repeated, with an optional minimum
/// before and maximum behind), and the operators `|` (choice), `!` (follows at once) and `+`, blank
/// or nothing (follows after white space). A SEP term is inserted where white space may stand, so
/// the compiled form has only two operators, and an expression has only one kind of them: it is a
/// sequence ("!") or a choice ("|"). Brackets become nested expressions.
///
/// Matching is greedy and never goes back: each term takes as much as it can, and the longest
/// alternative wins.
class TermExpression : public TermStd
{
public:
    /// How deep brackets and references to other definitions may nest, counted together. It limits
    /// the stack for compiling and matching. Rule sets of the published format need less than 20.
    static constexpr int MaxNesting = 128;

    /// The text of the report about deeper nesting.
    static QString nestedTooDeepText();

    /// Compiles the rule text of @p record (not null, copied). Errors go to @p reporter; look at
    /// `valid` afterwards. @p nesting is the number of brackets around the text.
    TermExpression(const ConfigInfo* record, Reporter* reporter, int nesting = 0);

    ~TermExpression() override;

    /// Compiles @p record into the simplest term for it: an expression of one term becomes that
    /// term. Returns null, after a report, if the text does not compile. The caller owns the term.
    /// @p forceUnwrap: do so even if the single term has brackets of its own. That is right for a
    /// definition, and wrong for a bracketed part: its brackets would overwrite those of the term.
    static TermStd* append_expression(const ConfigInfo* record, bool forceUnwrap,
                                      Reporter* reporter, int nesting = 0);

    int type() const override;

    /// The longest alternative, or the sum over a sequence, in UTF-16 units.
    int calculateOfLengthData(bool withRepeat) const override;

    /// Checks every term, even after one has failed, so that everything is reported at once.
    bool check(Check* check) override;

    void settle(Reporter* reporter) override;

    QString dumpData(bool topLevel) const override;

    /// The first term, depth first, whose own text equals @p name. The text of every kind of term
    /// counts: name, literal, keyword or expression; pinned by
    /// `ExpressionSearch.compares_the_text_of_every_term_not_only_of_references`. Nested brackets
    /// are searched, references are not followed.
    const TermStd* search_TermField(QStringView name) const override;

    /// Makes the index for search_TermField().
    void indexFields();

    bool isContainsField() const override;
    void setCompoundField() override;
    bool isContainsCompoundField() const override;
    bool isFirstRequiredField(const TermStd* field, Reporter* reporter) const override;
    int matchOnce(const QChar* data, Match* match) const override;

    /// Tries all alternatives and takes the longest match.
    int parse_by_operator_or(const QChar* data, Match* match) const;

    /// Matches the terms one after another.
    int parse_by_operator_and(const QChar* data, Match* match) const;

    /// The standard term whose name is exactly the rule text of @p record, owned by the caller;
    /// null if it is none of the seven.
    TermStd* isStdTerm(const ConfigInfo* record) const;

    /// The first term, or null. The expression still owns it.
    TermStd* get_first_term();

    /// Removes the first term without deleting it; from then on the caller owns it.
    void erase_first_term(Reporter* reporter);

    QString OperatorsList;    ///< the operators: character i stands between terms i and i + 1
    QList<TermStd*> ExprList; ///< the terms, owned
    QChar currentOperator;    ///< the first operator, null if there is none

private:
    struct NotCompiled // selects the private constructor
    {
    };
    TermExpression(const ConfigInfo* record, NotCompiled);

    bool isChoice() const;

    // A term as the matchers see it. Steps lie side by side in memory: most terms are skipped by
    // their first characters alone, without touching the term itself.
    struct Step
    {
        FirstChars firstChars;
        const TermStd* term;
        bool required;
        bool isSeparator;
    };

    using Steps = std::vector<Step>;

    static const TermStd* referredTerm(const TermStd* term);
    Steps makeSteps() const;
    int matchChoice(const Steps& steps, const QChar* data, Match* match) const;
    int matchSequence(const Steps& steps, const QChar* data, Match* match) const;
    int matchUnchecked(const QChar* data, Match* match) const;
    void collectFirstChars();
    void indexTerms(TermIndex* index) const;

    // The first term of each text, depth first; of a definition or rule that is a compound of
    // fields, when loading has ended. A rule has a hundred fields or more, and is searched for each
    // field of a message.
    TermIndex m_termsByText;

    Steps m_steps; // of ExprList; of a checked expression
};

#endif
