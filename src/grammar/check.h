#ifndef CHECK_H
#define CHECK_H

#include "grammar/namedlist.h"

#include <algorithm>
#include <vector>

class Reporter;
class TermVariable;

/// What the check of one term needs: the named terms, and the references that it is passing.
struct Check
{
    const TermList* terms;                          ///< that references may name; not owned
    Reporter* reporter;                             ///< not null, not owned
    std::vector<const TermVariable*> underWay = {}; ///< the references that are being followed

    bool isUnderWay(const TermVariable* reference) const
    {
        return std::find(underWay.cbegin(), underWay.cend(), reference) != underWay.cend();
    }
};

#endif
