#ifndef FINDINGLIST_H
#define FINDINGLIST_H

#include "messagefields.h"
#include "textplaces.h"

#include <string>

/// The findings of a message as HTML: a list with an <li id="fN" data-f="N"> for each, N being its
/// number from 1, with a link to its place in the text. @p fields (empty if there are none) and
/// @p findings are those that are shown.
std::string findingList(const MessageFindings& findings, const MessageFields& fields,
                        const TextPlaces& places);

#endif
