#ifndef LINEREPORTER_H
#define LINEREPORTER_H

#include "report/reporter.h"

#include <QtGlobal>

/// Writes each finding as a line to Qt's message output: findings in rule sets and messages with
/// the severity debug, broken invariants as critical.
///
/// Every item of a line is followed by one blank, the last one included; a quoted item stands
/// between double quotes with nothing in it escaped. Scripts read these lines, and QDebug changes
/// their form between Qt versions (it escapes quotes and drops the last blank), so they are built
/// here.
class LineReporter : public Reporter
{
public:
    void report(const Finding& finding) override;

    /// The line of @p finding.
    static QString lineOf(const Finding& finding);

    /// Hands @p line to Qt's message output in the default category.
    static void send(QtMsgType type, const QString& line);
};

#endif
