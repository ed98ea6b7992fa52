#ifndef FINDING_H
#define FINDING_H

#include "adexp.h"
#include "report/configinfo.h"

#include <QString>

/// How bad a finding is.
enum class Severity {
    Warning = ADEXP_WARNING,   ///< the part in question is used as it is, or shortened
    Error = ADEXP_ERROR,       ///< the part in question is wrong, or is not used
    Internal = ADEXP_INTERNAL, ///< a broken invariant of the library itself
};

/// How a finding about a rule set relates to others.
enum class FindingKind {
    Cause,       ///< look here
    UnknownName, ///< the detail is a name that no definition has; another finding may say why
    Loop,        ///< the detail is a name through which the definition refers to itself
    Consequence, ///< of another finding; it would not be there without it
};

/// What is wrong at one place of a message or rule set.
struct Finding
{
    FindingKind kind() const;

    adexp_code code = ADEXP_CODE_NONE;
    Severity severity = Severity::Error;
    QString text;      ///< what was found, without its place; never empty
    QString detail;    ///< the text in which it was found; may be empty
    ConfigInfo record; ///< in a rule set: the record; without a file if there is none
    int begin = -1;    ///< where it begins, in UTF-16 units; -1: no position. In a rule set: in the
                       ///< expression of the record, with its white space simplified
    int end = -1;      ///< in a message: position behind the stretch that it is about; -1: none
    int field = -1;    ///< in a message: the number of the field, see AdexpField::index; -1: none
    QString path;      ///< in a message: the names down to the field, "RTEPTS/PT/FL"

    /// @name For the line only
    /// @{
    const char* signature = nullptr; ///< of the operation that loads, where the line begins with it
    QString head;                    ///< between that and the text
    /// @}
};

/// The name of a code that users know, "missing-end" for example; empty for no code.
const char* nameOf(int code);

#endif
