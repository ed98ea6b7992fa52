#ifndef MESSAGEFIELDS_H
#define MESSAGEFIELDS_H

#include "adexp.hpp"
#include "messagefindings.h"
#include "textplaces.h"

#include <QString>

#include <vector>

/// A field as the page of a message shows it, with the stretch of the text that it covers.
///
/// Positions count UTF-16 units of the text from 0. The stretch of a field lies inside that of its
/// parent and behind those of the siblings before it, and holds whole characters.
struct MessageField
{
    QString name;     ///< keyword without hyphen; name of a block; title
    QString data;     ///< its own data; may be empty
    bool isKnown;     ///< it matched a definition
    int item;         ///< number of the list item that it opens; 0: it opens none
    int parent;       ///< index of the parent; -1 for the root
    int depth;        ///< 0 for the root
    int begin;        ///< of the keyword
    int keywordEnd;   ///< behind the keyword, or behind the name of a block
    int endKeyword;   ///< of the "-END" of a block; else the end
    int end;          ///< behind the field
    int subFields;    ///< how many fields are directly in it
    int findings = 0; ///< how many findings begin in it, those in its sub-fields included
};

/// All fields of a message, each before those in it. The first is the root; empty: no fields.
using MessageFields = std::vector<MessageField>;

/// Index of the innermost of @p fields (not empty) whose stretch holds @p position; the root, which
/// is 0, if none does.
int fieldAt(const MessageFields& fields, int position);

/// The fields of a conversion for the page of its message: @p root and all in it, in the text of
/// @p places, with @p findings.
///
/// The positions of fields are what the conversion came to know of them: an end may be unset, and
/// in a message with mistakes a field may go on behind its parent. Here they are put right.
MessageFields messageFields(const adexp::Field& root, const TextPlaces& places,
                            const MessageFindings& findings);

#endif
