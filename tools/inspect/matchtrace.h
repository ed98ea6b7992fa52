#ifndef MATCHTRACE_H
#define MATCHTRACE_H

#include "grammar/match.h"
#include "report/linereporter.h"

#include <QString>
#include <QStringList>

class TermExpression;
class TermStd;

/// Matches a text as the library does, and keeps what it was that stopped the match.
///
/// The library tells the length of a match only, and is fast for it. This goes the same way step by
/// step; a test holds the two against each other.
class MatchTrace
{
public:
    /// Matches @p text with @p term (checked, not kept); takes the same steps, a character of a
    /// run counting as a repetition.
    MatchTrace(TermStd* term, const QString& text);

    /// UTF-16 units matched from the beginning; 0 is no match.
    int matched() const { return m_matched; }

    /// True if the steps did not suffice: nothing else has a meaning then.
    bool areStepsExhausted() const { return m_match.areStepsExhausted(); }

    /// The last place that was reached and where something else was wanted; that behind the match
    /// if the term asked for nothing more.
    int stoppedAt() const { return m_stoppedAt; }

    /// What was wanted there, in words; empty if nothing was.
    const QStringList& wanted() const { return m_wanted; }

    /// The references on the way to the one that was wanted first: "EOBT", "TIMEHHMM".
    const QStringList& path() const { return m_path; }

private:
    int match(TermStd* term, int pos);
    int matchOnce(TermStd* term, int pos);
    int matchChoice(const TermExpression* choice, int pos);
    int matchSequence(const TermExpression* sequence, int pos);
    bool isLeftUnmatched(const TermExpression* sequence, int step, int pos);
    int matchLeaf(TermStd* term, int pos);
    void stop(int pos, const QString& wanted);
    void stopAtTerm(const TermStd* term, int pos);

    LineReporter m_reporter;
    Match m_match;
    QString m_text;
    int m_matched = 0;
    int m_stoppedAt = 0;
    QStringList m_wanted;
    QStringList m_path;
    QStringList m_references; // that are being followed
};

#endif
