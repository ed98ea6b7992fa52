#include "messagecoverage.h"

void MessageCoverage::count(const adexp::Result& result)
{
    title = result.title();
    for (const adexp::Field field : result.fields()) {
        if (field.name().empty())
            continue; // nor is it in the document
        ++fields;
        if (!field.isKnown())
            ++unknownFields;
    }
}
