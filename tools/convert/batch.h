#ifndef BATCH_H
#define BATCH_H

#include "conversionresult.h"
#include "message.h"

#include <cstddef>
#include <deque>
#include <vector>

/// Messages that one thread converts one after another, and what became of them.
struct Batch
{
    std::vector<Message> messages;
    std::size_t bytes = 0;                ///< about the memory of the messages
    std::size_t converted = 0;            ///< so many messages are done
    std::deque<ConversionResult> results; ///< of these, but for those that were taken away
};

#endif
