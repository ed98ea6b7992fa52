#ifndef ADEXPLIB_H
#define ADEXPLIB_H

#include "api/sharedrules.h"

/// The default rule set of the process, behind init_adexp(), convert_from_adexp() and
/// clear_adexp(); null before the first load and after clear_adexp(). Those functions have a share
/// in it, and a lock for it: who reads it here must know that none of them runs.
extern adexp_rules* mc;

#endif
