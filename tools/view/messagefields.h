#ifndef MESSAGEFIELDS_H
#define MESSAGEFIELDS_H

#include "adexp.hpp"
#include "messagefield.h"
#include "textplaces.h"

/// The fields of a conversion for the page of its message: @p root and all in it, in the text of
/// @p places.
///
/// The positions of fields are what the conversion came to know of them: an end may be unset, and
/// in a message with mistakes a field may go on behind its parent. Here they are put right.
MessageFields messageFields(const adexp::Field& root, const TextPlaces& places);

#endif
