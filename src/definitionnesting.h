#ifndef DEFINITIONNESTING_H
#define DEFINITIONNESTING_H

#include "namedlist.h"

#include <QString>

#include <unordered_map>
#include <vector>

/// Tells how deep definitions nest, brackets and references to other definitions taken together.
///
/// Checking and matching go from term to term by calls, so a chain of definitions as long as a file
/// can hold would take all of the stack. Therefore the depth is found out before, with a stack of
/// its own.
class DefinitionNesting
{
public:
    /// Looks names up in @p terms (not null, not owned), which must stay.
    explicit DefinitionNesting(const TermList* terms);

    /// The levels of calls that @p term (not null) takes: 0 for a standard term. A reference back
    /// to a definition that is still being counted (a loop, which the check reports) counts as 0.
    int depthOf(const TermStd* term);

private:
    struct Reference
    {
        QString name;
        int level; // of the reference inside its definition
    };

    struct Definition
    {
        const TermStd* term;
        std::vector<Reference> references;
        int depth = 0;
    };

    static void collect(const TermStd* term, int level, Definition* definition);

    const TermList* m_terms;
    std::unordered_map<const TermStd*, int> m_depths; // of the terms counted or under way
};

#endif
