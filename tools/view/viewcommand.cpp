#include "commandline.h"
#include "commands.h"
#include "console.h"
#include "inputfile.h"
#include "loadedrules.h"
#include "messagefields.h"
#include "messagefindings.h"
#include "messagepage.h"
#include "outputfile.h"
#include "readfiles.h"
#include "settingsfile.h"
#include "unicode.h"
#include "whynotconverted.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace {

struct ViewOptions
{
    std::string settings = BuiltInSettings;
    std::string file;   // the message
    std::string output; // the page; empty or "-": standard output
};

constexpr const char* ViewFooter =
    "One HTML page for a browser, which needs no network: the text of the message with its\n"
    "fields and findings marked, the tree of fields, and the list of findings. A message\n"
    "without -TITLE, or without a rule for its title, gives a page without fields and the\n"
    "exit status 2. Reports go to standard error as well. \"-\" reads standard input.\n"
    "\n"
    "Examples:\n"
    "  adexp view plan.adexp -o plan.html\n"
    "  adexp view --settings my.ini - < plan.adexp > plan.html\n";

// Why the page must not be written to output; empty if it may.
std::string checkOutput(const ViewOptions& options)
{
    ReadFiles readFiles(options.settings);
    readFiles.add(options.file);
    return readFiles.contains(options.output) ? "the page would replace an input; choose another -o"
                                              : std::string();
}

bool writePage(const ViewOptions& options, const std::string& page)
{
    if (options.output.empty()) {
        StandardOutput out;
        out.write(page);
        return out.flush();
    }
    if (const std::string error = writeFile(options.output, page); !error.empty()) {
        printError(options.output, error);
        return false;
    }
    return true;
}

ExitCode view(const ViewOptions& options, const std::string& message, const adexp::RuleSet& rules)
{
    const std::string name = displayName(options.file);
    const adexp::Result result = rules.convert(message, {false, true, true, 0});
    for (const adexp::Finding finding : result.findings())
        printError(name, finding.report());

    const QString text = unicode(message).remove(u'\r'); // as the positions count it
    PageContent content{name,
                        options.settings,
                        whyNotConverted(result),
                        unicode(result.title()),
                        text,
                        {},
                        messageFindings(result.findings())};
    if (result.isOk())
        content.fields = messageFields(*result.message(), TextPlaces(text), content.findings);
    if (!writePage(options, MessagePage(content).html()))
        return ExitCode::NotDone;
    if (!content.failure.empty()) {
        printError(name, "no fields: " + content.failure);
        return ExitCode::NotDone;
    }
    return result.findings().empty() ? ExitCode::Success : ExitCode::WithDiagnostics;
}

ExitCode runView(ViewOptions options)
{
    if (options.output == "-")
        options.output.clear();
    std::string message;
    if (const std::string error = readInput(options.file, &message); !error.empty()) {
        printError(displayName(options.file), "no page: " + error);
        return ExitCode::NotDone;
    }
    return withRules(options.settings, false, [&](const adexp::RuleSet& rules) {
        const std::string error = checkOutput(options);
        if (error.empty())
            return view(options, message, rules);
        printError(options.output, "cannot be written: " + error);
        return ExitCode::NotDone;
    });
}

} // namespace

void addViewCommand(CLI::App* app, ExitCode* status)
{
    CLI::App* const command =
        app->add_subcommand("view", "Show a message and its findings as an HTML page");
    const auto options = std::make_shared<ViewOptions>();
    addCommonParts(command, ViewFooter, &options->settings);
    addTextOption(command, "-o,--output", &options->output,
                  "Write the page to FILE. \"-\", and no -o, is standard output")
        ->type_name("FILE");
    command->add_option("FILE", options->file, "Message")->type_name("")->required();
    command->final_callback([options, status] { *status = runView(*options); });
}
