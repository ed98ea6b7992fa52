#include "element.h"

#include <QXmlStreamReader>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

using bench::Utf8Element;

std::string utf8(QStringView text)
{
    return text.toUtf8().toStdString();
}

// Reads the element whose start tag was read last, up to its end tag.
Utf8Element readElement(QXmlStreamReader* reader)
{
    Utf8Element element;
    element.name = utf8(reader->name());
    for (const QXmlStreamAttribute& attribute : reader->attributes())
        element.attributes.emplace_back(utf8(attribute.name()), utf8(attribute.value()));
    for (;;) {
        switch (reader->readNext()) {
        case QXmlStreamReader::StartElement:
            element.children.push_back(readElement(reader));
            break;
        case QXmlStreamReader::Characters:
            if (!reader->isWhitespace())
                element.text += utf8(reader->text());
            break;
        default:
            return element;
        }
    }
}

} // namespace

bench::Utf8Element bench::readDocument(std::string_view document)
{
    QXmlStreamReader reader(QByteArray(document.data(), static_cast<int>(document.size())));
    Utf8Element root;
    if (reader.readNextStartElement())
        root = readElement(&reader);
    if (reader.hasError()) {
        std::fprintf(stderr, "The document is not well-formed: %s\n",
                     qPrintable(reader.errorString()));
        std::exit(EXIT_FAILURE);
    }
    return root;
}

bench::Utf16Element bench::toUtf16(const Utf8Element& element)
{
    Utf16Element result;
    result.name = QString::fromStdString(element.name);
    result.text = QString::fromStdString(element.text);
    for (const auto& [name, value] : element.attributes)
        result.attributes.emplace_back(QString::fromStdString(name), QString::fromStdString(value));
    for (const Utf8Element& child : element.children)
        result.children.push_back(toUtf16(child));
    return result;
}

bool bench::sameContent(const Utf8Element& a, const Utf8Element& b)
{
    auto attributesOfA = a.attributes;
    auto attributesOfB = b.attributes;
    std::sort(attributesOfA.begin(), attributesOfA.end());
    std::sort(attributesOfB.begin(), attributesOfB.end());
    return a.name == b.name && a.text == b.text && attributesOfA == attributesOfB &&
           std::equal(a.children.begin(), a.children.end(), b.children.begin(), b.children.end(),
                      sameContent);
}
