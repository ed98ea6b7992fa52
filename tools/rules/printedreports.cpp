#include "printedreports.h"

#include "console.h"
#include "report/linereporter.h"

void PrintedReports::report(const Finding& finding)
{
    printError(CommandName, LineReporter::lineOf(finding).toStdString());
}
