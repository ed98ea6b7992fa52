#ifndef EXPRESSIONCOMPILER_H
#define EXPRESSIONCOMPILER_H

#include "report/reporter.h"

#include <QList>
#include <QString>

#include <memory>

class TermExpression;
class TermStd;

/// Compiles the text of an expression into its terms and operators, reading it once from left to
/// right. A part in brackets becomes an expression of its own, with its own compiler.
///
/// Errors are reported at their place in the text; compiling stops at the first one.
class ExpressionCompiler
{
public:
    /// Compiles for @p expression (not null, not owned), which has its text but no terms yet.
    /// @p nesting is the number of brackets around the text.
    ExpressionCompiler(TermExpression* expression, Reporter* reporter, int nesting);

    /// Fills ExprList, OperatorsList and currentOperator of the expression, and makes it valid if
    /// the whole text compiles. After an error it keeps the terms made so far.
    void fullExprList();

private:
    void reserveTerms();
    bool compileTerms();
    void readWord();
    bool compileLiteral();
    bool compileGroup(QChar open);
    std::unique_ptr<TermStd> compilePart(const ConfigInfo* record) const;
    void appendTerm(std::unique_ptr<TermStd> term);
    bool readOperator();
    void readBlank();
    bool isComplete();
    void settleOperator();
    QString get_term(const QChar& open, const QChar& close, int* minCount, int* maxCount);
    bool collectPart(QChar open, QChar close, QString* inner);
    int readMaxCount();
    void reportTooLargeCount(const QChar* place, const QString& digits, adexp_code code,
                             const QString& outcome) const;
    void append_operator(const QString& nextTermText);
    void append_variable(const ConfigInfo* record);
    void appendPendingWord();
    const ConfigInfo* recordWithText(const QString& text, int begin);
    int position(const QChar* place) const;
    void errorAt(const QChar* place, adexp_code code, const QString& text) const;
    const QChar* beginOfTerm(int index) const;
    const QChar* textEnd() const;

    TermExpression* m_expression;
    const QString& m_text;    // ExprRuleStr of the expression
    QList<TermStd*>& m_terms; // its ExprList
    QString& m_operators;     // its OperatorsList
    Reporter* m_reporter;     // of the errors
    int m_nesting;            // brackets around the text
    const QChar* m_parsePos;  // the cursor into the text
    QString m_pendingWord;    // read but not yet appended: it may be a count
    int m_wordBegin = 0;      // position of the last word
    QChar m_operator;         // read but not yet recorded; null if none
    ConfigInfo m_partRecord;  // the expression's record with the text of the current part
};

#endif
