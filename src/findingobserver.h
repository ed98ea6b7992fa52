#ifndef FINDINGOBSERVER_H
#define FINDINGOBSERVER_H

#include "configinfo.h"

#include <QString>
#include <QtGlobal>

/// How bad a finding is.
enum class Severity {
    Warning, ///< the part in question is used as it is, or shortened
    Error,   ///< the part in question is wrong, or is not used
};

/// How a finding about a rule set relates to others.
enum class FindingKind {
    Cause,       ///< look here
    UnknownName, ///< the detail is a name that no definition has; another finding may say why
    Loop,        ///< the detail is a name through which the definition refers to itself
    Consequence, ///< of another finding; it would not be there without it
};

/// One line of the diagnostics as values: nobody has to parse the line to find its place.
struct Finding
{
    QtMsgType type = QtDebugMsg; ///< QtCriticalMsg: a broken invariant of the library itself
    Severity severity = Severity::Error;
    FindingKind kind = FindingKind::Cause;
    QString text;      ///< what was found, without its place; never empty
    QString detail;    ///< the text in which it was found; may be empty
    ConfigInfo record; ///< in a rule set: the record; without a file if there is none
    int begin = -1; ///< where the part in question begins, in UTF-16 units; -1: no place. In a rule
                    ///< set: in the expression of the record, with its white space simplified
    int end = -1;   ///< in a message: position after the part in question; -1: no place
};

/// Gets every finding as long as it exists. Qt's message output still gets the line.
///
/// For tools that show findings at their place. Observers may be nested; the innermost gets the
/// findings.
/// Like the library, for one thread only.
class FindingObserver
{
public:
    FindingObserver();
    virtual ~FindingObserver();

    FindingObserver(const FindingObserver&) = delete;
    FindingObserver& operator=(const FindingObserver&) = delete;

    /// Called before the line of @p finding goes to Qt's message output.
    virtual void found(const Finding& finding) = 0;

    /// The innermost observer; null if there is none. Not owned.
    static FindingObserver* current();

private:
    FindingObserver* m_outer;
};

#endif
