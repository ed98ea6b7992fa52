#include "messagecoverage.h"

#include "framereader.h"
#include "framewriter.h"

#include <QByteArray>
#include <QXmlStreamReader>

// Every element with the attribute "valid" is a field, but for the first one: the message itself.
void MessageCoverage::countDocument(std::string_view document)
{
    using Size = decltype(QByteArray().size()); // int up to Qt 5
    QXmlStreamReader reader(
        QByteArray::fromRawData(document.data(), static_cast<Size>(document.size())));
    reader.readNextStartElement();
    title = reader.attributes().value(QLatin1String("rule")).toString().toStdString();
    reader.readNextStartElement();
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        const auto attributes = reader.attributes();
        if (!attributes.hasAttribute(QLatin1String("valid")))
            continue;
        ++fields;
        if (attributes.value(QLatin1String("valid")) == QLatin1String("false"))
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
