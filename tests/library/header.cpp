// Nothing but the header: it needs no other one before it.
#include "adexp.h"
