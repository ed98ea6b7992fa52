#include "peers.h"

#include <QDomDocument>
#include <QXmlStreamWriter>

#include <pugixml.hpp>

namespace {

using bench::Utf16Element;
using bench::Utf8Element;

void build(pugi::xml_node node, const Utf8Element& element)
{
    for (const auto& [name, value] : element.attributes)
        node.append_attribute(name.c_str()).set_value(value.c_str());
    if (!element.text.empty())
        node.append_child(pugi::node_pcdata).set_value(element.text.c_str());
    for (const Utf8Element& child : element.children)
        build(node.append_child(child.name.c_str()), child);
}

struct StringWriter : pugi::xml_writer
{
    void write(const void* data, std::size_t size) override
    {
        result.append(static_cast<const char*>(data), size);
    }

    std::string result;
};

QDomElement build(QDomDocument& document, const Utf16Element& element)
{
    QDomElement node = document.createElement(element.name);
    for (const auto& [name, value] : element.attributes)
        node.setAttribute(name, value);
    if (!element.text.isEmpty())
        node.appendChild(document.createTextNode(element.text));
    for (const Utf16Element& child : element.children)
        node.appendChild(build(document, child));
    return node;
}

void write(QXmlStreamWriter& writer, const Utf16Element& element)
{
    writer.writeStartElement(element.name);
    for (const auto& [name, value] : element.attributes)
        writer.writeAttribute(name, value);
    if (!element.text.isEmpty())
        writer.writeCharacters(element.text);
    for (const Utf16Element& child : element.children)
        write(writer, child);
    writer.writeEndElement();
}

std::string escaped(const std::string& text, bool inAttribute)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '>' && i >= 2 && text.compare(i - 2, 2, "]]") == 0)
            result += "&gt;";
        else if (c == '"' && inAttribute)
            result += "&quot;";
        else
            result += c;
    }
    return result;
}

} // namespace

std::string bench::printWithPugixml(const Utf8Element& root)
{
    pugi::xml_document document;
    build(document.append_child(root.name.c_str()), root);
    StringWriter writer;
    document.save(writer, "    ", pugi::format_indent | pugi::format_no_declaration);
    return std::move(writer.result);
}

QByteArray bench::printWithQDomDocument(const Utf16Element& root)
{
    QDomDocument document;
    document.appendChild(build(document, root));
    return document.toByteArray(4);
}

QByteArray bench::printWithQXmlStreamWriter(const Utf16Element& root)
{
    QByteArray result;
    QXmlStreamWriter writer(&result);
    writer.setAutoFormatting(true);
    ::write(writer, root);
    return result;
}

bench::ReadyParts::ReadyParts(const Utf8Element& root)
{
    addElement(root, 0);
    m_fixedText += '\n';
    m_parts.push_back(std::move(m_fixedText));
}

std::string bench::ReadyParts::write() const
{
    std::string result;
    for (const std::string& part : m_parts)
        result.append(part);
    return result;
}

void bench::ReadyParts::addElement(const Utf8Element& element, std::size_t depth)
{
    m_fixedText += '<';
    addOwnText(element.name);
    for (const auto& [name, value] : element.attributes) {
        m_fixedText += ' ' + name + "=\"";
        addOwnText(escaped(value, true));
        m_fixedText += '"';
    }
    if (element.text.empty() && element.children.empty()) {
        m_fixedText += "/>";
        return;
    }
    m_fixedText += '>';
    if (!element.text.empty())
        addOwnText(escaped(element.text, false));
    for (std::size_t i = 0; i < element.children.size(); ++i) {
        if (i != 0 || element.text.empty())
            addLineBreakAndIndent(depth + 1);
        addElement(element.children[i], depth + 1);
    }
    if (!element.children.empty())
        addLineBreakAndIndent(depth);
    m_fixedText += "</";
    addOwnText(element.name);
    m_fixedText += '>';
}

void bench::ReadyParts::addLineBreakAndIndent(std::size_t depth)
{
    m_fixedText += '\n' + std::string(4 * depth, ' ');
}

void bench::ReadyParts::addOwnText(const std::string& text)
{
    m_parts.push_back(std::move(m_fixedText));
    m_fixedText.clear();
    m_parts.push_back(text);
}
