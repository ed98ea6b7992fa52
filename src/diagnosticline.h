#ifndef DIAGNOSTICLINE_H
#define DIAGNOSTICLINE_H

#include "findingobserver.h"

#include <QString>
#include <QtGlobal>

/// One line for Qt's message output, built item by item and sent once.
///
/// Every item is followed by one blank, also the last one. A quoted item stands between double
/// quotes; nothing in it is escaped. Scripts read these lines, so their form must not change.
/// QDebug does not keep it (it escapes quotes and drops the last blank), so the lines are built
/// here.
class DiagnosticLine
{
public:
    /// A line of severity @p type: QtDebugMsg for findings in rule sets and messages, QtCriticalMsg
    /// for broken invariants of the library itself.
    explicit DiagnosticLine(QtMsgType type);

    /// Appends an item as it is.
    DiagnosticLine& plain(QStringView item);
    /// Appends an item as it is; it is ASCII and ends with a NUL.
    DiagnosticLine& plain(const char* item);
    /// Appends a decimal number.
    DiagnosticLine& number(qint64 item);
    /// Appends an item between double quotes.
    DiagnosticLine& quoted(QStringView item);

    /// Sends the line to Qt's message output in the default category. The observer, if there is
    /// one, gets the line as the text of a finding without a place.
    void send() const;

    /// The same, but the observer gets @p finding.
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
