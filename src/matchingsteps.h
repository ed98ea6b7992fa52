#ifndef MATCHINGSTEPS_H
#define MATCHINGSTEPS_H

#include <QtGlobal>

#include <limits>

/// Counts and limits the steps of matching one text. A step is a repetition, or one character of a
/// run of one class.
///
/// Matching never goes back inside a sequence. But when an alternative or an optional part fails,
/// the next one reads the same text again. If such parts have repeats, and are nested, the number
/// of steps grows with a power of the length of the text: four levels of `({T2} ! 'B') | 'A'`,
/// where T2 has the same form, took seconds for 200 letters. No definition is refused for that,
/// since most of the texts it is made for take few steps. The steps for one text are limited
/// instead.
class MatchingSteps
{
public:
    /// The steps allowed for each unit of a text.
    static constexpr qint64 PerUnit = 1000;

    /// The steps allowed for every text besides.
    static constexpr qint64 AtLeast = 10000;

    /// While this object exists, matching may take the steps for a text of @p length UTF-16 units.
    explicit MatchingSteps(qint64 length);

    ~MatchingSteps();

    MatchingSteps(const MatchingSteps&) = delete;
    MatchingSteps& operator=(const MatchingSteps&) = delete;

    /// True if the steps were not enough: the result of matching has no meaning.
    bool areExhausted() const { return s_left < 0; }

    /// Takes @p steps. False if there are none left: then repeats end, and with them the match.
    static bool take(qint64 steps)
    {
        s_left -= steps;
        return s_left >= 0;
    }

private:
    // One counter is enough, as only one match runs at a time. While no object exists, there is no
    // limit.
    static inline qint64 s_left = std::numeric_limits<qint64>::max();

    qint64 m_before;
};

#endif
