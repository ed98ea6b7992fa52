#ifndef PRINTEDREPORTS_H
#define PRINTEDREPORTS_H

#include "report/reporter.h"

/// Writes what is found while definitions are looked at to standard error: broken invariants of the
/// library.
class PrintedReports : public Reporter
{
public:
    void report(const Finding& finding) override;
};

#endif
