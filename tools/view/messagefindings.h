#ifndef MESSAGEFINDINGS_H
#define MESSAGEFINDINGS_H

#include "adexp.hpp"

#include <QString>

#include <string>
#include <vector>

/// A finding as the page of a message shows it. Positions count UTF-16 units of the text from 0.
struct MessageFinding
{
    bool isWarning;
    QString text;   ///< what was found; never empty
    QString detail; ///< the text that it was found in; may be empty
    int begin;      ///< -1: it has no place
    int end;
    int count = 1; ///< how often it was reported

    /// In words and as a class of the page.
    std::string kind() const { return isWarning ? "warning" : "error"; }
};

/// All findings of a message in the order of their places; those without a place come first.
using MessageFindings = std::vector<MessageFinding>;

/// The findings of a conversion for the page of its message.
///
/// A look ahead reports what a later one reports again. A finding that is told more than once, with
/// the same place, is kept once and counted.
MessageFindings messageFindings(const adexp::Findings& findings);

#endif
