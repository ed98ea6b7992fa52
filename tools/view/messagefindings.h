#ifndef MESSAGEFINDINGS_H
#define MESSAGEFINDINGS_H

#include "adexp.hpp"
#include "messagefinding.h"

/// The findings of a conversion for the page of its message.
///
/// A look ahead reports what a later one reports again. A finding that is told more than once, with
/// the same place, is kept once and counted.
MessageFindings messageFindings(const adexp::Findings& findings);

#endif
