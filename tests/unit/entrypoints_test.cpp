// The functions of adexp.h.

#include "support/reports.h"
#include "support/rulefolder.h"
#include "support/ruleset.h"
#include "support/tooutput.h"

#include "adexp.h"
#include "api/adexplib.h"
#include "load/mainclass.h"
#include "message/msgrule.h"

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

namespace {

const std::string Message = "-TITLE IFPL -ARCID EIN21K";

class EntryPoints : public testing::Test
{
protected:
    EntryPoints() { clear_adexp(); }
    ~EntryPoints() override { clear_adexp(); }

    static int init(const QString& path)
    {
        const QByteArray bytes = path.toUtf8();
        return init_adexp(bytes.constData(), static_cast<int>(bytes.size()));
    }

    // The document, without a value if there is none.
    static std::optional<std::string> convert(const std::string& message)
    {
        unsigned int length = 1;
        const char* const document =
            convert_from_adexp(message.data(), static_cast<unsigned int>(message.size()), &length);
        if (!document) {
            EXPECT_EQ(length, 0U);
            return std::nullopt;
        }
        EXPECT_EQ(document[length], '\0');
        std::string result(document, length);
        free_adexp(document);
        return result;
    }

    RuleFolder folder;
    DiagnosticCapture diagnostics;
};

// Bytes before a page that must not be read: one byte too many ends the process.
class ExactBytes
{
public:
    explicit ExactBytes(const std::string& bytes)
        : m_pageSize(static_cast<size_t>(sysconf(_SC_PAGESIZE))),
          m_size((bytes.size() / m_pageSize + 2) * m_pageSize),
          m_pages(static_cast<char*>(
              mmap(nullptr, m_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)))
    {
        char* const guard = m_pages + m_size - m_pageSize;
        EXPECT_EQ(mprotect(guard, m_pageSize, PROT_NONE), 0);
        m_data = guard - bytes.size();
        std::memcpy(m_data, bytes.data(), bytes.size());
    }
    ~ExactBytes() { munmap(m_pages, m_size); }
    Q_DISABLE_COPY(ExactBytes)

    const char* data() const { return m_data; }

private:
    size_t m_pageSize;
    size_t m_size;
    char* m_pages;
    char* m_data;
};

// Logs its destruction.
class Witness
{
public:
    explicit Witness(const char* name, Lines* log) : m_name(name), m_log(log) {}
    ~Witness() { m_log->push_back(m_name); }

private:
    std::string m_name;
    Lines* m_log;
};

class WatchedTerm : public TermStd
{
public:
    WatchedTerm(const ConfigInfo* record, const char* name, Lines* log)
        : TermStd(record), m_witness(name, log)
    {
    }

private:
    Witness m_witness;
};

TEST_F(EntryPoints, InitReturns0ForALoadedRuleSet)
{
    EXPECT_EQ(init(writeRuleSet(folder)), 0);
    ASSERT_NE(mc, nullptr);
    EXPECT_EQ(mc->msgRules.size(), 2);
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(EntryPoints, InitReturns0ForTheEmbeddedRuleSet)
{
    EXPECT_EQ(init(QStringLiteral(":/adexp/adexp.ini")), 0);
}

TEST_F(EntryPoints, InitReturns0AlthoughDefinitionsWereRefused)
{
    const QString settings = writeRuleSet(folder);
    folder.write(QStringLiteral("sub.xml"), "<t><bad/></t>");
    EXPECT_EQ(init(settings), 0);
    EXPECT_FALSE(diagnostics.lines().empty());
}

TEST_F(EntryPoints, InitReturns2ForAMissingSettingsFile)
{
    EXPECT_EQ(init(folder.path(QStringLiteral("missing.ini"))), 2);
    ASSERT_NE(mc, nullptr);
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{setContentReport(QStringLiteral("file path is empty")),
                     readTermsReport(QStringLiteral("can not read simpleTerm records"))}));
}

TEST_F(EntryPoints, InitReturns2ForAMissingRuleFileAndKeepsWhatWasLoaded)
{
    const QString settings = writeRuleSet(folder);
    QFile::remove(folder.path(QStringLiteral("rules.xml")));
    EXPECT_EQ(init(settings), 2);
    EXPECT_EQ(mc->termsList.size(), 6);
    EXPECT_EQ(mc->msgRules.size(), 0);
}

TEST_F(EntryPoints, InitReturns1ForAMalformedSettingsFile)
{
    const QString path = folder.write(QStringLiteral("no.ini"), "[rules\n");
    EXPECT_EQ(init(path), 1);
    ASSERT_NE(mc, nullptr);
    EXPECT_EQ(mc->termsList.size(), 0);
    EXPECT_EQ(linesOf(diagnostics),
              Lines{"QSettings: a format error occurred, path to ini file: \"" +
                    path.toStdString() + "\" "});
}

// Qt reads the lines of a group only when it is asked for a key; a line that it cannot read has no
// value.
TEST_F(EntryPoints, InitReturns2ForASettingsFileOfOtherText)
{
    EXPECT_EQ(init(folder.write(QStringLiteral("no.ini"), "this is not an ini file\n")), 2);
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{setContentReport(QStringLiteral("file path is empty")),
                     readTermsReport(QStringLiteral("can not read simpleTerm records"))}));
}

TEST_F(EntryPoints, InitReturns1ForASettingsFileThatCannotBeOpened)
{
    const QString path = folder.makeFolder(QStringLiteral("folder.ini"));
    EXPECT_EQ(init(path), 1);
    ASSERT_NE(mc, nullptr);
    EXPECT_EQ(mc->termsList.size(), 0);
    EXPECT_EQ(linesOf(diagnostics),
              Lines{"QSettings: an access error occurred, path to ini file: \"" +
                    path.toStdString() + "\" "});
}

TEST_F(EntryPoints, SettingsErrorNamesThePathAsGivenWithoutEscapes)
{
    const WorkingDirectory directory(folder.path(QString()));
    folder.write(QStringLiteral("q\"\u0413.ini"), "[rules\n");
    EXPECT_EQ(init(QStringLiteral("q\"\u0413.ini")), 1);
    EXPECT_EQ(linesOf(diagnostics),
              Lines{"QSettings: a format error occurred, path to ini file: \"q\"\u0413.ini\" "});
}

TEST_F(EntryPoints, PathIsUtf8AndNeedsNoNul)
{
    const std::string path = writeRuleSet(folder, QStringLiteral("пpaвилa.ini")).toStdString();
    const ExactBytes bytes(path);
    EXPECT_EQ(init_adexp(bytes.data(), static_cast<int>(path.size())), 0);
}

TEST_F(EntryPoints, PathIsCutToItsLength)
{
    writeRuleSet(folder, QStringLiteral("rules1.ini"));
    const WorkingDirectory directory(folder.path(QString()));
    EXPECT_EQ(init_adexp("rules1.ini.bak", 10), 0);
    EXPECT_EQ(init_adexp("rules1.ini.bak", 14), 2);
}

TEST_F(EntryPoints, PathMayBeOneByteLong)
{
    writeRuleSet(folder, QStringLiteral("r"));
    const WorkingDirectory directory(folder.path(QString()));
    EXPECT_EQ(init_adexp("r", 1), 0);
}

TEST_F(EntryPoints, PathWithoutLengthIsTheDefaultPath)
{
    writeRuleSet(folder);
    const WorkingDirectory directory(folder.path(QString()));
    EXPECT_EQ(init_adexp("missing.ini", 0), 0);
    EXPECT_EQ(init_adexp("missing.ini", -1), 0);
    EXPECT_EQ(init_adexp("missing.ini", 11), 2);
}

TEST_F(EntryPoints, NullPathIsTheDefaultPathWhateverItsLength)
{
    writeRuleSet(folder);
    const WorkingDirectory directory(folder.path(QString()));
    EXPECT_EQ(init_adexp(nullptr, 9), 0);
    EXPECT_EQ(init_adexp(nullptr, 0), 0);
}

TEST_F(EntryPoints, SecondInitReplacesTheRuleSet)
{
    ASSERT_EQ(init(writeRuleSet(folder)), 0);
    ASSERT_TRUE(convert(Message));
    const QString settings = writeRuleSet(folder);
    folder.write(QStringLiteral("rules.xml"),
                 "<r><msgRule title='REJ'><fields>ARCID</fields></msgRule></r>");
    EXPECT_EQ(init(settings), 0);
    EXPECT_FALSE(convert(Message));
    EXPECT_TRUE(convert("-TITLE REJ -ARCID EIN21K"));
}

TEST_F(EntryPoints, SecondInitAndClearDeleteTheConverter)
{
    const QString settings = writeRuleSet(folder);
    const ConfigInfo record;
    Lines log;
    init(settings);
    mc->termsList.append(new WatchedTerm(&record, "first", &log));
    init(settings);
    EXPECT_EQ(log, Lines{"first"});
    mc->termsList.append(new WatchedTerm(&record, "second", &log));
    clear_adexp();
    EXPECT_EQ(log, (Lines{"first", "second"}));
}

TEST_F(EntryPoints, FailedSecondInitLeavesNothingOfTheFirst)
{
    for (const QString& path :
         {folder.path(QStringLiteral("missing.ini")), folder.makeFolder(QStringLiteral("x.ini"))}) {
        ASSERT_EQ(init(writeRuleSet(folder)), 0);
        EXPECT_NE(init(path), 0);
        ASSERT_NE(mc, nullptr);
        EXPECT_EQ(mc->termsList.size(), 0);
        EXPECT_EQ(mc->msgRules.size(), 0);
        EXPECT_FALSE(convert(Message));
    }
}

TEST_F(EntryPoints, ClearBeforeInitDoesNothing)
{
    clear_adexp();
    EXPECT_EQ(mc, nullptr);
}

TEST_F(EntryPoints, ClearTwiceIsHarmless)
{
    init(writeRuleSet(folder));
    clear_adexp();
    EXPECT_EQ(mc, nullptr);
    clear_adexp();
    EXPECT_EQ(mc, nullptr);
}

TEST_F(EntryPoints, InitAfterClearLoadsAgain)
{
    const QString settings = writeRuleSet(folder);
    init(settings);
    clear_adexp();
    EXPECT_EQ(init(settings), 0);
    EXPECT_TRUE(convert(Message));
}

TEST_F(EntryPoints, NullMessageGivesNothing)
{
    unsigned int length = 7;
    EXPECT_EQ(convert_from_adexp(nullptr, 5, &length), nullptr);
    EXPECT_EQ(length, 0U);
    EXPECT_EQ(convert_from_adexp(nullptr, 5, nullptr), nullptr);
}

TEST_F(EntryPoints, NullMessageDoesNotLoadTheDefaultRuleSet)
{
    convert_from_adexp(nullptr, 5, nullptr);
    EXPECT_EQ(mc, nullptr);
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(EntryPoints, FirstConvertLoadsTheDefaultSettingsFile)
{
    writeRuleSet(folder);
    const WorkingDirectory directory(folder.path(QString()));
    EXPECT_TRUE(convert(Message));
    ASSERT_NE(mc, nullptr);
    EXPECT_EQ(mc->msgRules.size(), 2);
}

TEST_F(EntryPoints, FirstConvertGoesOnIfTheDefaultSettingsFileIsMissing)
{
    const WorkingDirectory directory(folder.path(QString()));
    EXPECT_FALSE(convert(Message));
    ASSERT_NE(mc, nullptr);
    EXPECT_EQ(diagnostics.lines().size(), 2U);
    // It is loaded once, not for each message.
    EXPECT_FALSE(convert(Message));
    EXPECT_EQ(diagnostics.lines().size(), 2U);
}

TEST_F(EntryPoints, ConvertGivesTheDocument)
{
    init(writeRuleSet(folder));
    const auto document = convert(Message);
    ASSERT_TRUE(document);
    EXPECT_EQ(document->rfind("<ADEXP_XML ", 0), 0U);
    EXPECT_NE(document->find(">EIN21K</ARCID>"), std::string::npos);
    EXPECT_NE(document->find("<ORIGINAL_TEXT>" + Message + "</ORIGINAL_TEXT>"), std::string::npos);
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(EntryPoints, DocumentEndsWithANulBehindItsLength)
{
    init(writeRuleSet(folder));
    unsigned int length = 0;
    const char* const document =
        convert_from_adexp(Message.data(), static_cast<unsigned int>(Message.size()), &length);
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(std::strlen(document), length);
    free_adexp(document);
}

TEST_F(EntryPoints, LengthOfTheDocumentNeedNotBeAskedFor)
{
    init(writeRuleSet(folder));
    const char* const document =
        convert_from_adexp(Message.data(), static_cast<unsigned int>(Message.size()), nullptr);
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(document, convert(Message));
    free_adexp(document);
}

TEST_F(EntryPoints, DocumentMayBeReleasedWithDeleteArray)
{
    init(writeRuleSet(folder));
    delete[] convert_from_adexp(Message.data(), static_cast<unsigned int>(Message.size()), nullptr);
}

TEST_F(EntryPoints, FreeAllowsNull)
{
    free_adexp(nullptr);
}

TEST_F(EntryPoints, MessageNeedsNoNul)
{
    init(writeRuleSet(folder));
    const ExactBytes bytes(Message);
    const char* const document =
        convert_from_adexp(bytes.data(), static_cast<unsigned int>(Message.size()), nullptr);
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(document, convert(Message));
    free_adexp(document);
}

TEST_F(EntryPoints, MessageIsCutToItsLength)
{
    init(writeRuleSet(folder));
    const char* const document = convert_from_adexp("-TITLE IFPL -ARCID EIN21KXX", 25, nullptr);
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(document, convert(Message));
    free_adexp(document);
}

TEST_F(EntryPoints, TitleWithoutRuleGivesNothingAndNoReport)
{
    init(writeRuleSet(folder));
    EXPECT_FALSE(convert("-TITLE REJ -ARCID EIN21K"));
    EXPECT_FALSE(convert("-TITLE ifpl -ARCID EIN21K"));
    EXPECT_FALSE(convert("-TITLE"));
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(EntryPoints, MessageWithoutTitleGivesNothing)
{
    init(writeRuleSet(folder));
    EXPECT_FALSE(convert("-ARCID EIN21K"));
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{"\"begin message still not found, field -ARCID ignored\" ",
                     "\"ignore word\" \"EIN21K\" ", "\"begin message (-TITLE) not found\" "}));
}

TEST_F(EntryPoints, EveryConversionStartsAfresh)
{
    init(writeRuleSet(folder));
    const auto first = convert(Message);
    convert("-TITLE IFPL -UNKNOWN -BEGIN X");
    convert("-TITLE ACK -ARCID A");
    EXPECT_EQ(convert(Message), first);
}

// Rules refer to terms, so they go before them.
class WatchedRule : public MsgRule
{
public:
    WatchedRule(const ConfigInfo* record, const char* name, Lines* log)
        : MsgRule(record, nullptr, &toOutput), m_witness(name, log)
    {
    }

private:
    Witness m_witness;
};

TEST(Converter, DeletesTheRulesThenTheTermsInListOrder)
{
    Lines log;
    ConfigInfo record;
    record.ruleText = QStringLiteral("DIGIT");
    {
        MainClass converter(nullptr);
        converter.termsList.append(new WatchedTerm(&record, "term 1", &log));
        converter.termsList.append(new WatchedTerm(&record, "term 2", &log));
        converter.msgRules.append(new WatchedRule(&record, "rule 1", &log));
        converter.msgRules.append(new WatchedRule(&record, "rule 2", &log));
    }
    EXPECT_EQ(log, (Lines{"rule 1", "rule 2", "term 1", "term 2"}));
}

TEST(Converter, IsAQObjectOfItsNameWithoutMembersOfItsOwn)
{
    MainClass converter(nullptr);
    const QMetaObject* const meta = converter.metaObject();
    EXPECT_STREQ(meta->className(), "MainClass");
    EXPECT_EQ(meta->methodCount(), meta->superClass()->methodCount());
    EXPECT_EQ(meta->propertyCount(), meta->superClass()->propertyCount());
    EXPECT_EQ(meta->enumeratorCount(), meta->superClass()->enumeratorCount());
    EXPECT_TRUE(converter.inherits("MainClass"));
    EXPECT_EQ(converter.parent(), nullptr);
}

TEST(Converter, StartsEmpty)
{
    QObject parent;
    const auto* const converter = new MainClass(&parent);
    EXPECT_EQ(converter->parent(), &parent);
    EXPECT_EQ(converter->termsList.size(), 0);
    EXPECT_EQ(converter->msgRules.size(), 0);
}

} // namespace
