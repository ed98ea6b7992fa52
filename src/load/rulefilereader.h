#ifndef RULEFILEREADER_H
#define RULEFILEREADER_H

#include "adexp.h"
#include "load/rulerecord.h"

#include <vector>

/// Reads the records of one rule file: the elements in its root element.
///
/// Tags and attributes count by their names without prefix. No other file is read. A file that
/// would cost far more than its size is refused; no rule file comes near the limits.
class RuleFileReader
{
public:
    /// Levels of elements. Rule files need three.
    static constexpr int MaxDepth = 250;

    /// Attributes of one element. Rule files need three.
    static constexpr int MaxAttributes = 250;

    /// Bytes of a document type, as UTF-8. Rule files need none.
    static constexpr int MaxTypeSize = 8192;

    /// How many times as long as the file the content may be, with entities and default attributes
    /// put in.
    static constexpr int MaxGrowth = 16;

    /// For a file whose records have the tag @p recordTag. @p keepsAll: their parts and places are
    /// kept as well, not only what definitions are made of.
    RuleFileReader(const QString& recordTag, bool keepsAll);

    /// Reads the file @p path. False if it cannot be read.
    bool read(const QString& path);

    const QString recordTag;
    const bool keepsAll;
    std::vector<RuleRecord> records; ///< of the file that was read, in its order

    /// Why the file cannot be read.
    struct
    {
        adexp_code code = ADEXP_CODE_NONE;
        QString text;
        SourcePlace place; ///< where its content is at fault
    } fault;

private:
    bool fail(adexp_code code, const QString& text, const SourcePlace& place = {});
};

#endif
