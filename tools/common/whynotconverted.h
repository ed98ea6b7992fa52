#ifndef WHYNOTCONVERTED_H
#define WHYNOTCONVERTED_H

#include "adexp.hpp"

#include <string>

/// Why there is no document and what to do about it; empty if there is one, or could be.
std::string whyNotConverted(const adexp::Result& result);

#endif
