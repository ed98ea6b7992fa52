#ifndef DEFINITIONNESTING_H
#define DEFINITIONNESTING_H

#include "matchingcost.h"
#include "namedlist.h"

#include <unordered_map>
#include <vector>

class TermExpression;

/// Tells how deep definitions nest, brackets and references to other definitions taken together, of
/// how many terms they come to, and what matching them may take.
///
/// Checking and matching go from term to term by calls, so a chain of definitions as long as a file
/// can hold would take all of the stack. And thirty definitions that name the one before twice come
/// to a thousand million terms. Therefore both are found out before, with a stack of its own and
/// with one look at each definition.
class DefinitionNesting
{
public:
    /// What matching a term may take. A text is matched with a definition without fields, and also
    /// with each expression in brackets, which a message may name by its text; but never with what
    /// has a compound of fields in it, because then it is read field by field.
    struct Matching
    {
        MatchingCost cost;        ///< of the term; of no meaning with a compound in it
        double steps = 0;         ///< the most of the term and of all in it that can be matched
        bool hasField = false;    ///< refers to the definition of a field
        bool hasCompound = false; ///< refers to the definition of a compound of fields
    };

    /// What a definition is with all that it refers to written out.
    struct Extent
    {
        int depth = 0; ///< the levels of calls that it takes: 0 for a standard term
        int terms = 0; ///< more than MaxTerms are told as MaxTerms + 1
        Matching matching;
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
    /// not safe to check it, or if matching with it may take more than MatchingCost::MaxSteps.
    bool isWithinLimits(const TermStd* term);

    /// False, after a report, if matching with a part of the message rule @p rule (not null) may
    /// take more than that. Nothing is kept of the rule.
    bool isMatchedWithinLimit(const TermExpression* rule);

private:
    struct Reference
    {
        const TermStd* target; // null if there is no term of the name
        int level;             // of the reference inside its definition
    };

    struct Definition
    {
        const TermStd* term;
        std::vector<Reference> references;
        Extent extent;
    };

    static bool isWithinLimit(const TermStd* term, const Matching& matching);
    const TermStd* targetOf(const TermStd* reference) const;
    void collect(const TermStd* term, int level, Definition* definition) const;
    Matching matchingOf(const TermStd* term) const;
    Matching matchingOfReference(const TermStd* reference) const;
    Matching matchingOfExpression(const TermExpression* expression) const;

    const TermList* m_terms;
    std::unordered_map<const TermStd*, Extent> m_extents; // of the terms counted or under way
};

#endif
