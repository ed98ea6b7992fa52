#ifndef FIELDSTRETCHES_H
#define FIELDSTRETCHES_H

#include "textplaces.h"

#include <vector>

class AdexpField;

/// A field and the stretch of the text that it covers.
///
/// The positions of fields are what a conversion came to know of them: an end may be unset, and in
/// a message with mistakes a field may go on behind its parent. The stretches are put right: each
/// lies inside that of its parent and behind its siblings before it, and holds whole characters.
struct FieldStretch
{
    const AdexpField* field; ///< not owned
    int parent;              ///< index of the parent; -1 for the root
    int depth;               ///< 0 for the root
    int begin;               ///< of the keyword
    int keywordEnd;          ///< behind the keyword, or behind the name of a block
    int endKeyword;          ///< of the "-END" of a block; else the end
    int end;                 ///< behind the field
};

/// All fields of a message, each before those in it.
using FieldStretches = std::vector<FieldStretch>;

/// The stretches of @p root (not null) and all below, in the text of @p places.
FieldStretches fieldStretches(const AdexpField* root, const TextPlaces& places);

/// Index of the innermost of @p fields (not empty) whose stretch holds @p position; the root, which
/// is 0, if none does.
int fieldAt(const FieldStretches& fields, int position);

#endif
