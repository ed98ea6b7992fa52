#include "converter.h"

#include <QString>
#include <QtGlobal>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

std::size_t countedLines = 0;
std::size_t countedBytes = 0;

void countLine(QtMsgType, const QMessageLogContext&, const QString& line)
{
    ++countedLines;
    countedBytes += static_cast<std::size_t>(line.size()) + 1;
}

[[noreturn]] void exitWithout(const char* what, std::string_view message)
{
    std::fprintf(stderr, "%s: %.*s\n", what,
                 static_cast<int>(std::min<std::size_t>(message.size(), 200)), message.data());
    std::exit(EXIT_FAILURE);
}

} // namespace

void bench::useEmbeddedRules()
{
    constexpr std::string_view Path = ":/adexp/adexp.ini";
    if (init_adexp(Path.data(), static_cast<int>(Path.size())) != 0) {
        std::fputs("The embedded rule set cannot be loaded\n", stderr);
        std::exit(EXIT_FAILURE);
    }
    qInstallMessageHandler(countLine);
}

std::size_t bench::diagnosticLines()
{
    return countedLines;
}

std::size_t bench::diagnosticBytes()
{
    return countedBytes;
}

std::string bench::convertOrExit(std::string_view message)
{
    unsigned int length = 0;
    const Document document = convert(message, &length);
    if (!document)
        exitWithout("No document for this message", message);
    return std::string(document.get(), length);
}

std::string bench::convertFaultlessOrExit(std::string_view message)
{
    const std::size_t before = diagnosticLines();
    std::string document = convertOrExit(message);
    if (diagnosticLines() != before)
        exitWithout("This message was to have no faults", message);
    return document;
}
