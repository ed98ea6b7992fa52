#ifndef TERMWARNINGS_H
#define TERMWARNINGS_H

#include "report/finding.h"
#include "termfacts.h"

#include <QHash>

#include <vector>

class MainClass;
class TermExpression;
class TermStd;

/// Finds the parts of a loaded rule set that can have no effect, although it loads without an
/// error.
///
/// A warning is never wrong. Two things are not recognised: an alternative that several earlier
/// ones cover only together (unless all are single characters), and a term that cannot match
/// because of the lengths of those before it.
class TermWarnings
{
public:
    /// For the definitions and rules of @p rules (not null, not owned), which must outlive this
    /// object.
    explicit TermWarnings(const MainClass* rules);

    /// The warnings about all definitions and rules.
    std::vector<Finding> find();

private:
    /// The fields that a part of a definition names.
    struct Names
    {
        QHash<QString, const TermStd*> first; ///< by name: where it stands first
        const TermStd* takingAll = nullptr;   ///< a field that takes all fields behind it, too
    };

    void checkMatching(const TermStd* term);
    void checkChoice(const TermExpression* choice);
    void checkSequence(const TermExpression* sequence);
    void checkOccurrences(const TermStd* term);
    Names checkNames(const TermStd* term, bool onceEach);
    void addFollowing(Names* names, const Names& following, bool onceEach);
    void warn(const TermStd* term, const QString& text);

    const MainClass* m_rules;
    TermFactsTable m_facts;
    std::vector<Finding> m_warnings;
};

#endif
