#ifndef RESULTWRITER_H
#define RESULTWRITER_H

#include "console.h"
#include "conversionresult.h"
#include "convertoptions.h"
#include "coveragereport.h"
#include "exitcodes.h"
#include "progressline.h"

#include <cstdint>

/// Puts the results of `adexp convert` where they belong: documents and summary to standard output,
/// reports to standard error. A report never stands before the documents of the messages before it,
/// also where both go to one place.
class ResultWriter
{
public:
    /// Writes as @p options say, which must outlive the object.
    explicit ResultWriter(const ConvertOptions& options);

    /// Writes the @p result of the next message. False if standard output takes no more.
    bool write(const ConversionResult& result);

    /// Hands on what was written so far: the next message may be long in coming.
    void flush() { m_out.flush(); }

    /// Writes the summary, if there is one. Returns how the command ends, the results considered.
    ExitCode finish();

private:
    void writeSummary();

    const ConvertOptions& m_options;
    StandardOutput m_out;
    ProgressLine m_progress;
    CoverageReport m_coverage;
    std::uint64_t m_messages = 0;
    ExitCode m_status = ExitCode::Success;
};

#endif
