#ifndef MESSAGEFINDING_H
#define MESSAGEFINDING_H

#include "adexp.hpp"

#include <QString>

#include <vector>

/// A finding as the page of a message shows it. Positions count UTF-16 units of the text from 0.
struct MessageFinding
{
    adexp::Severity severity; ///< Warning or Error
    QString text;             ///< what was found; never empty
    QString detail;           ///< the text that it was found in; may be empty
    int begin;                ///< -1: it has no place
    int end;
    int count = 1; ///< how often it was reported
};

/// All findings of a message in the order of their places; those without a place come first.
using MessageFindings = std::vector<MessageFinding>;

#endif
