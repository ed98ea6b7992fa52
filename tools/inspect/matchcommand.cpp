#include "commandline.h"
#include "commands.h"
#include "console.h"
#include "definitions.h"
#include "findingjson.h"
#include "grammar/definitionnesting.h"
#include "grammar/termexpression.h"
#include "load/mainclass.h"
#include "loadedrules.h"
#include "matchtrace.h"
#include "report/reporter.h"
#include "settingsfile.h"

#include <CLI/CLI.hpp>

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <memory>
#include <optional>

namespace {

struct MatchOptions
{
    std::string settings = BuiltInSettings;
    std::string expression;            // an expression in place of a name; empty: a name
    std::optional<std::string> first;  // NAME; with an expression, TEXT
    std::optional<std::string> second; // TEXT; with an expression, nothing
    bool isJson = false;
};

constexpr const char* MatchFooter =
    "NAME is a simple term, or a field that has data of its own and no fields in it. The line\n"
    "below TEXT marks the matched part with ~. The sign ^ marks the last place that was reached\n"
    "and where something else was expected. --expr tries an expression that is in no rule file;\n"
    "it may refer to all definitions. A TEXT that begins with a hyphen stands after \"--\".\n"
    "\n"
    "Examples:\n"
    "  adexp match EOBT 0560\n"
    "  adexp match --expr \"ALPHA ! 3{DIGIT}3\" F35\n";

class FirstFinding : public Reporter
{
public:
    void report(const Finding& finding) override
    {
        if (first.text.isEmpty())
            first = finding;
    }

    Finding first;
};

// As many characters as the text takes when it is shown.
std::string marks(const QString& text, char mark)
{
    const std::string shown = escaped(text.toStdString());
    const auto isFirstByte = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80; };
    return std::string(
        static_cast<std::size_t>(std::count_if(shown.begin(), shown.end(), isFirstByte)), mark);
}

std::string wantedWords(const QStringList& wanted)
{
    if (wanted.isEmpty())
        return "nothing more";
    QStringList but = wanted;
    const QString last = but.takeLast();
    const QString words =
        but.isEmpty() ? last : but.join(QLatin1String(", ")) + QLatin1String(" or ") + last;
    return words.toStdString();
}

std::string textResult(const MatchTrace& trace, const QString& text)
{
    std::string lines = escaped(text.toStdString()) + '\n';
    std::string result = "matched " + std::to_string(trace.matched()) + " of " +
                         std::to_string(text.size()) + " characters";
    std::string line = marks(text.left(trace.matched()), '~');
    if (trace.matched() < text.size()) {
        line += marks(text.mid(trace.matched(), trace.stoppedAt() - trace.matched()), ' ') + '^';
        result += "; at ^ " + wantedWords(trace.wanted()) + " is wanted";
        if (!trace.path().isEmpty())
            result += ", in " + trace.path().join(QLatin1String(" > ")).toStdString();
    }
    return lines + line + '\n' + escaped(result) + '\n';
}

QJsonObject jsonResult(const MatchTrace& trace, const QString& text)
{
    QJsonObject object{{QStringLiteral("text"), text},
                       {QStringLiteral("length"), static_cast<int>(text.size())},
                       {QStringLiteral("matched"), trace.matched()}};
    if (trace.matched() < text.size()) {
        object.insert(QStringLiteral("stopped"), trace.stoppedAt());
        object.insert(QStringLiteral("wanted"), QJsonArray::fromStringList(trace.wanted()));
        object.insert(QStringLiteral("path"), QJsonArray::fromStringList(trace.path()));
    }
    return object;
}

ExitCode show(TermStd* term, const QString& text, bool isJson)
{
    const MatchTrace trace(term, text);
    if (trace.areStepsExhausted()) {
        printError(text.toStdString(), "takes too many steps to be matched; put fewer repeats into "
                                       "each other in the definition");
        return ExitCode::NotDone;
    }
    StandardOutput out;
    out.write(isJson ? jsonLine(jsonResult(trace, text)) : textResult(trace, text));
    if (!out.flush())
        return ExitCode::NotDone;
    return trace.matched() == text.size() ? ExitCode::Success : ExitCode::WithDiagnostics;
}

void printExpressionError(const QString& expression, const Finding& finding)
{
    const std::string shown = escaped(expression.toStdString());
    printError("--expr", shown);
    const int position = std::clamp(finding.begin, 0, static_cast<int>(expression.size()));
    printError("--expr", marks(expression.left(position), ' ') + "^ " + finding.text.toStdString());
}

// The checked term of the expression; null after a message.
std::unique_ptr<TermStd> compile(const MainClass& rules, const std::string& text)
{
    ConfigInfo record;
    record.ruleText = QString::fromStdString(text).toUpper();
    FirstFinding errors;
    std::unique_ptr<TermStd> term(TermExpression::append_expression(&record, true, &errors));
    if (term && (!DefinitionNesting(&rules.termsList).isWithinLimits(term.get(), &errors) ||
                 !term->check_config(&rules.termsList, &errors)))
        term.reset();
    if (!errors.first.text.isEmpty())
        printExpressionError(record.ruleText.simplified(), errors.first);
    return term;
}

// The definition whose data is matched as a text; null after a message.
TermStd* findDefinition(const MainClass& rules, const std::string& name)
{
    const std::vector<TermStd*> definitions = definitionsNamed(rules, name);
    if (definitions.empty())
        return nullptr;
    TermStd* const definition = definitions.front();
    if (isCompound(definition)) {
        printError(definition->config.recordName.toStdString(),
                   "is made of fields, which are found by their names; see adexp tree");
        return nullptr;
    }
    return definition;
}

ExitCode match(const MainClass& rules, const MatchOptions& options)
{
    const QString text = QString::fromStdString(options.second ? *options.second : *options.first);
    if (options.expression.empty()) {
        TermStd* const definition = findDefinition(rules, *options.first);
        return definition ? show(definition, text, options.isJson) : ExitCode::NotDone;
    }
    const std::unique_ptr<TermStd> term = compile(rules, options.expression);
    return term ? show(term.get(), text, options.isJson) : ExitCode::NotDone;
}

ExitCode runMatch(const MatchOptions& options)
{
    const bool hasExpression = !options.expression.empty();
    if (!options.first || options.second.has_value() == hasExpression) {
        printError(CommandName,
                   hasExpression
                       ? "with --expr match takes a TEXT and no NAME; see adexp match --help"
                       : "match takes a NAME and a TEXT; see adexp match --help");
        return ExitCode::Usage;
    }
    return withRules(options.settings, false,
                     [&](const adexp::RuleSet& rules) { return match(insideOf(rules), options); });
}

} // namespace

void addMatchCommand(CLI::App* app, ExitCode* status)
{
    CLI::App* const command =
        app->add_subcommand("match", "Show how far a text matches a definition");
    const auto options = std::make_shared<MatchOptions>();
    addCommonParts(command, MatchFooter, &options->settings);
    addFormatOption(command, &options->isJson);
    addTextOption(command, "--expr", &options->expression, "Expression to match with, not a NAME")
        ->type_name("EXPR");
    command->add_option("NAME", options->first, "Definition; none with --expr")->type_name("");
    command->add_option("TEXT", options->second, "Data")->type_name("");
    command->final_callback([options, status] { *status = runMatch(*options); });
}
