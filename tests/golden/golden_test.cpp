// Converts whole messages through the exported functions and compares documents and diagnostics
// with files, byte for byte. README.md tells what the files are and how they are renewed.

#include "adexp.h"

#include "support/diagnosticcapture.h"
#include "support/rulefolder.h"

#include <QByteArray>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <libxml/parser.h>

#include <memory>
#include <optional>
#include <vector>

namespace {

const QString SourceDir = QStringLiteral(ADEXP_SOURCE_DIR);
const QString GoldenDir = SourceDir + QStringLiteral("/tests/golden");
const QString CasesDir = GoldenDir + QStringLiteral("/cases");
const QString ExpectedSamplesDir = GoldenDir + QStringLiteral("/samples");
const QString SamplesDir = SourceDir + QStringLiteral("/samples");

const QString SettingsFile = QStringLiteral("adexp.ini");
const QString MessageFile = QStringLiteral("message.adexp");
const QString DocumentFile = QStringLiteral("expected.xml");
const QString DiagnosticsFile = QStringLiteral("expected.txt");
const QStringList RuleFiles = {SettingsFile, QStringLiteral("simpleterms.xml"),
                               QStringLiteral("subfields.xml"), QStringLiteral("primaryfields.xml"),
                               QStringLiteral("msgrules.xml")};

/// Where a case has its files.
struct Case
{
    QString name;            ///< unique, letters, digits and underlines
    QString messageFile;     ///< the message
    QString documentFile;    ///< not there when the message gives no document
    QString diagnosticsFile; ///< always there, empty when nothing is reported
    QString settingsFile;    ///< names the rule set
    QString workingDir;      ///< folder that the paths in the settings file start from
    bool mustBeClean;        ///< nothing may be reported
};

void PrintTo(const Case& golden, std::ostream* out)
{
    *out << golden.messageFile.toStdString();
}

struct Result
{
    QByteArray document; // empty: none
    QByteArray diagnostics;
};

// Test names may hold letters, digits and underlines.
QString testName(QString fileName)
{
    return fileName.replace(u'-', u'_');
}

QStringList sampleMessages()
{
    QStringList messages;
    QDirIterator it(SamplesDir, {QStringLiteral("*.adexp")}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext())
        messages.append(QDir(SamplesDir).relativeFilePath(it.next()));
    messages.sort();
    return messages;
}

std::vector<Case> ownCases()
{
    std::vector<Case> cases;
    const QDir dir(CasesDir);
    for (const QString& name : dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        const QString folder = dir.filePath(name) + u'/';
        const bool hasOwnRules = QFile::exists(folder + SettingsFile);
        cases.push_back({testName(name), folder + MessageFile, folder + DocumentFile,
                         folder + DiagnosticsFile, SettingsFile,
                         hasOwnRules ? folder : GoldenDir + QStringLiteral("/rules"), false});
    }
    return cases;
}

// The samples that are right must convert silently; the faulty ones show what is reported.
std::vector<Case> sampleCases()
{
    std::vector<Case> cases;
    for (const QString& message : sampleMessages()) {
        const QString base = message.chopped(static_cast<int>(strlen(".adexp")));
        const QString expected = ExpectedSamplesDir + u'/' + base;
        cases.push_back({testName(QString(base).replace(u'/', u'_')), SamplesDir + u'/' + message,
                         expected + QStringLiteral(".xml"), expected + QStringLiteral(".txt"),
                         QStringLiteral(":/adexp/adexp.ini"), SourceDir,
                         !message.startsWith(QStringLiteral("faulty/"))});
    }
    return cases;
}

/// The content of a file, nothing if it is not there.
std::optional<QByteArray> readFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

void writeFile(const QString& path, const QByteArray& content)
{
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    ASSERT_EQ(file.write(content), content.size()) << path.toStdString();
}

// One line per report, in order. All but the reports about the message are marked.
QByteArray diagnosticText(const DiagnosticCapture& capture)
{
    QByteArray text;
    for (const DiagnosticCapture::Line& line : capture.lines()) {
        if (line.type != QtDebugMsg)
            text += line.type == QtCriticalMsg ? "critical: " : "other: ";
        text += line.text.toUtf8() + '\n';
    }
    return text;
}

void loadRules(const Case& golden)
{
    const WorkingDirectory workingDirectory(golden.workingDir);
    const DiagnosticCapture capture;
    const QByteArray path = golden.settingsFile.toUtf8();
    ASSERT_EQ(init_adexp(path.constData(), static_cast<int>(path.size())), 0);
    ASSERT_EQ(diagnosticText(capture).toStdString(), "") << "the rule set must load silently";
}

Result convert(const QByteArray& message)
{
    const DiagnosticCapture capture;
    unsigned int length = 0;
    const std::unique_ptr<const char, void (*)(const char*)> document(
        convert_from_adexp(message.constData(), static_cast<unsigned int>(message.size()), &length),
        free_adexp);
    return {QByteArray(document.get(), static_cast<int>(length)), diagnosticText(capture)};
}

std::string unifiedDiff(const QString& expectedFile, const QByteArray& actual)
{
    const QTemporaryDir dir;
    const QString actualFile = dir.filePath(QStringLiteral("actual"));
    writeFile(actualFile, actual);
    QProcess diff;
    diff.start(QStringLiteral("diff"),
               {QStringLiteral("-u"), QStringLiteral("-N"), QStringLiteral("-a"),
                QStringLiteral("--label=") + expectedFile, QStringLiteral("--label=actual"),
                expectedFile, actualFile});
    if (!diff.waitForFinished())
        return "diff cannot be run: " + diff.errorString().toStdString();
    return diff.readAllStandardOutput().toStdString();
}

bool updating()
{
    return qEnvironmentVariableIsSet("ADEXP_UPDATE_GOLDEN");
}

// Without `expected` the file must not be there.
void compareOrUpdate(const QString& file, const std::optional<QByteArray>& actual)
{
    if (updating()) {
        if (actual)
            writeFile(file, *actual);
        return;
    }
    const std::optional<QByteArray> expected = readFile(file);
    EXPECT_EQ(expected.has_value(), actual.has_value()) << file.toStdString();
    if (expected != actual)
        ADD_FAILURE() << unifiedDiff(file, actual.value_or(QByteArray()));
}

// Two readers check each document, since they know different editions of XML 1.0: libxml2 the
// latest, Qt the one before it. Both return the error, or nothing.

std::string libxmlError(const QByteArray& document)
{
    const std::unique_ptr<xmlParserCtxt, void (*)(xmlParserCtxtPtr)> parser(xmlNewParserCtxt(),
                                                                            xmlFreeParserCtxt);
    const std::unique_ptr<xmlDoc, void (*)(xmlDocPtr)> tree(
        xmlCtxtReadMemory(
            parser.get(), document.constData(), static_cast<int>(document.size()), nullptr, "UTF-8",
            XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
        xmlFreeDoc);
    if (tree && parser->wellFormed && parser->nsWellFormed)
        return "";
    const auto* const error = xmlCtxtGetLastError(parser.get());
    return "line " + std::to_string(error->line) + ": " + error->message;
}

std::string qtError(const QByteArray& document)
{
    QXmlStreamReader reader(document);
    while (!reader.atEnd())
        reader.readNext();
    return reader.errorString().toStdString();
}

class Golden : public testing::TestWithParam<Case>
{
protected:
    ~Golden() override { clear_adexp(); }
};

TEST_P(Golden, DocumentAndDiagnosticsAreAsExpected)
{
    const Case& golden = GetParam();
    const std::optional<QByteArray> message = readFile(golden.messageFile);
    ASSERT_TRUE(message) << golden.messageFile.toStdString();
    ASSERT_NO_FATAL_FAILURE(loadRules(golden));

    const Result result = convert(*message);

    if (golden.mustBeClean) {
        EXPECT_EQ(result.diagnostics.toStdString(), "") << "a sample must convert silently";
    }
    if (!result.document.isEmpty()) {
        EXPECT_EQ(libxmlError(result.document), "");
        EXPECT_EQ(qtError(result.document), "");
    }
    compareOrUpdate(golden.documentFile, result.document.isEmpty()
                                             ? std::nullopt
                                             : std::optional<QByteArray>(result.document));
    compareOrUpdate(golden.diagnosticsFile, result.diagnostics);
}

std::string nameOfCase(const testing::TestParamInfo<Case>& info)
{
    return info.param.name.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Case, Golden, testing::ValuesIn(ownCases()), nameOfCase);
INSTANTIATE_TEST_SUITE_P(Sample, Golden, testing::ValuesIn(sampleCases()), nameOfCase);

// The files that belong to the case in `folder`.
QSet<QString> filesOfCase(const QDir& folder)
{
    QSet<QString> names = {MessageFile, DocumentFile, DiagnosticsFile};
    if (folder.exists(SettingsFile))
        names.unite(QSet<QString>(RuleFiles.begin(), RuleFiles.end()));
    return names;
}

TEST(GoldenFiles, CasesHoldNoOtherFiles)
{
    EXPECT_FALSE(ownCases().empty());
    const QDir cases(CasesDir);
    for (const QString& name :
         cases.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)) {
        const QDir folder(cases.filePath(name));
        EXPECT_TRUE(folder.exists()) << name.toStdString() << " is not the folder of a case";
        const QSet<QString> known = filesOfCase(folder);
        for (const QString& file :
             folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
            EXPECT_TRUE(known.contains(file)) << folder.filePath(file).toStdString();
    }
}

TEST(GoldenFiles, SampleExpectationsHaveTheirMessages)
{
    QSet<QString> known;
    for (const Case& sample : sampleCases())
        known.unite({sample.documentFile, sample.diagnosticsFile});
    QDirIterator it(ExpectedSamplesDir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString file = it.next();
        EXPECT_TRUE(known.contains(file)) << file.toStdString();
    }
}

TEST(GoldenFiles, SamplesHoldMessagesOnly)
{
    QDirIterator it(SamplesDir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    const QStringList messages = sampleMessages();
    while (it.hasNext()) {
        const QString file = QDir(SamplesDir).relativeFilePath(it.next());
        EXPECT_TRUE(messages.contains(file) || file == QStringLiteral("README.md"))
            << file.toStdString();
    }
}

} // namespace
