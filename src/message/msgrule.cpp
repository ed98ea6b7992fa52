#include "message/msgrule.h"

#include "message/adexpdoc.h"
#include "message/adexpfield.h"
#include "output/xmlwriter.h"

MsgRule::MsgRule(const ConfigInfo* record, MainClass* converter, Reporter* reporter)
    : TermExpression(record, reporter), owner(converter)
{
    compoundField = true;
}

int MsgRule::type() const
{
    return TermTypeMsgRule;
}

bool MsgRule::isContainsCompoundField() const
{
    return true;
}

qsizetype MsgRule::expectedSize(const AdexpDoc& doc)
{
    // The document holds the text twice, and a field takes 150 bytes with its tags. If the message
    // is full of characters that must be escaped, the buffer grows.
    return 1024 + 2 * doc.msgParam.text.size() + 150 * static_cast<qsizetype>(doc.fieldCount());
}

XmlDocument MsgRule::toXMLString(AdexpDoc* doc) const
{
    XmlWriter writer(expectedSize(*doc));
    packDoc(doc, &writer);
    return writer.takeDocument();
}

void MsgRule::packDoc(AdexpDoc* doc, XmlWriter* writer) const
{
    const MsgParam& param = doc->msgParam;
    writer->startElement(u"ADEXP_XML");
    writer->attribute("version", "0.3");
    writer->attribute("parser_ver", "0.2.1");
    writer->attribute("from", param.from);
    writer->attribute("datatime", param.datatime); // the format's own spelling
    writer->attribute("rating", param.rating);
    writer->attribute("to", param.to);
    writer->attribute("rule", config.recordName);
    doc->rootField->dataToXML(writer);
    writer->startElement(u"ORIGINAL_TEXT");
    writer->text(param.text);
    writer->endElement();
    writer->endElement();
}
