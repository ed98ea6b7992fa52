#ifndef CONVERSIONRESULT_H
#define CONVERSIONRESULT_H

#include "exitcodes.h"
#include "messagecoverage.h"

#include <string>
#include <string_view>

class FrameReader;
class FrameWriter;

/// What became of one message.
struct ConversionResult
{
    ExitCode status = ExitCode::Success;
    std::string reports;       ///< lines for standard error
    std::string_view document; ///< for standard output; empty: none. Not owned
    MessageCoverage coverage;  ///< for the summary; empty without one

    /// For handing it to another process. The document read stays in the memory of @p frame.
    void writeTo(FrameWriter* frame) const;
    static ConversionResult readFrom(FrameReader* frame);
};

#endif
