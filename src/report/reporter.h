#ifndef REPORTER_H
#define REPORTER_H

#include "report/finding.h"

/// Takes what is found in a message or a rule set, one finding at a time and at the moment when it
/// is found. Handed down from call to call to whoever may find something.
class Reporter
{
public:
    virtual ~Reporter() = default;

    virtual void report(const Finding& finding) = 0;

    /// Reports a broken invariant: the full signature of the operation that found it, then what is
    /// wrong.
    void internalError(const char* signature, const QString& condition);
    void internalError(const char* signature, const char* condition);
};

#endif
