#ifndef TERMSIMPLE_H
#define TERMSIMPLE_H

#include "grammar/termstd.h"

/// A literal in an expression: matches exactly its own text.
class TermSimple : public TermStd
{
public:
    /// The literal is the rule text of @p record (not null, copied) with its white space
    /// simplified.
    explicit TermSimple(const ConfigInfo* record);

    int type() const override;

    /// The literal's length in UTF-16 units. Unlike for the other terms, the repeat count always
    /// counts, whatever @p withRepeat says; pinned by
    /// `Literal.repeat_count_always_counts_in_the_longest_length`.
    int calculateOfLengthData(bool withRepeat) const override;

    /// False, after a report, for an empty literal.
    bool check(Check* check) override;

    int matchOnce(const QChar* data, Match* match) const override;
};

#endif
