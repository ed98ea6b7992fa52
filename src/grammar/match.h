#ifndef MATCH_H
#define MATCH_H

#include <QtGlobal>

#include <limits>

class Reporter;

/// What the match of one text needs besides the text and the terms: it counts and limits the steps,
/// and the references that are being followed. A step is a repetition, or one character of a run of
/// one class.
///
/// Matching never goes back inside a sequence. But when an alternative or an optional part fails,
/// the next one reads the same text again. If such parts have repeats, and are nested, the number
/// of steps grows with a power of the length of the text: four levels of `({T2} ! 'B') | 'A'`,
/// where T2 has the same form, took seconds for 200 letters. No definition is refused for that,
/// since most of the texts it is made for take few steps. The steps for one text are limited
/// instead.
class Match
{
public:
    /// The steps allowed for each unit of a text.
    static constexpr qint64 StepsPerUnit = 1000;

    /// The steps allowed for every text besides.
    static constexpr qint64 StepsAtLeast = 10000;

    /// More references inside each other than any checked definition has.
    static constexpr int MaxReferences = 512;

    /// The match of a text of @p length UTF-16 units. Broken invariants go to @p reporter (not
    /// null, not owned).
    Match(qint64 length, Reporter* reporter)
        : m_stepsLeft(StepsAtLeast + StepsPerUnit * length), m_reporter(reporter)
    {
    }

    /// A match without a bound on its steps.
    explicit Match(Reporter* reporter)
        : m_stepsLeft(std::numeric_limits<qint64>::max()), m_reporter(reporter)
    {
    }

    Match(const Match&) = delete;
    Match& operator=(const Match&) = delete;

    /// Takes @p steps. False if there are none left: then repeats end, and with them the match.
    bool takeSteps(qint64 steps)
    {
        m_stepsLeft -= steps;
        return m_stepsLeft >= 0;
    }

    /// True if the steps were not enough: the result of matching has no meaning.
    bool areStepsExhausted() const { return m_stepsLeft < 0; }

    /// Begins to follow a reference. False if so many are under way that they must be a loop.
    bool enterReference() { return ++m_references <= MaxReferences; }
    void leaveReference() { --m_references; }

    Reporter* reporter() const { return m_reporter; }

private:
    qint64 m_stepsLeft;
    int m_references = 0;
    Reporter* m_reporter;
};

#endif
