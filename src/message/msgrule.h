#ifndef MSGRULE_H
#define MSGRULE_H

#include "grammar/termexpression.h"
#include "output/xmldocument.h"

class AdexpDoc;
class MainClass;
class XmlWriter;

/// The rule for the messages of one title: an expression of the fields of the message. Its record
/// name is the title.
class MsgRule : public TermExpression
{
public:
    /// Compiles the rule text of @p record (not null, copied); look at `valid` afterwards.
    /// @p converter, which loads the rule, is not owned.
    MsgRule(const ConfigInfo* record, MainClass* converter, Reporter* reporter);

    int type() const override;

    /// Always true: a message is a compound of fields, even if its rule names none.
    bool isContainsCompoundField() const override;

    /// The output document of @p doc (not null), a message parsed against this rule, as UTF-8.
    XmlDocument toXMLString(AdexpDoc* doc) const;

    /// About how many bytes that document has.
    static qsizetype expectedSize(const AdexpDoc& doc);

    /// Writes that document to @p writer.
    void packDoc(AdexpDoc* doc, XmlWriter* writer) const;

    MainClass* owner; ///< the converter that loaded the rule, not owned
};

#endif
