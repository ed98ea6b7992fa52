#include "commandline.h"
#include "commands.h"
#include "console.h"
#include "definitions.h"
#include "grammar/termexpression.h"
#include "load/rulefilereader.h"
#include "loadedrules.h"
#include "settingsfile.h"
#include "termfacts.h"

#include <CLI/CLI.hpp>

#include <QSet>

#include <memory>

namespace {

struct ExplainOptions
{
    std::string settings = BuiltInSettings;
    std::string name; // definition or title; empty: show the names of all
};

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

// ", 2 to 7 times"; empty for what is there once.
QString countWords(const TermStd* term)
{
    if (term->bracketType == BracketOptional)
        return QStringLiteral(", optional");
    if (term->bracketType != BracketRepeat)
        return {};
    const int min = term->minRepeat;
    const int max = term->maxRepeat;
    const bool isLimited = max != RepeatNoLimit;
    QString count = QString::number(isLimited ? max : min);
    if (!isLimited)
        count = min == 0 ? QStringLiteral("any number of") : QLatin1String("at least ") + count;
    else if (min != max)
        count.prepend(min == 0 ? QStringLiteral("up to ")
                               : QString::number(min) + QLatin1String(" to "));
    const bool isOnce = (isLimited ? max : min) == 1;
    return QLatin1String(", ") + count +
           (isOnce ? QLatin1String(" time") : QLatin1String(" times"));
}

QString nodeText(const TermStd* term)
{
    switch (term->type()) {
    case TermTypeExpression:
    case TermTypeMsgRule: {
        const bool choice = isChoice(asExpression(term));
        return choice ? QStringLiteral("one of") : QStringLiteral("in sequence");
    }
    case TermTypeSimple:
        return u'\'' + term->ExprRuleStr + u'\'';
    case TermTypeSep:
        return QStringLiteral("SEP");
    default:
        return term->ExprRuleStr;
    }
}

// Brackets are bounded by the compiler, so this recursion is.
void addNode(const TermStd* term, const QString& indent, const QString& branch, QString* tree)
{
    *tree += indent + branch + nodeText(term) + countWords(term) + u'\n';
    const TermExpression* const expression = asExpression(term);
    if (!expression)
        return;
    const QString below =
        branch.isEmpty()
            ? indent
            : indent + (branch.startsWith(u'`') ? QLatin1String("   ") : QLatin1String("|  "));
    for (const TermStd* part : expression->ExprList)
        addNode(part, below,
                part == expression->ExprList.last() ? QStringLiteral("`- ") : QStringLiteral("|- "),
                tree);
}

// The compiled form of the term as a tree, a line for each term, all ended by a line break.
// References are not followed. The separators that the compiler has put in are shown.
QString termTree(const TermStd* term)
{
    QString tree;
    addNode(term, {}, {}, &tree);
    return tree;
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
    const std::vector<TermStd*> definitions = definitionsNamed(rules, name);
    if (definitions.empty())
        return ExitCode::NotDone;
    StandardOutput out;
    for (const TermStd* definition : definitions) {
        if (definition != definitions.front())
            out.write("\n");
        explain(rules, definition, &out);
    }
    return out.flush() ? ExitCode::Success : ExitCode::NotDone;
}

} // namespace

void addExplainCommand(CLI::App* app, ExitCode* status)
{
    CLI::App* const command =
        app->add_subcommand("explain", "Tell what a definition or message rule says");
    const auto options = std::make_shared<ExplainOptions>();
    addCommonParts(command, ExplainFooter, &options->settings);
    command->add_option("NAME", options->name, "Term or title")->type_name("");
    command->final_callback([options, status] {
        *status = withRules(options->settings, false, [&](const adexp::RuleSet& rules) {
            return explainName(insideOf(rules), options->name);
        });
    });
}
