#include "commandline.h"
#include "commands.h"
#include "console.h"
#include "conversionrun.h"
#include "convertoptions.h"
#include "interruption.h"
#include "loadedrules.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <memory>
#include <system_error>

namespace {

constexpr const char* ConvertFooter =
    "Without FILE, or with \"-\", messages come from standard input. An input is one message, or\n"
    "many with --lines or -0: these have numbers, for example <stdin>:3. Documents on standard\n"
    "output come in the order of the messages, whatever -j is. Reports about a message go to\n"
    "standard error; each begins with the name of its file.\n"
    "\n"
    "In a folder, a document has the name of its message: plan.adexp gives plan.adexp.xml,\n"
    "standard input gives stdin.xml, its third message stdin.3.xml. With -r there are the same\n"
    "sub-folders as for the messages. A document appears when it is complete.\n"
    "\n"
    "Examples:\n"
    "  adexp convert plan.adexp                  document to standard output\n"
    "  adexp convert -o documents/ *.adexp       a document for each message\n"
    "  adexp convert -r -o documents/ messages/\n"
    "  adexp convert -r --summary messages/      what the rule set covers\n"
    "  adexp convert --lines -0 < messages.txt   one message a line, documents ended by NUL\n"
    "  adexp convert --settings my.ini < plan.adexp\n";

// More would be a mistake.
constexpr int MaxJobs = 256;

// Why one file cannot take the documents; empty if it can.
std::string whyNoFile(const ConvertOptions& options)
{
    const bool isOneMessage = !options.recursive && !options.lines && options.filesFrom.empty();
    const bool isStream =
        options.nul && (options.files.empty() || options.files[0] == StandardInput);
    if (options.files.size() > 1)
        return "-o names one file, but there are " + std::to_string(options.files.size()) +
               " messages; name a folder that exists";
    if (!isOneMessage || isStream)
        return "-o names one file, but there may be several messages; name a folder that exists";
    return {};
}

// Is the output a folder, or said to be one by a slash at its end?
bool isFolderName(const std::string& output)
{
    std::error_code error;
    return output.back() == '/' || std::filesystem::is_directory(output, error);
}

// What is wrong with -o before anything is converted.
ExitCode checkOutput(const ConvertOptions& options)
{
    if (!options.hasOutputFiles())
        return ExitCode::Success;
    if (!options.isOutputFolder) {
        const std::string reason = whyNoFile(options);
        if (!reason.empty())
            printError(options.output, reason);
        return reason.empty() ? ExitCode::Success : ExitCode::Usage;
    }
    std::error_code error;
    if (!std::filesystem::is_directory(options.output, error)) {
        printError(options.output, "there is no such folder for the documents; make it first");
        return ExitCode::NotDone;
    }
    return ExitCode::Success;
}

void addInputOptions(CLI::App* command, ConvertOptions* options)
{
    CLI::Option* const files =
        command->add_option("FILE", options->files, "Messages")->type_name("");
    command->add_flag("-r,--recursive", options->recursive,
                      "A folder stands for all files in it and in its sub-folders, sorted by name");
    addTextOption(command, "--files-from", &options->filesFrom,
                  "Read the names of the messages from FILE, one a line; \"-\" is standard input")
        ->type_name("FILE")
        ->excludes(files);
    command->add_flag(
        "--lines", options->lines,
        "Each line of the inputs is a message (inside a message, a line feed means the same as "
        "a blank)");
    command->add_flag(
        "-0,--null", options->nul,
        "NUL ends each message on standard input, each name in --files-from, and each "
        "document on standard output; a message without a document gives an empty one");
}

void addOutputOptions(CLI::App* command, ConvertOptions* options)
{
    addTextOption(command, "-o,--output", &options->output,
                  "Write the document to FILE. If FILE is a folder or ends with /: into that "
                  "folder, which must exist. \"-\" is standard output")
        ->type_name("FILE");
    command->add_flag(
        "--summary", options->summary,
        "Print a summary by title: messages, fields, reports. With -o in addition to the "
        "documents, otherwise in place of documents and reports. To standard output; with "
        "\"-o -\" to standard error");
    addFormatOption(command, &options->isJson);
    command->add_flag(
        "-q,--quiet", options->quiet,
        "No reports about the contents of messages, and no progress; errors are still "
        "reported");
    command->add_flag("--no-progress", options->noProgress, "No progress line on the terminal");
}

ExitCode runConvert(ConvertOptions options)
{
    // Asked once: if the folder is removed meanwhile, no file may take its name.
    options.isOutputFolder = options.hasOutputFiles() && isFolderName(options.output);
    if (const ExitCode wrong = checkOutput(options); wrong != ExitCode::Success)
        return wrong;
    return withRules(options.settings, options.isJson, [&](const adexp::RuleSet& rules) {
        Interruption::handle();
        return ConversionRun(options, rules).run();
    });
}

} // namespace

void addConvertCommand(CLI::App* app, ExitCode* status)
{
    CLI::App* const command = app->add_subcommand("convert", "Convert messages to XML documents");
    const auto options = std::make_shared<ConvertOptions>();
    addCommonParts(command, ConvertFooter, &options->settings);
    addInputOptions(command, options.get());
    addOutputOptions(command, options.get());
    command
        ->add_option("-j,--jobs", options->jobs,
                     "Convert in up to N threads; 0, and no -j: one for each processor that may be "
                     "used")
        ->type_name("N")
        ->check(CLI::Range(0, MaxJobs).description(""));
    command->final_callback([options, status] { *status = runConvert(*options); });
}
