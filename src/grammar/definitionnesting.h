#ifndef DEFINITIONNESTING_H
#define DEFINITIONNESTING_H

#include "grammar/namedlist.h"

#include <QString>

#include <unordered_map>
#include <vector>

class Reporter;

/// Tells how deep definitions nest (brackets and references to other definitions counted together),
/// and how many terms they have with all references written out.
///
/// Checking and matching are recursive, so a long chain of definitions would use up the stack. And
/// thirty definitions that each name the one before twice have a thousand million terms. Both are
/// therefore computed before the check, with an explicit stack, and each definition is visited
/// once.
class DefinitionNesting
{
public:
    /// The size of a definition with all its references written out.
    struct Extent
    {
        int depth = 0; ///< levels of nesting: 0 for a standard term
        int terms = 0; ///< number of terms; MaxTerms + 1 stands for any number above MaxTerms
    };

    /// The most terms that a definition may have with its references written out. It limits the
    /// time of a check. The definitions of the published format, messages included, have less than
    /// 5000.
    static constexpr int MaxTerms = 100000;

    /// Looks names up in @p terms (not null, not owned), which must outlive this object.
    explicit DefinitionNesting(const TermList* terms);

    /// The extent of @p term (not null). A reference to a definition that is still being counted is
    /// a loop, which the check reports; it counts as nothing.
    Extent extentOf(const TermStd* term);

    /// False, after a report, if @p term (not null) nests too deep or has too many terms to be
    /// checked safely.
    bool isWithinLimits(const TermStd* term, Reporter* reporter);

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
