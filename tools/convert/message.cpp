#include "message.h"

#include "inputfile.h"

std::string Message::name() const
{
    return number == 0 ? displayName(input) : displayName(input) + ':' + std::to_string(number);
}
