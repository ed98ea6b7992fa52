#include "resultwriter.h"

#include <string_view>
#include <unistd.h>

namespace {

// Documents that scroll by leave no place for a line at the bottom.
bool wantsProgress(const ConvertOptions& options)
{
    const bool isDisturbed = options.isToStandardOutput() && isatty(STDOUT_FILENO) == 1;
    return !options.quiet && !options.noProgress && !isDisturbed;
}

} // namespace

ResultWriter::ResultWriter(const ConvertOptions& options)
    : m_options(options), m_progress(wantsProgress(options))
{
}

bool ResultWriter::write(const ConversionResult& result)
{
    m_status = worse(m_status, result.status);
    if (!result.reports.empty()) {
        flush();
        m_progress.erase();
        writeToStandardError(result.reports);
    }
    m_out.write(result.document);
    if (m_options.nul && m_options.isToStandardOutput())
        m_out.write(std::string_view("\0", 1));
    if (m_options.summary)
        m_coverage.add(result.coverage);
    m_messages += result.messages;
    m_progress.show(m_messages, result.part);
    return !m_out.hasFailed();
}

ExitCode ResultWriter::finish()
{
    m_progress.erase();
    if (m_options.summary)
        writeSummary();
    return m_out.flush() ? m_status : ExitCode::NotDone;
}

void ResultWriter::writeSummary()
{
    const std::string summary = m_options.isJson ? m_coverage.json() : m_coverage.text();
    if (m_options.isToStandardOutput()) {
        m_out.flush();
        writeToStandardError(summary);
        return;
    }
    m_out.write(summary);
    if (m_coverage.notConverted() != 0 && m_options.isSummaryOnly() && m_out.flush())
        printError(CommandName, std::to_string(m_coverage.notConverted()) +
                                    " not converted; the end of the report says which and why");
}
