#ifndef FIELDTREE_H
#define FIELDTREE_H

#include "message/adexpfield.h"
#include "support/reports.h"

#include <QString>

#include <string>

/// The tree below and with @p field, a line per field, two blanks per level:
///
///     ADDR[] 12..40          name, "[]" for a block, begin and end
///       FAC 24..33 #1: EGLL  item number (in a block only), data
///       XYZ? 34..38 #1       "?": matched no definition
inline void appendTree(const AdexpField& field, const std::string& indent, Lines* lines)
{
    std::string line = indent + field.fieldName.toString().toStdString();
    line += field.isList ? "[]" : field.fieldTerm ? "" : "?";
    line += " " + std::to_string(field.fieldBegin) + ".." + std::to_string(field.fieldEnd);
    if (field.parentField && field.parentField->isList)
        line += " #" + std::to_string(field.itemIndex);
    if (!field.fieldData.isEmpty())
        line += ": " + field.fieldData.toString().toStdString();
    lines->push_back(line);
    for (const AdexpField* sub : field.subFields)
        appendTree(*sub, indent + "  ", lines);
}

/// The lines of appendTree() for the fields below @p root.
inline Lines treeBelow(const AdexpField& root)
{
    Lines lines;
    for (const AdexpField* sub : root.subFields)
        appendTree(*sub, "", &lines);
    return lines;
}

#endif
