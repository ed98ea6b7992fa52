#ifndef MATCHINGSTEPS_H
#define MATCHINGSTEPS_H

#include <QtGlobal>

#include <limits>

/// The steps that the match of one text may still take. A step is a repetition, or a character of a
/// run of one class.
///
/// Matching never goes back inside a sequence, but an alternative or an optional part that fails
/// after it has read far lets the next one read the same again. With repeats in such parts, and
/// such repeats in each other, the steps grow with a power of the text: four levels of
/// `({T2} ! 'B') | 'A'`, where T2 is of the same form, took seconds for 200 letters. No definition
/// is refused for that, since most texts that it is made for cost next to nothing; what one text
/// may cost is bounded instead.
class MatchingSteps
{
public:
    /// The steps for each unit of a text.
    static constexpr qint64 PerUnit = 1000;

    /// What every text may take besides.
    static constexpr qint64 AtLeast = 10000;

    /// From now on until it goes away the steps are those for a text of @p length UTF-16 units.
    explicit MatchingSteps(qint64 length);

    ~MatchingSteps();

    MatchingSteps(const MatchingSteps&) = delete;
    MatchingSteps& operator=(const MatchingSteps&) = delete;

    /// True if the steps did not suffice: what was matched is of no meaning.
    bool areExhausted() const { return s_left < 0; }

    /// Takes @p steps. False if there are none left: repeats end, and so the match does.
    static bool take(qint64 steps)
    {
        s_left -= steps;
        return s_left >= 0;
    }

private:
    // One for all matches, as only one is under way at a time. Without limit outside of the life of
    // an object.
    static inline qint64 s_left = std::numeric_limits<qint64>::max();

    qint64 m_before;
};

#endif
