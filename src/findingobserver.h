#ifndef FINDINGOBSERVER_H
#define FINDINGOBSERVER_H

#include "configinfo.h"

#include <QString>
#include <QtGlobal>

/// How bad a finding is.
enum class Severity {
    Warning, ///< what it is about is used as it is, or with less
    Error,   ///< what it is about is wrong, or is not used
};

/// How a finding about a rule set stands to others.
enum class FindingKind {
    Cause,       ///< look here
    UnknownName, ///< the detail is a name that no definition has, perhaps for a reason that another
                 ///< finding gives
    Loop,        ///< the detail is a name by way of which the definition refers to itself
    Consequence, ///< of another finding; it would not be there without it
};

/// What one line of the diagnostics says, as values: nobody has to read the line to learn its
/// place.
struct Finding
{
    QtMsgType type = QtDebugMsg; ///< QtCriticalMsg: a broken invariant of the library itself
    Severity severity = Severity::Error;
    FindingKind kind = FindingKind::Cause;
    QString text;      ///< what was found, without its place; never empty
    QString detail;    ///< the text that it was found in; may be empty
    ConfigInfo record; ///< in a rule set: the record; without a file if there is none
    int begin = -1; ///< position of what it is about, in UTF-16 units; -1: none. In a rule set: in
                    ///< the expression of the record, its white space simplified
    int end = -1;   ///< in a message: position behind the stretch that it is about; -1: none
};

/// Is told of every finding while it lives, besides Qt's message output, which gets the line.
///
/// For tools that show findings at their place. Observers may be nested; the innermost is told.
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

    /// The observer to be told; null if there is none. Not owned.
    static FindingObserver* current();

private:
    FindingObserver* m_outer;
};

#endif
