#ifndef NEARESTNAME_H
#define NEARESTNAME_H

#include <cstddef>
#include <string>
#include <vector>

/// The number of characters to insert, delete, replace or exchange with their neighbour to make @p
/// b of @p a.
std::size_t editDistance(const std::string& a, const std::string& b);

/// The first of @p known with the fewest single-character changes to @p name, for "did you mean";
/// empty if there is none. A name of more than 40 bytes is near to none.
std::string nearestName(const std::string& name, const std::vector<std::string>& known);

#endif
