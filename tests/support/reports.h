#ifndef REPORTS_H
#define REPORTS_H

#include "support/diagnosticcapture.h"

#include <QString>

#include <string>
#include <vector>

/// Report lines, exactly as they reach the message output: their blank at the end included.
using Lines = std::vector<std::string>;

/// Everything that was captured. A line that is not of severity debug has its severity before it,
/// so that a comparison with report lines fails.
inline Lines linesOf(const DiagnosticCapture& diagnostics)
{
    Lines result;
    for (const DiagnosticCapture::Line& line : diagnostics.lines())
        result.push_back(
            (line.type == QtDebugMsg ? "" : "severity " + std::to_string(line.type) + ": ") +
            line.text.toStdString());
    return result;
}

/// The report of a loader: its signature and the message text.
inline std::string loaderReport(const std::string& signature, const QString& text)
{
    return signature + " \"" + text.toStdString() + "\" ";
}

inline std::string readTermsReport(const QString& text)
{
    return loaderReport("bool MainClass::readTermsXMLFile(const QString&, const QString&, bool)",
                        text);
}

inline std::string readMsgRulesReport(const QString& text)
{
    return loaderReport("bool MainClass::readMsgRulesXMLFile(const QString&)", text);
}

inline std::string setContentReport(const QString& text)
{
    return loaderReport("bool MainClass::ruleDomDocumentsetContent(const QString&, QDomDocument*)",
                        text);
}

/// The report of a term: the head of its record, its rule text and the message text.
inline std::string termReport(const QString& head, const QString& ruleText, const QString& text)
{
    return "\"" + head.toStdString() + "\" \"" + ruleText.toStdString() + "\" \"" +
           text.toStdString() + "\" ";
}

#endif
