#ifndef CONVERSIONRUN_H
#define CONVERSIONRUN_H

#include "adexp.hpp"
#include "conversionthreads.h"
#include "convertoptions.h"
#include "exitcodes.h"
#include "messageconverter.h"
#include "messagesource.h"
#include "resultwriter.h"

/// Converts all messages that the options name.
///
/// This thread reads and writes, others convert: documents and reports come in the order of the
/// messages. If no more messages are at hand than one thread gets at once, it converts them itself;
/// so a single message, and each one of a conversation, needs no other thread.
class ConversionRun
{
public:
    /// Converts as @p options say, with @p rules; both must outlive the object.
    ConversionRun(const ConvertOptions& options, const adexp::RuleSet& rules);

    /// Returns how the command ends. If standard output takes no more while threads are at work,
    /// it ends the process.
    ExitCode run();

private:
    bool convertWhatIsAtHand();
    Batch nextBatch();
    bool convertHere(const Batch& batch);
    bool writeResults();
    void wait();
    ExitCode end();

    int m_jobs;
    MessageSource m_source;
    ResultWriter m_writer;
    MessageConverter m_converter;
    ConversionThreads m_threads;
    bool m_isWaitingForInput = false;
    bool m_isAtEnd = false;
};

#endif
