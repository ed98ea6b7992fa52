#ifndef DEFINITIONNESTING_H
#define DEFINITIONNESTING_H

#include "namedlist.h"

#include <QString>

#include <unordered_map>
#include <vector>

/// Tells how deep definitions nest, brackets and references to other definitions taken together,
/// and of how many terms they come to.
///
/// Checking and matching go from term to term by calls, so a chain of definitions as long as a file
/// can hold would take all of the stack. And thirty definitions that name the one before twice come
/// to a thousand million terms. Therefore both are found out before, with a stack of its own and
/// with one look at each definition.
class DefinitionNesting
{
public:
    /// What a definition is with all that it refers to written out.
    struct Extent
    {
        int depth = 0; ///< the levels of calls that it takes: 0 for a standard term
        int terms = 0; ///< more than MaxTerms are told as MaxTerms + 1
    };

    /// The most terms that a definition may come to. It bounds what one look at a definition costs;
    /// those of the published format, messages included, come to less than 5000.
    static constexpr int MaxTerms = 100000;

    /// Looks names up in @p terms (not null, not owned), which must stay.
    explicit DefinitionNesting(const TermList* terms);

    /// The extent of @p term (not null). A reference back to a definition that is still being
    /// counted (a loop, which the check reports) counts as nothing.
    Extent extentOf(const TermStd* term);

    /// False, after a report, if @p term (not null) nests so deep, or comes to so much, that it is
    /// not safe to check it.
    bool isWithinLimits(const TermStd* term);

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
        Extent extent;
    };

    static void collect(const TermStd* term, int level, Definition* definition);

    const TermList* m_terms;
    std::unordered_map<const TermStd*, Extent> m_extents; // of the terms counted or under way
};

#endif
