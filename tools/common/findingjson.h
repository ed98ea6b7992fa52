#ifndef FINDINGJSON_H
#define FINDINGJSON_H

#include "adexp.hpp"

#include <QJsonObject>
#include <QString>

#include <string>

/// @p finding as JSON: "severity" ("error" or "warning"), "text", and what it has of "detail", of
/// "file", "line", "column" and "name" (the definition; in a rule set), and of "begin" and "end"
/// (in a message, positions in UTF-16 units).
QJsonObject findingJson(const adexp::Finding& finding);

/// What each finding has of it: @p detail may be empty.
QJsonObject findingJson(bool isWarning, const QString& text, const QString& detail);

/// Adds what a finding about a rule set has besides: @p name may be empty.
void insertRecord(const QString& name, const QString& file, int line, int column,
                  QJsonObject* finding);

/// An error of the command itself as JSON: "file" (left out if @p file is empty), "severity" and
/// "text".
QJsonObject errorJson(const std::string& file, const std::string& text);

/// @p object in one line, the line break at its end included. The line is inert: JSON escapes
/// control characters.
std::string jsonLine(const QJsonObject& object);

#endif
