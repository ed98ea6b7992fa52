#ifndef TERMSET_H
#define TERMSET_H

#include "grammar/namedlist.h"
#include "grammar/termexpression.h"
#include "report/configinfo.h"
#include "support/tooutput.h"

#include <QString>
#include <QtAlgorithms>

#include <memory>

/// Fills an item the way a loader would: a place in a file, a name and the expression text.
inline void fillRecord(ConfigInfo* record, const QString& name, const QString& expression)
{
    record->setXMLFile(QStringLiteral("simple.xml"));
    record->lineNumber = 12;
    record->columnNumber = 5;
    record->recordName = name;
    record->ruleText = expression;
}

/// Compiles an expression text as the definition of `name`; null if it does not compile.
inline std::unique_ptr<TermStd> compileDefinition(const QString& name, const QString& expression,
                                                  Reporter* reporter = &toOutput)
{
    ConfigInfo record;
    fillRecord(&record, name, expression);
    return std::unique_ptr<TermStd>(TermExpression::append_expression(&record, true, reporter));
}

/**
 * Named terms which expressions under test may refer to; owns them. Must outlive every term that
 * was checked against it.
 */
class TermSet
{
public:
    TermSet() = default;
    ~TermSet() { qDeleteAll(m_terms.begin(), m_terms.end()); }
    Q_DISABLE_COPY(TermSet)

    /// Compiles and adds a definition; returns it, or null (and adds nothing) if it does not
    /// compile.
    TermStd* define(const QString& name, const QString& expression)
    {
        TermStd* term = compileDefinition(name, expression).release();
        if (term)
            m_terms.append(term);
        return term;
    }

    const TermList* terms() const { return &m_terms; }

private:
    TermList m_terms;
};

#endif
