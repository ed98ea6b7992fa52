#ifndef MESSAGE_H
#define MESSAGE_H

#include "inputfile.h"

#include <cstdint>
#include <optional>
#include <string>

/// One message that is to be converted.
struct Message
{
    std::string input;          ///< the argument it comes from
    std::uint64_t number = 0;   ///< which one in its input, from 1; 0: the input is one message
    std::string text;           ///< what it says, if it has been read
    std::string failure;        ///< why it cannot be read and what to do about it; empty if it can
    std::string document;       ///< the file that its document goes to; empty: none
    bool isRead = false;        ///< false: its text is still in the file that input names
    std::optional<double> part; ///< which part of all inputs was taken with it, from 0 to 1;
                                ///< nothing if that cannot be known

    /// How reports call it: "plan.adexp", "<stdin>", "archive.txt:3".
    std::string name() const
    {
        return number == 0 ? displayName(input) : displayName(input) + ':' + std::to_string(number);
    }
};

#endif
