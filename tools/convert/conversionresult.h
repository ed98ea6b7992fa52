#ifndef CONVERSIONRESULT_H
#define CONVERSIONRESULT_H

#include "coveragereport.h"
#include "exitcodes.h"

#include <optional>
#include <string>

/// What became of one message.
struct ConversionResult
{
    ExitCode status = ExitCode::Success;
    std::string reports;        ///< lines for standard error
    std::string document;       ///< for standard output; empty: none
    MessageCoverage coverage;   ///< for the summary; empty without one
    std::optional<double> part; ///< see Message
};

#endif
