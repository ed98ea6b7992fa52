#ifndef MATCHINGCOST_H
#define MATCHINGCOST_H

/// What matching a term against a text of TextLength UTF-16 units takes at the most, in steps. A
/// step is a look at one term or at one character.
///
/// Matching never goes back inside a sequence, but what it has read may go to waste: what stands
/// before the term of a sequence that fails, the alternatives that are not the longest, the
/// optional term whose separator is missing. A repeat then reads the same again for its next
/// occurrence. With n levels of such repeats the steps grow with the power n + 1 of the text:
/// `({T2} ! 'B') | 'A'`, where T2 is of the same form, and so on.
///
/// To keep results while matching, so that nothing is read twice, would take memory for each repeat
/// and character. So what may take too long is refused while loading.
///
/// What is used and what is wasted are told apart: a match takes no more than perUnit for each unit
/// that it covers, and `success` besides; no match takes `failure`. Only the `success` of what is
/// repeated becomes a cost of each unit. All figures are upper bounds. They leave out that a term
/// is passed over if it cannot begin with the character at hand.
class MatchingCost
{
public:
    /// The length of the text, in UTF-16 units, that the cost is told for.
    static constexpr int TextLength = 1000;

    /// The most steps for such a text that a definition may need. Each level of repeats that read
    /// in vain is a factor of TextLength here, so no more than three fit in, and a text of n units,
    /// for n above TextLength, takes at most n * n * n steps.
    static constexpr int MaxSteps = 1000000000;

    /// An expression without terms, or what matches nothing.
    constexpr MatchingCost() = default;

    /// A term that matches a certain text of @p length units, or one character.
    static MatchingCost ofLiteral(int length);

    /// A run of white space.
    static MatchingCost ofSeparator();

    /// This term in braces, at least @p minRepeat and at most @p maxRepeat times.
    MatchingCost repeated(int minRepeat, int maxRepeat) const;

    /// Adds an alternative to a choice.
    void addAlternative(const MatchingCost& alternative);

    /// Adds a term behind a sequence. If it is not @p required and @p needsSeparator behind it, it
    /// may go to waste, and the separator, which is added next, be passed over.
    void append(const MatchingCost& next, bool required, bool needsSeparator);

    /// The steps for the whole text.
    double steps() const;

private:
    MatchingCost(double perUnit, double failure, double longest);

    double m_perUnit = 0; // of a match, for each unit of its length
    double m_success = 1; // of a match, besides
    double m_failure = 1; // of no match
    double m_longest = 0; // units that a match covers

    // Of a sequence so far:
    bool m_mayBeEmpty = true;       // no term in it has to match
    bool m_mayPassOverNext = false; // the next term is a separator that may be left out
};

#endif
