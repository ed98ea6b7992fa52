#ifndef BATCH_H
#define BATCH_H

#include "conversionresult.h"
#include "message.h"

#include <cstddef>
#include <vector>

/// Messages that one thread converts one after another, and what became of them.
struct Batch
{
    std::vector<Message> messages;
    std::size_t bytes = 0;                 ///< about the memory of the messages
    std::vector<ConversionResult> results; ///< as many
    std::size_t converted = 0;             ///< so many results are there
    std::size_t taken = 0;                 ///< so many of them were taken away
};

#endif
