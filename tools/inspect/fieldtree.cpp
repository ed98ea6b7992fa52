#include "fieldtree.h"

namespace {

// A call for each level, which the rule set bounds.
void append(const adexp::Field& field, const std::string& indent, std::string* lines)
{
    const std::string name(field.name());
    lines->append(indent).append(name).append(" ").append(field.data());
    if (!field.isKnown()) {
        const std::optional<adexp::Field> parent = field.parent();
        lines->append(" : -- <")
            .append(parent ? parent->name() : "???")
            .append("> Unknown field --");
    }
    lines->append(" \n");
    if (field.children().empty())
        return;
    const std::string title = " sub fields for " + name + " ++ \n";
    lines->append(indent).append("++ Begin").append(title);
    for (const adexp::Field child : field.children())
        append(child, indent + "   ", lines);
    lines->append(indent).append("++ End").append(title);
}

} // namespace

std::string fieldTree(const adexp::Field& field)
{
    std::string lines;
    append(field, std::string(), &lines);
    return lines;
}
