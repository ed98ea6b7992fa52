#ifndef SUMMARYCOMMAND_H
#define SUMMARYCOMMAND_H

#include "exitcodes.h"

#include <string>
#include <vector>

/// `adexp convert --summary`: converts all messages of @p inputs (files, folders, "-") with the
/// rule set of @p settings and prints what it covers. No documents are written.
ExitCode runSummary(const std::string& settings, const std::vector<std::string>& inputs);

#endif
