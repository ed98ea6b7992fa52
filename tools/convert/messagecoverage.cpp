#include "messagecoverage.h"

#include "framereader.h"
#include "framewriter.h"

#include <QByteArray>
#include <QXmlStreamReader>

namespace {

// The first line of a document is the tag of its root element.
std::string titleOf(std::string_view document)
{
    const std::string_view line = document.substr(0, document.find('\n'));
    using Size = decltype(QByteArray().size()); // int up to Qt 5
    QXmlStreamReader reader(QByteArray::fromRawData(line.data(), static_cast<Size>(line.size())));
    reader.readNextStartElement();
    return reader.attributes().value(QLatin1String("rule")).toString().toStdString();
}

} // namespace

// Every element with the attribute "valid", which is the first one, is a field, but for the first
// element: the message itself. A "<" of a text is written as an entity. An XML reader would take
// ten times as long as the conversion.
void MessageCoverage::countDocument(std::string_view document)
{
    constexpr std::string_view Valid = " valid=\"";
    title = titleOf(document);
    fields = -1;
    for (std::size_t tag = document.find('<'); tag != std::string_view::npos;
         tag = document.find('<', tag + 1)) {
        const std::string_view attributes = document.substr(document.find_first_of(" >", tag));
        if (attributes.substr(0, Valid.size()) != Valid)
            continue;
        ++fields;
        if (attributes[Valid.size()] == 'f')
            ++unknownFields;
    }
}

void MessageCoverage::writeTo(FrameWriter* frame) const
{
    frame->text(title);
    frame->number(static_cast<std::uint64_t>(fields));
    frame->number(static_cast<std::uint64_t>(unknownFields));
    frame->number(diagnostics.size());
    for (const auto& [text, count] : diagnostics) {
        frame->text(text);
        frame->number(static_cast<std::uint64_t>(count));
    }
    frame->text(name);
    frame->text(failure);
}

MessageCoverage MessageCoverage::readFrom(FrameReader* frame)
{
    MessageCoverage coverage;
    coverage.title = frame->text();
    coverage.fields = static_cast<std::int64_t>(frame->number());
    coverage.unknownFields = static_cast<std::int64_t>(frame->number());
    for (std::uint64_t left = frame->number(); left > 0; --left) {
        const std::string text(frame->text());
        coverage.diagnostics[text] = static_cast<std::int64_t>(frame->number());
    }
    coverage.name = frame->text();
    coverage.failure = frame->text();
    return coverage;
}
