#ifndef BENCH_CONVERTER_H
#define BENCH_CONVERTER_H

#include "adexp.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

/// The library as its users call it, and what it writes to Qt's message output.
namespace bench {

/// Loads the rule set that is compiled into the library. The program ends with a message if that
/// fails. From then on every diagnostic line is counted and thrown away.
void useEmbeddedRules();

/// The diagnostic lines since useEmbeddedRules().
std::size_t diagnosticLines();

/// Their bytes, with a line feed for each line; a line of other than ASCII characters has some
/// more.
std::size_t diagnosticBytes();

struct FreeDocument
{
    void operator()(const char* document) const { free_adexp(document); }
};

/// A document as the library returned it; null if there is none.
using Document = std::unique_ptr<const char[], FreeDocument>;

inline Document convert(std::string_view message, unsigned int* length)
{
    return Document(
        convert_from_adexp(message.data(), static_cast<unsigned int>(message.size()), length));
}

/// The document of @p message. The program ends with a message if there is none.
std::string convertOrExit(std::string_view message);

/// The same, and it also ends if anything was reported.
std::string convertFaultlessOrExit(std::string_view message);

} // namespace bench

#endif
