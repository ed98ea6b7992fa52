#include "explaincommand.h"

#include "commandline.h"
#include "console.h"
#include "definitions.h"
#include "grammar/termstd.h"
#include "load/rulefilereader.h"
#include "loadedrules.h"
#include "termfacts.h"
#include "termtree.h"

#include <CLI/CLI.hpp>

#include <QSet>

namespace {

constexpr const char* ExplainFooter =
    "NAME is a term or the title of a message rule, in capital or small letters. Without NAME,\n"
    "the names of all are shown, in the order of loading. In the tree, SEP shows where white\n"
    "space may be, even if the definition does not name it.\n"
    "\n"
    "Examples:\n"
    "  adexp explain EOBT\n"
    "  adexp explain --settings my.ini\n";

// The record that the definition was loaded from; only its place if its file has changed since.
RuleRecord recordOf(const ConfigInfo& config)
{
    RuleFileReader reader(config.tagName, true);
    reader.read(config.xmlFile);
    for (const RuleRecord& record : reader.records) {
        if (record.lineNumber == config.lineNumber && record.columnNumber == config.columnNumber)
            return record;
    }
    RuleRecord unknown;
    unknown.place = {config.lineNumber, config.columnNumber};
    return unknown;
}

QString lengthText(const TermStd* definition)
{
    if (isCompound(definition))
        return QStringLiteral("is made of fields");
    const qint64 length = TermFactsTable().of(definition).maxLength;
    if (length != TermFacts::Unlimited)
        return QString::number(length);
    // That of the library, which takes white space for one character.
    const int withoutSpace = definition->calculateOfLengthData(true);
    const bool isLimited = withoutSpace > 0 && withoutSpace < RepeatNoLimit;
    return isLimited ? QString::number(withoutSpace) + QLatin1String(", white space counted as one")
                     : QStringLiteral("no limit");
}

QStringList referringTo(const MainClass& rules, const QString& name)
{
    QStringList names;
    for (const TermStd* definition : allDefinitions(rules)) {
        if (referencesOf(definition).contains(name))
            names.append(definition->config.recordName);
    }
    return names;
}

QString listText(const QStringList& names)
{
    return names.isEmpty() ? QStringLiteral("-") : names.join(QLatin1String(", "));
}

std::string indented(const QString& lines)
{
    QString text = QLatin1String("  ") + lines.trimmed();
    return text.replace(u'\n', QLatin1String("\n  ")).toStdString();
}

// Names and texts are those of the rule files: no line of them may do more than be shown.
void printLine(StandardOutput* out, const QString& label, const QString& text)
{
    out->write(escaped((label + text).toStdString()) + '\n');
}

void explain(const MainClass& rules, const TermStd* definition, StandardOutput* out)
{
    const ConfigInfo& config = definition->config;
    const RuleRecord record = recordOf(config);
    printLine(out, config.recordName + QLatin1String(": "),
              config.tagName + QLatin1String(" in ") + config.xmlFile + u':' +
                  QString::number(record.place.line) + u':' + QString::number(record.place.column));
    for (const RecordPart& part : record.parts) {
        if (part.tag == QLatin1String("description"))
            printLine(out, QStringLiteral("Description:    "), part.text.simplified());
    }
    if (const RecordPart* const expression = record.expression())
        printLine(out, QStringLiteral("Definition:     "), expression->text.simplified());
    printLine(out, QStringLiteral("Longest data:   "), lengthText(definition));
    printLine(out, QStringLiteral("Refers to:      "), listText(referencesOf(definition)));
    // Nothing refers to a message rule, also if it shares the name of a field.
    if (definition->type() != TermTypeMsgRule)
        printLine(out, QStringLiteral("Referred to by: "),
                  listText(referringTo(rules, config.recordName)));
    printLine(out, QStringLiteral("Compiled form:"), {});
    out->write(indented(termTree(definition)) + '\n');
}

// The name of a term and a message rule that share it is shown once.
ExitCode printNames(const MainClass& rules)
{
    StandardOutput out;
    QSet<QString> shown;
    for (const TermStd* definition : allDefinitions(rules)) {
        const QString& name = definition->config.recordName;
        if (!shown.contains(name))
            printLine(&out, name, {});
        shown.insert(name);
    }
    return out.flush() ? ExitCode::Success : ExitCode::NotDone;
}

ExitCode explainName(const MainClass& rules, const std::string& name)
{
    if (name.empty())
        return printNames(rules);
    // All names in a rule set are in upper case.
    const QString recordName = QString::fromStdString(name).toUpper();
    const std::vector<TermStd*> definitions = definitionsNamed(rules, recordName);
    if (definitions.empty()) {
        printUnknownName(rules, recordName);
        return ExitCode::NotDone;
    }
    StandardOutput out;
    for (const TermStd* definition : definitions) {
        if (definition != definitions.front())
            out.write("\n");
        explain(rules, definition, &out);
    }
    return out.flush() ? ExitCode::Success : ExitCode::NotDone;
}

} // namespace

CLI::App* addExplainCommand(CLI::App* app, ExplainOptions* options)
{
    CLI::App* const command =
        app->add_subcommand("explain", "Tell what a definition or message rule says");
    addFooter(command, ExplainFooter);
    addSettingsOption(command, &options->settings);
    command->add_option("NAME", options->name, "Term or title")->type_name("");
    return command;
}

ExitCode runExplain(const ExplainOptions& options)
{
    const LoadedRules rules(options.settings);
    if (!rules.isLoaded())
        return rules.status();
    return worse(rules.status(), explainName(insideOf(rules.rules()), options.name));
}
