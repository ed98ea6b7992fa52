#ifndef FINDINGJSON_H
#define FINDINGJSON_H

#include <string>

class QJsonObject;
struct Finding;

/// @p finding as JSON: "severity" ("error" or "warning"), "text", and what it has of "detail", of
/// "file", "line", "column" and "name" (the definition; in a rule set), and of "begin" and "end"
/// (in a message, positions in UTF-16 units).
QJsonObject findingJson(const Finding& finding);

/// An error of the command itself as JSON: "file" (left out if @p file is empty), "severity" and
/// "text".
QJsonObject errorJson(const std::string& file, const std::string& text);

/// @p object in one line, the line break at its end included. The line is inert: JSON escapes
/// control characters.
std::string jsonLine(const QJsonObject& object);

#endif
