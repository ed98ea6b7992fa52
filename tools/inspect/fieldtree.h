#ifndef FIELDTREE_H
#define FIELDTREE_H

#include "adexp.hpp"

#include <string>

/// @p field and the fields in it, a line for each, indented by depth.
std::string fieldTree(const adexp::Field& field);

#endif
