#include "message.h"

#include "framereader.h"
#include "framewriter.h"
#include "inputfile.h"

std::string Message::name() const
{
    return number == 0 ? displayName(input) : displayName(input) + ':' + std::to_string(number);
}

void Message::writeTo(FrameWriter* frame) const
{
    frame->text(input);
    frame->number(number);
    frame->text(text);
    frame->text(failure);
    frame->text(document);
    frame->number(isRead ? 1 : 0);
}

Message Message::readFrom(FrameReader* frame)
{
    Message message;
    message.input = frame->text();
    message.number = frame->number();
    message.text = frame->text();
    message.failure = frame->text();
    message.document = frame->text();
    message.isRead = frame->number() == 1;
    return message;
}
