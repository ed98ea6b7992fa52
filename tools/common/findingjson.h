#ifndef FINDINGJSON_H
#define FINDINGJSON_H

#include "adexp.hpp"

#include <QJsonObject>
#include <QString>

#include <string>

/// What a finding has to be shown as JSON.
struct FindingFacts
{
    bool isWarning = false;
    QString text;
    QString detail; ///< may be empty
    QString name;   ///< in a rule set: the definition; may be empty
    QString file;   ///< in a rule set: the file; empty in a message
    int line = 0;   ///< in the file
    int column = 0; ///< in the file
    int begin = -1; ///< in a message; -1: no place
    int end = -1;   ///< in a message
};

/// @p finding as JSON: "severity" ("error" or "warning"), "text", and what it has of "detail", of
/// "file", "line", "column" and "name" (the definition; in a rule set), and of "begin" and "end"
/// (in a message, positions in UTF-16 units).
QJsonObject findingJson(const FindingFacts& finding);
QJsonObject findingJson(const adexp::Finding& finding);

/// An error of the command itself as JSON: "file" (left out if @p file is empty), "severity" and
/// "text".
QJsonObject errorJson(const std::string& file, const std::string& text);

/// @p object in one line, the line break at its end included. The line is inert: JSON escapes
/// control characters.
std::string jsonLine(const QJsonObject& object);

#endif
