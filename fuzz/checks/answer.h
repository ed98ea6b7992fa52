#ifndef ANSWER_H
#define ANSWER_H

#include "support/diagnosticcapture.h"

#include <QByteArray>

#include <string_view>

/// What was captured, a line for each report.
QByteArray reportLines(const DiagnosticCapture& capture);

/// What the library makes of a message.
struct Answer
{
    bool hasDocument = false;
    QByteArray document;
    QByteArray reports;

    bool operator==(const Answer& other) const
    {
        return hasDocument == other.hasDocument && document == other.document &&
               reports == other.reports;
    }
};

/// Converts @p message with the exported functions and holds the answer against everything that can
/// be said of it: see DocumentCheck; and the same message must give the same answer again, also
/// without its carriage returns. Internal errors are accepted if @p rulesAreBroken.
Answer checkedAnswer(std::string_view message, bool rulesAreBroken);

/// The answer alone.
Answer answer(std::string_view message, bool rulesAreBroken);

#endif
