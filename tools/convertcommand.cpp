#include "convertcommand.h"

#include "commandline.h"
#include "console.h"
#include "conversion.h"
#include "diagnosticcollector.h"
#include "inputfile.h"
#include "outputfile.h"
#include "outputnames.h"
#include "summarycommand.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <optional>

namespace {

constexpr const char* Footer =
    "Without FILE, and for \"-\", the message is read from standard input. A file holds one\n"
    "message. Several documents on standard output follow one another. Reports about a\n"
    "message go to standard error, each behind the name of its file.\n"
    "\n"
    "In a folder a document is named after its message: plan.adexp gives plan.adexp.xml,\n"
    "standard input stdin.xml. A document appears there when it is complete.\n"
    "\n"
    "Examples:\n"
    "  adexp convert plan.adexp                  document to standard output\n"
    "  adexp convert -o documents/ *.adexp       a document for each message\n"
    "  adexp convert --summary messages/         what the rule set covers\n"
    "  adexp convert --settings my.ini < plan.adexp\n";

/// Where the documents go: standard output, a file, or a folder.
class DocumentWriter
{
public:
    explicit DocumentWriter(const ConvertOptions& options)
    {
        if (!options.output.empty())
            m_names.emplace(options.output, options.files);
    }

    /// Writes the document of @p input. False, after a message, if that failed.
    bool write(const std::string& input, std::string_view document)
    {
        if (m_names)
            return writeToFile(input, document);
        m_standardOutput.write(document);
        m_isLost = !m_standardOutput.flush();
        return !m_isLost;
    }

    /// True if no further document can be written either.
    bool isLost() const { return m_isLost; }

private:
    bool writeToFile(const std::string& input, std::string_view document)
    {
        std::string path;
        if (const std::string error = m_names->take(input, &path); !error.empty()) {
            printError(displayName(input), "not converted: " + error);
            return false;
        }
        if (const std::string error = writeFile(path, document); !error.empty()) {
            printError(path, "cannot be written: " + error +
                                 "; check the name, the permissions and the room on the disk");
            return false;
        }
        return true;
    }

    std::optional<OutputNames> m_names;
    StandardOutput m_standardOutput;
    bool m_isLost = false;
};

ExitCode notConverted(const std::string& input, const std::string& reason)
{
    printError(displayName(input), "not converted: " + reason);
    return ExitCode::NotDone;
}

ExitCode convertOne(const std::string& input, DocumentWriter* writer)
{
    std::string message;
    if (const std::string error = readInput(input, &message); !error.empty())
        return notConverted(input, error);
    const std::string name = displayName(input);
    const DiagnosticCollector diagnostics{std::string_view(name)};
    const Conversion conversion(message);
    if (!conversion.hasDocument())
        return notConverted(input, conversion.failure());
    if (!writer->write(input, conversion.document()))
        return ExitCode::NotDone;
    return diagnostics.count() == 0 ? ExitCode::Success : ExitCode::WithDiagnostics;
}

// What is wrong with -o before anything is converted.
ExitCode checkOutput(const ConvertOptions& options)
{
    if (options.output.empty())
        return ExitCode::Success;
    const bool isFolder = OutputNames(options.output, {}).isFolder();
    if (!isFolder && options.files.size() > 1) {
        printError(options.output, "-o names one file, but there are " +
                                       std::to_string(options.files.size()) +
                                       " messages; name a folder that exists");
        return ExitCode::Usage;
    }
    std::error_code error;
    if (isFolder && !std::filesystem::is_directory(options.output, error)) {
        printError(options.output, "there is no such folder for the documents; make it first");
        return ExitCode::NotDone;
    }
    return ExitCode::Success;
}

ExitCode convertAll(const ConvertOptions& options)
{
    if (const ExitCode wrong = checkOutput(options); wrong != ExitCode::Success)
        return wrong;
    const RuleSet rules(options.settings);
    ExitCode result = rules.status();
    if (!rules.isLoaded())
        return result;
    DocumentWriter writer(options);
    for (const std::string& input : options.files) {
        result = worse(result, convertOne(input, &writer));
        if (writer.isLost())
            break;
    }
    return result;
}

} // namespace

CLI::App* addConvertCommand(CLI::App* app, ConvertOptions* options)
{
    CLI::App* const command = app->add_subcommand("convert", "Convert messages to XML documents");
    addFooter(command, Footer);
    addSettingsOption(command, &options->settings);
    CLI::Option* const output = addTextOption(
        command, "-o,--output", &options->output,
        "Write the document to FILE. If FILE is a folder or ends in /: into that folder, "
        "which has to exist. \"-\" is standard output");
    output->type_name("FILE");
    command
        ->add_flag("--summary", options->summary,
                   "Write no documents, but a report by titles: messages, fields, reports. "
                   "A folder stands for all files in it")
        ->excludes(output);
    command->add_option("FILE", options->files, "Messages")->type_name("");
    return command;
}

ExitCode runConvert(const ConvertOptions& options)
{
    ConvertOptions complete = options;
    if (complete.files.empty())
        complete.files.emplace_back(StandardInput);
    if (complete.output == "-")
        complete.output.clear();
    return complete.summary ? runSummary(complete.settings, complete.files) : convertAll(complete);
}
