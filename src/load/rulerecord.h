#ifndef RULERECORD_H
#define RULERECORD_H

#include "report/configinfo.h"

#include <cstddef>
#include <vector>

/// A place in a file as editors count it: line and column from 1, columns in UTF-16 units.
struct SourcePlace
{
    int line = 0; ///< 0: the whole file
    int column = 0;
};

/// A child element of a record.
struct RecordPart
{
    QString tag;
    QString text;
    std::vector<SourcePlace> places; ///< of each UTF-16 unit of the text, and of what follows it
};

/// A record of a rule file.
struct RuleRecord : ConfigInfo
{
    bool isActive = true;       ///< false: switched off
    bool isForeign = false;     ///< has another tag than the records of its file
    bool isMeantUnused = false; ///< says that no message rule uses it

    /// @name Only if the reader keeps everything
    /// @{
    SourcePlace place; ///< of the start tag
    std::vector<RecordPart> parts;
    int expressionPart = -1; ///< the part that ruleText comes from; -1: none
    /// @}

    bool isMessageRule() const { return tagName == QLatin1String("msgRule"); }
    bool isField() const { return !isMessageRule() && tagName != QLatin1String("simpleTerm"); }

    /// The part with the expression; null if there is none.
    const RecordPart* expression() const
    {
        return expressionPart < 0 ? nullptr : &parts[static_cast<std::size_t>(expressionPart)];
    }
};

#endif
