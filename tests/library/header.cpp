// Only the header: it needs no other header before it.
#include "adexp.h"
