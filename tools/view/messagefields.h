#ifndef MESSAGEFIELDS_H
#define MESSAGEFIELDS_H

#include "messagefield.h"
#include "textplaces.h"

class AdexpField;

/// The fields of a conversion for the page of its message: @p root (not null) and all below, in the
/// text of @p places, which the names and data are views into.
///
/// The positions of fields are what the conversion came to know of them: an end may be unset, and
/// in a message with mistakes a field may go on behind its parent. Here they are put right.
MessageFields messageFields(const AdexpField* root, const TextPlaces& places);

#endif
