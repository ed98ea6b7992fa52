// Runs the examples of docs/guide.md against the library. The examples are the fenced blocks of
// the guide; the section "How the examples are written" in it says what the kinds of blocks mean.
// Each block is a test, named after the line on which it begins. The commands of the guide, and the
// files that they need, are tried by commands_test.py.
//
// All blocks with reports:  adexp_guide_tests --gtest_filter='*_report'

#include "support/diagnosticcapture.h"
#include "support/rulefolder.h"
#include "support/ruleset.h"
#include "support/tooutput.h"

#include "grammar/termexpression.h"
#include "load/mainclass.h"
#include "load/rulerecord.h"

#include <QFile>
#include <QRegularExpression>
#include <QSettings>
#include <QStringList>

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace {

const QString GuidePath = QStringLiteral(ADEXP_SOURCE_DIR "/docs/guide.md");

struct Block
{
    QString kind;
    int line = 0; // of the fence, from 1
    QStringList lines;

    std::string testName() const
    {
        return "line_" + std::to_string(line) + '_' + kind.toStdString();
    }
};

void PrintTo(const Block& block, std::ostream* out)
{
    *out << GuidePath.toStdString() << ':' << block.line;
}

std::vector<Block> readBlocks()
{
    QFile file(GuidePath);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    const QString fence = QStringLiteral("```");
    std::vector<Block> blocks;
    bool isInside = false;
    for (int i = 0; i < lines.size(); ++i) {
        const QString& line = lines.at(i);
        if (line.startsWith(fence)) {
            if (!isInside) {
                // A block without a kind is called "none", so that it fails as unknown.
                const QString kind = line.mid(fence.size()).trimmed();
                blocks.push_back({kind.isEmpty() ? QStringLiteral("none") : kind, i + 1, {}});
            }
            isInside = !isInside;
        } else if (isInside) {
            blocks.back().lines.append(line);
        }
    }
    return blocks;
}

const std::vector<Block>& blocks()
{
    static const std::vector<Block> all = readBlocks();
    return all;
}

std::vector<Block> blocksOfKind(const QString& kind)
{
    std::vector<Block> result;
    for (const Block& block : blocks())
        if (block.kind == kind)
            result.push_back(block);
    return result;
}

// The lines of a block by its sections: those in front of the first "--- name" have an empty name.
std::map<QString, QStringList> sectionsOf(const Block& block)
{
    std::map<QString, QStringList> sections;
    QString current;
    for (const QString& line : block.lines) {
        if (line.startsWith(QLatin1String("--- ")))
            sections[current = line.mid(4)];
        else
            sections[current].append(line);
    }
    return sections;
}

// "<name> = <expression>" with the tag of the record in front.
struct Definition
{
    QString tag;
    QString name;
    QString expression;

    bool isDefinition() const { return !tag.isEmpty(); }
};

Definition definitionIn(const QString& line)
{
    static const QRegularExpression pattern(
        QStringLiteral("^(simpleTerm|SubField|PrimaryField|msgRule) +(\\S+) += *(.*)$"));
    const QRegularExpressionMatch match = pattern.match(line);
    return {match.captured(1), match.captured(2), match.captured(3)};
}

QByteArray fileWith(const std::vector<Definition>& definitions, const QString& tag)
{
    const bool isRule = tag == QLatin1String("msgRule");
    QString text = QStringLiteral("<records>\n");
    for (const Definition& definition : definitions)
        if (definition.tag == tag)
            text += u'<' + tag + (isRule ? QStringLiteral(" title='") : QStringLiteral(" name='")) +
                    definition.name + QStringLiteral("'>") +
                    (isRule ? QStringLiteral("<fields>") : QStringLiteral("<term>")) +
                    definition.expression.toHtmlEscaped() +
                    (isRule ? QStringLiteral("</fields></") : QStringLiteral("</term></")) + tag +
                    QStringLiteral(">\n");
    return (text + QStringLiteral("</records>\n")).toUtf8();
}

// A report without the place in a file: "NAME: text" for one about a definition.
QString shortened(const QString& report)
{
    static const QRegularExpression ofTerm(
        QStringLiteral("^\"element \\((.*?)\\) file .*?: \" \".*\" \"(.*)\" $"));
    static const QRegularExpression ofLoader(
        QStringLiteral("^bool MainClass::.*?\\) \"element \\((.*?)\\) file .*?: (.*)\" $"));
    for (const QRegularExpression& pattern : {ofTerm, ofLoader}) {
        const QRegularExpressionMatch match = pattern.match(report);
        if (match.hasMatch())
            return match.captured(1) + QStringLiteral(": ") + match.captured(2);
    }
    return report.trimmed();
}

// The blocks that are files of simple terms; files of fields need more than themselves.
std::vector<Block> filesOfSimpleTerms()
{
    std::vector<Block> result;
    for (const Block& block : blocksOfKind(QStringLiteral("xml")))
        if (block.lines.indexOf(QRegularExpression(QStringLiteral("^<simpleTerms\\b.*"))) != -1)
            result.push_back(block);
    return result;
}

// Lines and columns inside a text are those of files that the guide does not show.
QStringList withoutPositions(QStringList texts)
{
    texts.replaceInStrings(QRegularExpression(QStringLiteral("line \\d+, column \\d+")),
                           QStringLiteral("line N, column N"));
    return texts;
}

std::string joined(const QStringList& lines)
{
    return lines.join(u'\n').toStdString();
}

// The rule set that the definitions of a block make, loaded from files as any other.
class LoadedRules
{
public:
    explicit LoadedRules(const QStringList& lines)
    {
        std::vector<Definition> definitions;
        for (const QString& line : lines)
            if (const Definition definition = definitionIn(line); definition.isDefinition())
                definitions.push_back(definition);

        const RuleFolder folder;
        const WorkingDirectory inFolder(folder.path(QString()));
        const QStringList tags{QStringLiteral("simpleTerm"), QStringLiteral("SubField"),
                               QStringLiteral("PrimaryField"), QStringLiteral("msgRule")};
        const QStringList files{QStringLiteral("simple.xml"), QStringLiteral("sub.xml"),
                                QStringLiteral("primary.xml"), QStringLiteral("rules.xml")};
        for (int i = 0; i < tags.size(); ++i)
            folder.write(files.at(i), fileWith(definitions, tags.at(i)));
        const QString ini =
            folder.write(QStringLiteral("adexp.ini"),
                         settingsText(files.at(0), files.at(1), files.at(2), files.at(3)));

        QSettings settings(ini, QSettings::IniFormat);
        const DiagnosticCapture diagnostics;
        EXPECT_TRUE(converter.readSettingsRules(&settings, &toOutput));
        for (const DiagnosticCapture::Line& line : diagnostics.lines())
            reports.append(shortened(line.text));
    }

    // Compiles @p expression over the definitions; null, after a failure, if it is refused.
    std::unique_ptr<TermStd> compile(const QString& expression) const
    {
        ConfigInfo record;
        record.ruleText = expression;
        const DiagnosticCapture diagnostics;
        std::unique_ptr<TermStd> term(TermExpression::append_expression(&record, true, &toOutput));
        if (term && !term->check_config(&converter.termsList, &toOutput))
            term.reset();
        EXPECT_EQ(joined(diagnostics.debugLines()), "") << expression.toStdString();
        return term;
    }

    MainClass converter{nullptr};
    QStringList reports;
};

// The columns of a line of a table, which stand apart by two blanks or more.
QStringList columnsOf(const QString& line)
{
    static const QRegularExpression gap(QStringLiteral(" {2,}"));
    return line.trimmed().split(gap);
}

bool isRow(const QString& line)
{
    return !line.trimmed().isEmpty() && !definitionIn(line).isDefinition();
}

// The text between the quotes of a column, "\n" for a line feed.
QString unquoted(const QString& column)
{
    return column.mid(1, column.size() - 2).replace(QLatin1String("\\n"), QLatin1String("\n"));
}

class MatchBlock : public testing::TestWithParam<Block>
{
};

TEST_P(MatchBlock, MatchesAsItSays)
{
    const LoadedRules rules(GetParam().lines);
    EXPECT_EQ(joined(rules.reports), "");
    for (const QString& line : GetParam().lines) {
        if (!isRow(line))
            continue;
        const QStringList columns = columnsOf(line);
        ASSERT_EQ(columns.size(), 3) << line.toStdString();
        const std::unique_ptr<TermStd> term = rules.compile(columns.at(0));
        ASSERT_NE(term, nullptr) << line.toStdString();
        const QString text = unquoted(columns.at(1));
        const int length = term->parse(text.constData());
        const QString expected =
            columns.at(2) == QLatin1String("none") ? QString() : unquoted(columns.at(2));
        EXPECT_EQ(text.left(length).toStdString(), expected.toStdString()) << line.toStdString();
    }
}

class CompileBlock : public testing::TestWithParam<Block>
{
};

TEST_P(CompileBlock, CompilesAsItSays)
{
    const LoadedRules rules(GetParam().lines);
    EXPECT_EQ(joined(rules.reports), "");
    for (const QString& line : GetParam().lines) {
        if (!isRow(line))
            continue;
        const QStringList columns = columnsOf(line);
        ASSERT_EQ(columns.size(), 2) << line.toStdString();
        const std::unique_ptr<TermStd> term = rules.compile(columns.at(0));
        ASSERT_NE(term, nullptr) << line.toStdString();
        EXPECT_EQ(term->dumpData(true).toStdString(), columns.at(1).toStdString());
    }
}

class ReportBlock : public testing::TestWithParam<Block>
{
};

TEST_P(ReportBlock, IsReportedAsItSays)
{
    const std::map<QString, QStringList> sections = sectionsOf(GetParam());
    const LoadedRules rules(sections.at(QString()));
    const QStringList expected = sections.at(QStringLiteral("reports"));
    EXPECT_EQ(joined(withoutPositions(rules.reports)), joined(withoutPositions(expected)));
}

// The lines of the message's element in a document, without the indent.
QStringList messageElement(std::string_view document)
{
    QStringList lines =
        QString::fromUtf8(document.data(), static_cast<int>(document.size())).split(u'\n').mid(1);
    const auto originalText =
        lines.indexOf(QRegularExpression(QStringLiteral("^    <ORIGINAL_TEXT>.*")));
    lines = lines.mid(0, originalText);
    lines.replaceInStrings(QRegularExpression(QStringLiteral("^    ")), QString());
    return lines;
}

class ConvertBlock : public testing::TestWithParam<Block>
{
};

TEST_P(ConvertBlock, ConvertsAsItSays)
{
    std::map<QString, QStringList> sections = sectionsOf(GetParam());
    LoadedRules rules(sections[QString()]);
    EXPECT_EQ(joined(rules.reports), "");

    const DiagnosticCapture diagnostics;
    const XmlDocument document = rules.converter.charAdexpToCharXml(
        sections[QStringLiteral("message")].join(u'\n'), &toOutput);
    EXPECT_EQ(joined(messageElement(document.view())),
              joined(sections[QStringLiteral("document")]));
    QStringList reports;
    for (const DiagnosticCapture::Line& line : diagnostics.lines())
        reports.append(line.text.trimmed());
    EXPECT_EQ(joined(reports), joined(sections[QStringLiteral("reports")]));
}

class FileBlock : public testing::TestWithParam<Block>
{
};

// A file of simple terms: it loads without a report and its examples hold.
TEST_P(FileBlock, LoadsAndKeepsToItsExamples)
{
    const RuleFolder folder;
    const QString path =
        folder.write(QStringLiteral("simple.xml"), GetParam().lines.join(u'\n').toUtf8());
    MainClass converter(nullptr);
    std::vector<RuleRecord> records;
    converter.keptRecords = &records;
    const DiagnosticCapture diagnostics;
    ASSERT_TRUE(converter.readTermsXMLFile(path, QStringLiteral("simpleTerm"), false, &toOutput));
    converter.termsList_checkConfig(&toOutput);
    EXPECT_EQ(joined(diagnostics.debugLines()), "");

    EXPECT_EQ(static_cast<std::size_t>(converter.termsList.size()), records.size());
    for (const RuleRecord& record : records) {
        TermStd* const term = MainClass::termsList_search(&converter.termsList, record.recordName);
        ASSERT_NE(term, nullptr);
        for (const RecordPart& part : record.parts) {
            const QString data = part.text.trimmed();
            const bool isMatched = term->parse(data.constData()) == data.size();
            if (part.tag.endsWith(QLatin1String("example"))) {
                EXPECT_EQ(isMatched, part.tag == QLatin1String("example")) << data.toStdString();
            }
        }
    }
}

// That no block is of a kind that nobody tests is tested by commands_test.py.
TEST(Guide, HasBlocksOfEachKind)
{
    for (const char* kind : {"match", "compile", "report", "convert"})
        EXPECT_FALSE(blocksOfKind(QString::fromLatin1(kind)).empty()) << kind;
    EXPECT_FALSE(filesOfSimpleTerms().empty());
}

std::string testName(const testing::TestParamInfo<Block>& info)
{
    return info.param.testName();
}

INSTANTIATE_TEST_SUITE_P(Guide, MatchBlock,
                         testing::ValuesIn(blocksOfKind(QStringLiteral("match"))), testName);
INSTANTIATE_TEST_SUITE_P(Guide, CompileBlock,
                         testing::ValuesIn(blocksOfKind(QStringLiteral("compile"))), testName);
INSTANTIATE_TEST_SUITE_P(Guide, ReportBlock,
                         testing::ValuesIn(blocksOfKind(QStringLiteral("report"))), testName);
INSTANTIATE_TEST_SUITE_P(Guide, ConvertBlock,
                         testing::ValuesIn(blocksOfKind(QStringLiteral("convert"))), testName);
INSTANTIATE_TEST_SUITE_P(Guide, FileBlock, testing::ValuesIn(filesOfSimpleTerms()), testName);

} // namespace
