#ifndef CONVERSIONRESULT_H
#define CONVERSIONRESULT_H

#include "coveragereport.h"
#include "exitcodes.h"

#include <cstddef>
#include <optional>
#include <string>

/// What became of a message, or of some that follow each other.
struct ConversionResult
{
    std::size_t messages = 1;
    ExitCode status = ExitCode::Success;
    std::string reports;        ///< lines for standard error
    std::string document;       ///< for standard output, or one behind the other; empty: none
    MessageCoverage coverage;   ///< for the summary; empty without one
    std::optional<double> part; ///< see Message
};

#endif
