#ifndef TERMTEXT_H
#define TERMTEXT_H

#include <QString>

class TermStd;

/// @p term as it is written in an expression, with its brackets and counts: "1{ALPHA}3", "'/'",
/// "[FL]". A long group is shortened to its beginning and "...".
QString termText(const TermStd* term);

/// @p text between the brackets and counts of @p term; as it is if the term has none.
QString inBracketsOf(const TermStd* term, const QString& text);

#endif
