#ifndef MESSAGECONVERTER_H
#define MESSAGECONVERTER_H

#include "adexp.hpp"
#include "conversionresult.h"
#include "convertoptions.h"
#include "message.h"

#include <string>

/// Does the whole work for one message after another: reads, converts, writes the document if it
/// goes to a file, and tells what there is to report. For one thread; others have their own, with
/// the same rule set.
class MessageConverter
{
public:
    /// Works as @p options say, with @p rules; both must outlive the object.
    MessageConverter(const ConvertOptions& options, const adexp::RuleSet& rules);

    /// Converts @p message. Throws std::bad_alloc if memory runs out; the next call works.
    ConversionResult convert(const Message& message);

    /// The same, but if memory runs out the result says so.
    ConversionResult convertOrTell(const Message& message);

private:
    ConversionResult emptyResult(const Message& message) const;
    void convertInto(const Message& message, ConversionResult* result);
    void write(const std::string& file, ConversionResult* result) const;
    void report(const Message& message, ConversionResult* result) const;
    void notConverted(const Message& message, const std::string& reason,
                      ConversionResult* result) const;
    void fail(const std::string& reason, const std::string& line, ConversionResult* result) const;

    const ConvertOptions& m_options;
    const adexp::RuleSet& m_rules;
    adexp::Result m_converted; // its memory is used again
};

#endif
