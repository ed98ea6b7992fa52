#ifndef TERMTREE_H
#define TERMTREE_H

#include <QString>

class TermStd;

/// The compiled form of @p term as a tree, a line for each term, all ended by a line break.
/// References are not followed. The separators that the compiler has put in are shown.
QString termTree(const TermStd* term);

#endif
