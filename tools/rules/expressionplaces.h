#ifndef EXPRESSIONPLACES_H
#define EXPRESSIONPLACES_H

#include "load/rulerecord.h"

/// The place of each UTF-16 unit of the text of @p part after QString::toUpper() and
/// QString::simplified(), which is the form that expressions are compiled from, and of what follows
/// it.
std::vector<SourcePlace> placesInExpression(const RecordPart& part);

#endif
