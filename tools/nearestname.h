#ifndef NEARESTNAME_H
#define NEARESTNAME_H

#include <string>
#include <vector>

/// The first of @p known with the fewest single-character changes to @p name, for "did you mean";
/// empty if @p known is.
std::string nearestName(const std::string& name, const std::vector<std::string>& known);

#endif
