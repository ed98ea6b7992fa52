#ifndef CONVERTOPTIONS_H
#define CONVERTOPTIONS_H

#include "adexp.hpp"
#include "settingsfile.h"

#include <string>
#include <vector>

/// What `adexp convert` was asked for.
struct ConvertOptions
{
    std::string settings = BuiltInSettings; ///< settings file of the rule set
    std::vector<std::string> files;         ///< messages; none: standard input
    std::string filesFrom;                  ///< file that names the messages; empty: none
    std::string output;                     ///< file or folder; empty or "-": standard output
    bool isOutputFolder = false;            ///< the output is a folder for the documents
    int jobs = 0;            ///< threads that convert; 0: one for each processor that may be used
    bool recursive = false;  ///< a folder stands for the files in it
    bool lines = false;      ///< each line of the inputs is a message
    bool nul = false;        ///< NUL ends messages of standard input, names of files, documents
    bool summary = false;    ///< report the coverage; without output write no documents
    bool isJson = false;     ///< reports and summary as JSON
    bool quiet = false;      ///< no reports about messages, no progress
    bool noProgress = false; ///< no progress

    /// True if there are no documents, only a summary.
    bool isSummaryOnly() const { return summary && output.empty(); }
    /// True if reports about messages are shown.
    bool showsReports() const { return !quiet && !isSummaryOnly(); }
    /// True if the documents go to files.
    bool hasOutputFiles() const { return !output.empty() && output != "-"; }
    /// True if the documents go to standard output.
    bool isToStandardOutput() const { return !isSummaryOnly() && !hasOutputFiles(); }
    /// True if somebody sees what was found in messages, and not only whether anything was.
    bool wantsFindings() const { return showsReports() || summary; }
    /// What is asked of the conversion of a message.
    adexp::Options wanted() const
    {
        return {!isSummaryOnly(), summary, true, wantsFindings() ? 0U : 1U};
    }
};

#endif
