#ifndef DIAGNOSTICLINE_H
#define DIAGNOSTICLINE_H

#include "findingobserver.h"

#include <QString>
#include <QtGlobal>

/// One line for Qt's message output, built item by item and sent once.
///
/// Every item is followed by one blank, the last one included; a quoted item stands between double
/// quotes with nothing in it escaped. Scripts read these lines, and QDebug does not keep their form
/// over the Qt versions (it escapes quotes and drops the last blank), therefore they are built
/// here.
class DiagnosticLine
{
public:
    /// A line of severity @p type: QtDebugMsg for findings in rule sets and messages, QtCriticalMsg
    /// for broken invariants of the library itself.
    explicit DiagnosticLine(QtMsgType type);

    /// Appends an item as it is.
    DiagnosticLine& plain(QStringView item);
    /// Appends an item as it is; ASCII, ended by a NUL.
    DiagnosticLine& plain(const char* item);
    /// Appends a decimal number.
    DiagnosticLine& number(qint64 item);
    /// Appends an item between double quotes.
    DiagnosticLine& quoted(QStringView item);

    /// Hands the line to Qt's message output in the default category. The observer, if there is
    /// one, is told the line as the text of a finding without a place.
    void send() const;

    /// The same, but the observer is told @p finding.
    void send(const Finding& finding) const;

    /// Sends the critical line of a broken invariant: the full signature of the operation that
    /// found it, then the condition that failed.
    static void internalError(const char* signature, const char* condition);

private:
    void append(QStringView item);

    QtMsgType m_type;
    QString m_line;
};

#endif
