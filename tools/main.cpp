// The command "adexp": converts messages, and shows how the library sees messages and rule sets.

#include "commandline.h"
#include "commands.h"
#include "console.h"
#include "exitcodes.h"

#include <CLI/CLI.hpp>

#include <clocale>
#include <csignal>
#include <fcntl.h>
#include <new>
#include <optional>
#include <string>
#include <unistd.h>

namespace {

// If the caller has closed a standard stream, a file opened later would take its number, and get
// what is meant for the stream. So the number is taken here. The input is opened for writing and
// the outputs for reading: using them still fails.
void fillClosedStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(stream, F_GETFD) == -1)
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

void prepareProcess()
{
    fillClosedStandardStreams();
    // A closed pipe and the file size limit become errors of writing. These calls cannot fail.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
    // The encoding of file names, for Qt 5; without such a locale it stays "C". Qt 6 always has
    // UTF-8.
    static_cast<void>(std::setlocale(LC_CTYPE, ""));
}

constexpr const char* Footer =
    "Each subcommand has a --help and a manual page, for example man adexp-convert. This command\n"
    "is installed in bin/. The folder share/ beside it has rule files to copy and change in\n"
    "adexp/rules, their schemas in adexp/schemas, documents and sample messages in doc.\n"
    "\n"
    "Examples:\n"
    "  adexp convert plan.adexp > plan.xml\n"
    "  adexp view plan.adexp -o plan.html\n"
    "  adexp check --settings my.ini\n";

ExitCode run(int argc, const char* const* argv)
{
    CLI::App app("Converts air-traffic messages in ADEXP to XML by rule files.", CommandName);
    app.set_version_flag("--version", std::string(CommandName) + ' ' + ADEXP_VERSION,
                         "Show the version");
    app.require_subcommand(1);
    addCommonParts(&app, Footer, nullptr);

    ExitCode status = ExitCode::Success;
    addConvertCommand(&app, &status);
    addTreeCommand(&app, &status);
    addCheckCommand(&app, &status);
    addExplainCommand(&app, &status);
    addMatchCommand(&app, &status);
    addViewCommand(&app, &status);
    addDumpCommand(&app, &status);
    const std::optional<ExitCode> end = parseCommandLine(&app, argc, argv);
    return end ? *end : status;
}

} // namespace

int main(int argc, char** argv)
{
    prepareProcess();
    try {
        return static_cast<int>(run(argc, argv));
    } catch (const std::bad_alloc&) {
        printError(CommandName, "memory ran out; convert fewer or smaller messages");
        return static_cast<int>(ExitCode::NotDone);
    }
}
