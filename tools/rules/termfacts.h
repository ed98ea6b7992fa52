#ifndef TERMFACTS_H
#define TERMFACTS_H

#include "charset.h"

#include <QHash>
#include <QtGlobal>

#include <limits>
#include <optional>
#include <string>
#include <unordered_map>

class TermExpression;
class TermStd;

/// What can be said of the texts that a term matches.
///
/// What is not known for certain is left open on the safe side, so that a warning which is drawn
/// from it is true.
struct TermFacts
{
    /// A count or length without an upper limit.
    static constexpr qint64 Unlimited = std::numeric_limits<qint64>::max();

    /// A run of characters of one set: the longest one, of `max` characters at most.
    struct Run
    {
        CharSet set;
        qint64 min; // from 1; shorter runs do not match
        qint64 max;
    };

    int shape = 0;      ///< the same number for terms that are built alike
    int innerShape = 0; ///< the same without the repeat count
    qint64 minCount = 1;
    qint64 maxCount = 1;
    bool canMatch = true;   ///< false: it matches no text at all
    bool isOnce = false;    ///< repeated, but a second occurrence never follows the first
    CharSet chars;          ///< no match has other characters
    CharSet first;          ///< no match begins with another character
    qint64 minLength = 1;   ///< no match is shorter, in UTF-16 units
    qint64 maxLength = 1;   ///< no match is longer
    std::optional<Run> run; ///< if the term is one
    CharSet notBehind;      ///< no character that follows a match is one of these
};

/// Finds out facts about the terms of a loaded rule set, once for each. References are followed,
/// which is safe, as a check has limited how deep they nest.
class TermFactsTable
{
public:
    /// The facts of what @p term (checked) matches, its repeat count included.
    const TermFacts& of(const TermStd* term);

    /// True only if @p a matches every text that @p b matches, and takes at least as much of it.
    bool covers(const TermStd* a, const TermStd* b);

private:
    TermFacts find(const TermStd* term);
    TermFacts factsOfInner(const TermStd* term);
    TermFacts factsOfChoice(const TermExpression* choice);
    TermFacts factsOfSequence(const TermExpression* sequence);
    void repeat(const TermStd* term, TermFacts* facts);
    int shapeOf(const std::string& description);
    bool findCovers(const TermStd* a, const TermStd* b);
    bool beginsWith(const TermExpression* a, const TermStd* b);
    bool areSameSteps(const TermStd* a, const TermStd* b);

    std::unordered_map<const TermStd*, TermFacts> m_facts; // which stay where they are
    std::unordered_map<std::string, int> m_shapes;
    QHash<quint64, bool> m_covers; // by a pair of shapes
};

/// What stands behind references: the first term on the way from @p term that is none, or that is
/// repeated, or that refers to a circle and was never resolved.
const TermStd* behindReferences(const TermStd* term);

/// @p term as an expression, if it is a choice or sequence; else null.
const TermExpression* asExpression(const TermStd* term);

/// True for a choice.
bool isChoice(const TermExpression* expression);

#endif
