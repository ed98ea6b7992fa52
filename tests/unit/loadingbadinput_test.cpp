// Rule files, settings files and messages that are broken in every way we could think of. The worst
// result may be a report and a result code.

#include "support/ordinarypermissions.h"
#include "support/reports.h"
#include "support/rulefolder.h"
#include "support/ruleset.h"
#include "support/tooutput.h"

#include "adexp.h"
#include "api/adexplib.h"
#include "load/mainclass.h"
#include "message/msgrule.h"

#include <QDomDocument>
#include <QSettings>

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <utility>

namespace {

const QString SimpleTag = QStringLiteral("simpleTerm");

// UTF-16 with a byte order mark, the low byte first.
QByteArray utf16(const QString& text)
{
    QByteArray bytes("\xff\xfe", 2);
    for (const QChar c : text) {
        bytes += static_cast<char>(c.cell());
        bytes += static_cast<char>(c.row());
    }
    return bytes;
}

QByteArray utf16HighByteFirst(const QString& text)
{
    QByteArray bytes = utf16(text);
    for (char* unit = bytes.begin(); unit != bytes.end(); unit += 2)
        std::swap(unit[0], unit[1]);
    return bytes;
}

// A term file with one good record, in the given encoding.
const QString OneRecord = QStringLiteral("<terms><simpleTerm name='fl'><term>'F' {digit}3</term>"
                                         "</simpleTerm></terms>");

struct FileCase
{
    const char* name;
    QByteArray content;
    const char* error = nullptr; // place and reason, if it cannot be read
};

void PrintTo(const FileCase& fileCase, std::ostream* out)
{
    *out << fileCase.name;
}

std::string caseName(const testing::TestParamInfo<FileCase>& info)
{
    return info.param.name;
}

class BadRuleFiles : public testing::Test
{
protected:
    Lines termNames() const
    {
        Lines result;
        for (const TermStd* term : converter.termsList)
            result.push_back(term->config.recordName.toStdString());
        return result;
    }

    // Expects that neither loader reads @p path, and that both report @p text.
    void expectRefused(const QString& path, const QString& text)
    {
        EXPECT_FALSE(converter.readTermsXMLFile(path, SimpleTag, false, &toOutput));
        EXPECT_FALSE(converter.readMsgRulesXMLFile(path, &toOutput));
        EXPECT_EQ(converter.termsList.size(), 0);
        EXPECT_EQ(converter.msgRules.size(), 0);
        EXPECT_EQ(linesOf(diagnostics),
                  (Lines{setContentReport(text),
                         readTermsReport(QStringLiteral("can not read simpleTerm records")),
                         setContentReport(text)}));
    }

    RuleFolder folder;
    MainClass converter{nullptr};
    DiagnosticCapture diagnostics;
};

TEST_F(BadRuleFiles, FolderInPlaceOfAFileIsRefused)
{
    const QString path = folder.makeFolder(QStringLiteral("folder.xml"));
    expectRefused(path, RuleFolder::openErrorText(path));
}

TEST_F(BadRuleFiles, FileInPlaceOfAFolderOfThePathIsRefused)
{
    const QString path =
        folder.write(QStringLiteral("file"), OneRecord.toUtf8()) + QStringLiteral("/terms.xml");
    expectRefused(path, RuleFolder::openErrorText(path));
}

TEST_F(BadRuleFiles, NameThatIsTooLongIsRefused)
{
    const QString path = folder.path(QString(300, u'x'));
    expectRefused(path, RuleFolder::openErrorText(path));
}

TEST_F(BadRuleFiles, UnknownResourceIsRefused)
{
    const QString path = QStringLiteral(":/adexp/nowhere.xml");
    expectRefused(path, RuleFolder::openErrorText(path));
}

TEST_F(BadRuleFiles, LinkToItselfIsRefused)
{
    const QString path = folder.path(QStringLiteral("link.xml"));
    ASSERT_TRUE(QFile::link(path, path));
    expectRefused(path, RuleFolder::openErrorText(path));
}

TEST_F(BadRuleFiles, FileWithoutReadPermissionIsRefused)
{
    const OrdinaryPermissions permissions;
    const QString path = folder.write(QStringLiteral("terms.xml"), OneRecord.toUtf8());
    ASSERT_TRUE(QFile::setPermissions(path, QFile::WriteOwner));
    expectRefused(path, RuleFolder::openErrorText(path));
}

class MalformedRuleFiles : public BadRuleFiles, public testing::WithParamInterface<FileCase>
{
};

TEST_P(MalformedRuleFiles, AreRefusedWithPlaceAndReason)
{
    expectRefused(folder.write(QStringLiteral("bad.xml"), GetParam().content),
                  QLatin1String("Parse error at ") + QLatin1String(GetParam().error));
}

INSTANTIATE_TEST_SUITE_P(
    Content, MalformedRuleFiles,
    testing::Values(
        FileCase{"Empty", "", "line 1, column 1no element found"},
        FileCase{"WhiteSpaceOnly", " \n\t ", "line 2, column 3no element found"},
        FileCase{"ByteOrderMarkOnly", "\xef\xbb\xbf", "line 1, column 1no element found"},
        FileCase{"DeclarationOnly", "<?xml version='1.0'?>", "line 1, column 22no element found"},
        FileCase{"CommentOnly", "<!-- nothing -->", "line 1, column 17no element found"},
        FileCase{"PlainText", "simpleTerm", "line 1, column 1syntax error"},
        FileCase{"MissingEndTag", "<terms>\n <simpleTerm>\n </terms>",
                 "line 3, column 4mismatched tag"},
        FileCase{"CutInsideATag", "<terms><simpleTerm nam", "line 1, column 8unclosed token"},
        FileCase{"CutInsideAComment", "<terms><!-- ", "line 1, column 8unclosed token"},
        FileCase{"TwoRoots", "<a/><b/>", "line 1, column 5junk after document element"},
        FileCase{"TextBehindTheRoot", "<a/>text", "line 1, column 5junk after document element"},
        FileCase{"AttributeWithoutQuotes", "<terms><simpleTerm name=A/></terms>",
                 "line 1, column 25not well-formed (invalid token)"},
        FileCase{"LoneAmpersand", "<terms>'A' & 'B'</terms>",
                 "line 1, column 13not well-formed (invalid token)"},
        FileCase{"Json", "{\"terms\": []}", "line 1, column 1not well-formed (invalid token)"},
        FileCase{"Binary", QByteArray("\x7f\x45\x4c\x46\x02\x01\x01\x00\x00\x80\xfe", 11),
                 "line 1, column 1not well-formed (invalid token)"},
        FileCase{"NotUtf8", "<terms>\xff</terms>",
                 "line 1, column 8not well-formed (invalid token)"},
        FileCase{"DoubledAttribute", "<terms><simpleTerm name='A' name='B'/></terms>",
                 "line 1, column 29duplicate attribute"},
        FileCase{"UnknownEntity", "<terms><simpleTerm>&nowhere;</simpleTerm></terms>",
                 "line 1, column 20undefined entity"},
        FileCase{"UnknownPrefix", "<terms><x:simpleTerm/></terms>",
                 "line 1, column 8unbound prefix"},
        FileCase{"NulCharacter", QByteArray("<terms>\0</terms>", 16),
                 "line 1, column 8not well-formed (invalid token)"},
        FileCase{"CharacterReferenceToNul", "<terms>&#0;</terms>",
                 "line 1, column 8reference to invalid character number"},
        FileCase{"UnknownEncoding", "<?xml version='1.0' encoding='X-NO-SUCH'?><terms/>",
                 "line 1, column 1the content is not in the encoding X-NO-SUCH"},
        FileCase{"WrongUtf8WithByteOrderMark", "\xef\xbb\xbf<terms>\xff</terms>",
                 "line 1, column 1the content is not in the encoding UTF-8"}),
    caseName);

class ReadableRuleFiles : public BadRuleFiles, public testing::WithParamInterface<FileCase>
{
};

TEST_P(ReadableRuleFiles, LoadTheirRecord)
{
    const QString path = folder.write(QStringLiteral("terms.xml"), GetParam().content);
    EXPECT_TRUE(converter.readTermsXMLFile(path, SimpleTag, false, &toOutput));
    EXPECT_EQ(linesOf(diagnostics), Lines{});
    ASSERT_EQ(termNames(), Lines{"FL"});
    EXPECT_EQ(converter.termsList.at(0)->config.ruleText.toStdString(), "'F' {DIGIT}3");
}

INSTANTIATE_TEST_SUITE_P(
    Content, ReadableRuleFiles,
    testing::Values(
        FileCase{"Utf8", OneRecord.toUtf8()},
        FileCase{"Utf8WithByteOrderMark", "\xef\xbb\xbf" + OneRecord.toUtf8()},
        FileCase{"Utf8Declared", "<?xml version='1.0' encoding='UTF-8'?>" + OneRecord.toUtf8()},
        FileCase{"Utf16LowByteFirst",
                 utf16(QStringLiteral("<?xml version='1.0' encoding='UTF-16'?>") + OneRecord)},
        FileCase{"Utf16HighByteFirst",
                 utf16HighByteFirst(QStringLiteral("<?xml version='1.0' encoding='UTF-16'?>") +
                                    OneRecord)},
        FileCase{"Utf16WithoutDeclaration", utf16(OneRecord)},
        FileCase{"Latin1Declared",
                 "<?xml version='1.0' encoding='ISO-8859-1'?>" + OneRecord.toLatin1()},
        FileCase{"CarriageReturns",
                 "<?xml version='1.0'?>\r\n<terms>\r\n<simpleTerm name='fl'>\r\n<term>'F' "
                 "{digit}3</term>\r\n</simpleTerm>\r\n</terms>\r\n"},
        FileCase{"DocumentTypeAndEntity",
                 "<!DOCTYPE terms [<!ENTITY d 'digit'>]><terms><simpleTerm name='fl'><term>'F' "
                 "{&d;}3</term></simpleTerm></terms>"},
        FileCase{"CharacterReferences", "<terms><simpleTerm name='&#x66;&#108;'><term>&apos;F&#39; "
                                        "&#123;digit}3</term></simpleTerm></terms>"},
        FileCase{"CData", "<terms><simpleTerm name='fl'><term><![CDATA['F' {digit}]]>3</term>"
                          "</simpleTerm></terms>"},
        FileCase{"Comments",
                 "<!--a--><terms><!--b--><simpleTerm name='fl'><!--c--><term>'F'<!--d--> "
                 "{digit}3</term></simpleTerm><!--e--></terms><!--f-->"}),
    caseName);

class CyrillicEncodings : public BadRuleFiles, public testing::WithParamInterface<FileCase>
{
};

TEST_P(CyrillicEncodings, AreRead)
{
    const QString path = folder.write(QStringLiteral("terms.xml"), GetParam().content);
    EXPECT_TRUE(converter.readTermsXMLFile(path, SimpleTag, false, &toOutput));
    EXPECT_EQ(linesOf(diagnostics), Lines{});
    ASSERT_EQ(converter.termsList.size(), 1);
    EXPECT_EQ(termNames(), Lines{"\u0422"}); // the capital letter Te
}

INSTANTIATE_TEST_SUITE_P(
    Content, CyrillicEncodings,
    testing::Values(
        FileCase{"Iso8859_5", "<?xml version='1.0' encoding='ISO-8859-5'?><terms><simpleTerm "
                              "name='\xe2'><term>'\xc2'</term></simpleTerm></terms>"},
        FileCase{"Koi8R", "<?xml version='1.0' encoding='KOI8-R'?><terms><simpleTerm "
                          "name='\xd4'><term>'\xf4'</term></simpleTerm></terms>"},
        FileCase{"Windows1251", "<?xml version='1.0' encoding='windows-1251'?><terms><simpleTerm "
                                "name='\xf2'><term>'\xd2'</term></simpleTerm></terms>"},
        FileCase{"Utf8", "<?xml version='1.0' encoding='UTF-8'?><terms><simpleTerm "
                         "name='\xd1\x82'><term>'\xd0\xa2'</term></simpleTerm></terms>"}),
    caseName);

TEST_F(BadRuleFiles, FileOfNothingButWrongTagsLoadsNothing)
{
    const QString path = folder.write(
        QStringLiteral("terms.xml"),
        "<a><SubField name='A'/><PrimaryField name='B'/><msgRule title='C'/><term>D</term></a>");
    EXPECT_TRUE(converter.readTermsXMLFile(path, SimpleTag, false, &toOutput));
    EXPECT_EQ(converter.termsList.size(), 0);
    EXPECT_EQ(diagnostics.lines().size(), 4U);
}

TEST_F(BadRuleFiles, DeepElementsAreSkippedWithTheirRecord)
{
    // The parser can read that many; elements that deep belong to no record.
    QByteArray content = "<terms><simpleTerm name='A'><term>DIGIT</term>";
    content += QByteArray("<x>").repeated(200) + QByteArray("</x>").repeated(200);
    content += "</simpleTerm></terms>";
    const QString path = folder.write(QStringLiteral("terms.xml"), content);
    EXPECT_TRUE(converter.readTermsXMLFile(path, SimpleTag, false, &toOutput));
    EXPECT_EQ(termNames(), Lines{"A"});
}

TEST_F(BadRuleFiles, ManyDuplicatesAreEachReported)
{
    QByteArray content = "<terms>";
    for (int i = 0; i < 1000; ++i)
        content += "<simpleTerm name='A'><term>DIGIT</term></simpleTerm>";
    const QString path = folder.write(QStringLiteral("terms.xml"), content + "</terms>");
    EXPECT_TRUE(converter.readTermsXMLFile(path, SimpleTag, false, &toOutput));
    EXPECT_EQ(termNames(), Lines{"A"});
    EXPECT_EQ(diagnostics.lines().size(), 999U);
}

TEST_F(BadRuleFiles, NameMayHoldAnything)
{
    const QString path = folder.write(
        QStringLiteral("terms.xml"),
        "<terms><simpleTerm name='a b&quot;&lt;&#10;)'><term>DIGIT</term></simpleTerm></terms>");
    EXPECT_TRUE(converter.readTermsXMLFile(path, SimpleTag, false, &toOutput));
    EXPECT_EQ(termNames(), Lines{"A B\"<\n)"});
}

TEST_F(BadRuleFiles, MessageRuleThatRefersToALoopIsRefused)
{
    converter.readTermsXMLFile(folder.write(QStringLiteral("terms.xml"),
                                            "<t><simpleTerm name='A'><term>B</term></simpleTerm>"
                                            "<simpleTerm name='B'><term>A</term></simpleTerm></t>"),
                               SimpleTag, false, &toOutput);
    converter.termsList_checkConfig(&toOutput);
    diagnostics.clear();
    const QString path = folder.write(QStringLiteral("rules.xml"),
                                      "<r><msgRule title='ACK'><fields>[B]</fields></msgRule></r>");
    EXPECT_TRUE(converter.readMsgRulesXMLFile(path, &toOutput));
    EXPECT_EQ(converter.msgRules.size(), 0);
    const QString head = RuleFolder::head(path, 0, QStringLiteral("ACK"));
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{termReport(head, QStringLiteral("B"),
                                QStringLiteral("variable B was found, but variable not valid")),
                     readMsgRulesReport(head +
                                        QStringLiteral("rule \"[B]\" no valid, record ignored"))}));
}

class BadSettings : public testing::Test
{
protected:
    BadSettings() { clear_adexp(); }
    ~BadSettings() override { clear_adexp(); }

    static int init(const QString& path)
    {
        const QByteArray bytes = path.toUtf8();
        return init_adexp(bytes.constData(), static_cast<int>(bytes.size()));
    }

    // As the small rule set, but with @p path for its file of simple terms.
    int initWithSimpleTerms(const QByteArray& path)
    {
        writeRuleFiles(folder);
        return init(folder.write(QStringLiteral("adexp.ini"), "[rules]\nsimpleTermsFile=" + path));
    }

    RuleFolder folder;
    DiagnosticCapture diagnostics;
};

TEST_F(BadSettings, FileInPlaceOfAFolderOfThePathIsLikeAMissingFile)
{
    const QString path =
        folder.write(QStringLiteral("file"), "[rules]\n") + QStringLiteral("/adexp.ini");
    ASSERT_EQ(QSettings(path, QSettings::IniFormat).status(), QSettings::NoError);
    EXPECT_EQ(init(path), 2);
}

TEST_F(BadSettings, FileWithoutReadPermissionIsAnAccessError)
{
    const OrdinaryPermissions permissions;
    const QString path = writeRuleSet(folder);
    ASSERT_TRUE(QFile::setPermissions(path, QFile::WriteOwner));
    EXPECT_EQ(init(path), 1);
    EXPECT_EQ(linesOf(diagnostics),
              Lines{"QSettings: an access error occurred, path to ini file: \"" +
                    path.toStdString() + "\" "});
}

TEST_F(BadSettings, BinaryFileLoadsNothing)
{
    const QString path =
        folder.write(QStringLiteral("adexp.ini"), QByteArray("\x00\x01\xff[\xfe]=\x80\n;", 10));
    EXPECT_NE(init(path), 0);
    ASSERT_NE(mc, nullptr);
    EXPECT_EQ(mc->termsList.size(), 0);
}

TEST_F(BadSettings, PathThatIsAFolderIsReported)
{
    const QString path = folder.makeFolder(QStringLiteral("conf"));
    EXPECT_EQ(initWithSimpleTerms(path.toUtf8()), 2);
    EXPECT_EQ(linesOf(diagnostics).front(), setContentReport(RuleFolder::openErrorText(path)));
}

// An unquoted comma makes a list of the value, which is no path.
TEST_F(BadSettings, PathWithACommaNeedsQuotes)
{
    const QString path = folder.write(QStringLiteral("a,b.xml"), RuleSetText::SimpleTerms);
    EXPECT_EQ(initWithSimpleTerms(path.toUtf8()), 2);
    EXPECT_EQ(linesOf(diagnostics).front(), setContentReport(QStringLiteral("file path is empty")));
    EXPECT_EQ(initWithSimpleTerms('"' + path.toUtf8() + '"'), 2);
    EXPECT_EQ(mc->termsList.size(), 1);
}

TEST_F(BadSettings, InvalidUtf8InThePathIsReplaced)
{
    EXPECT_EQ(init_adexp("\xff\xfe\x80", 3), 2);
}

TEST_F(BadSettings, PathMayHoldANul)
{
    EXPECT_EQ(init_adexp("adexp\0.ini", 10), 2);
}

TEST_F(BadSettings, SettingsFileThatNamesItselfIsNotARuleFile)
{
    const QString path = folder.path(QStringLiteral("adexp.ini"));
    EXPECT_EQ(initWithSimpleTerms(path.toUtf8()), 2);
    EXPECT_EQ(diagnostics.lines().size(), 2U);
}

class BadMessages : public testing::Test
{
protected:
    BadMessages()
    {
        clear_adexp();
        const QByteArray path = writeRuleSet(folder).toUtf8();
        EXPECT_EQ(init_adexp(path.constData(), static_cast<int>(path.size())), 0);
    }
    ~BadMessages() override { clear_adexp(); }

    // Converts, and checks what must hold for every document. Empty: no document.
    static QByteArray convert(const char* text, unsigned int textLength)
    {
        unsigned int length = 1;
        const std::unique_ptr<const char, void (*)(const char*)> document(
            convert_from_adexp(text, textLength, &length), &free_adexp);
        if (!document) {
            EXPECT_EQ(length, 0U);
            return QByteArray();
        }
        EXPECT_EQ(document.get()[length], '\0');
        EXPECT_EQ(qstrlen(document.get()), length);
        return QByteArray(document.get(), static_cast<int>(length));
    }

    static QByteArray convert(const QByteArray& message)
    {
        return convert(message.constData(), static_cast<unsigned int>(message.size()));
    }

    static void expectWellFormed(const QByteArray& xml)
    {
        QDomDocument document;
        EXPECT_TRUE(document.setContent(xml, true));
    }

    RuleFolder folder;
    DiagnosticCapture diagnostics;
};

TEST_F(BadMessages, EmptyMessageGivesNothing)
{
    EXPECT_TRUE(convert("").isEmpty());
    EXPECT_EQ(linesOf(diagnostics), Lines{"\"begin message (-TITLE) not found\" "});
}

TEST_F(BadMessages, LengthOf0IsAnEmptyMessageWhateverTheTextHolds)
{
    EXPECT_TRUE(convert("-TITLE IFPL", 0).isEmpty());
    EXPECT_EQ(linesOf(diagnostics), Lines{"\"begin message (-TITLE) not found\" "});
}

TEST_F(BadMessages, WhiteSpaceGivesNothing)
{
    EXPECT_TRUE(convert(" \r\n\t ").isEmpty());
    EXPECT_EQ(linesOf(diagnostics), Lines{"\"begin message (-TITLE) not found\" "});
}

TEST_F(BadMessages, HyphensGiveNothing)
{
    EXPECT_TRUE(convert("-").isEmpty());
    EXPECT_TRUE(convert("- - -").isEmpty());
    EXPECT_TRUE(convert("--TITLE IFPL").isEmpty());
}

TEST_F(BadMessages, LengthAbove2ToThe31MeansUpToTheFirstNul)
{
    const QByteArray message = "-TITLE IFPL -ARCID EIN21K";
    const QByteArray expected = convert(message);
    ASSERT_FALSE(expected.isEmpty());
    // The bytes after the NUL are not part of the message.
    const QByteArray text = message + QByteArray("\0-RMK NO", 8);
    EXPECT_EQ(convert(text.constData(), 0xffffffffU), expected);
    EXPECT_EQ(convert(text.constData(), 0x80000000U), expected);
    EXPECT_EQ(convert(text.constData(), 0x80000019U), expected);
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(BadMessages, NulInsideTheLengthIsACharacterOfTheMessage)
{
    const QByteArray xml = convert(QByteArray("-TITLE IFPL -ARCID AB\0CD", 24));
    expectWellFormed(xml);
    EXPECT_TRUE(xml.contains("<ORIGINAL_TEXT>-TITLE IFPL -ARCID AB\xef\xbf\xbd"
                             "CD</ORIGINAL_TEXT>"));
    EXPECT_EQ(diagnostics.lines().size(), 1U);
}

TEST_F(BadMessages, InvalidUtf8IsReplaced)
{
    for (const char* const bytes : {"\xff", "\x80", "\xc3", "\xe2\x82", "\xf0\x9f\x92", "\xc0\xaf",
                                    "\xed\xa0\x80", "\xf5\x80\x80\x80"}) {
        const QByteArray xml = convert(QByteArray("-TITLE IFPL -ARCID EIN21K -RMK A") + bytes);
        expectWellFormed(xml);
        EXPECT_TRUE(xml.contains("\xef\xbf\xbd")) << QByteArray(bytes).toHex().constData();
        EXPECT_TRUE(xml.contains(">EIN21K</ARCID>"));
    }
}

TEST_F(BadMessages, ByteOrderMarkBeforeTheTitleIsNoHarm)
{
    EXPECT_FALSE(convert("\xef\xbb\xbf-TITLE IFPL -ARCID EIN21K").isEmpty());
}

TEST_F(BadMessages, NoiseGivesNoDocument)
{
    std::mt19937 random(1); // the same noise every time
    for (int size : {1, 2, 3, 100, 10000}) {
        QByteArray noise(size, '\0');
        for (char& c : noise)
            c = static_cast<char>(random() & 0xff);
        EXPECT_TRUE(convert(noise).isEmpty());
    }
}

TEST_F(BadMessages, NoiseInsideAMessageGivesAWellFormedDocument)
{
    std::mt19937 random(2);
    for (int i = 0; i < 200; ++i) {
        QByteArray message = "-TITLE IFPL -ARCID EIN21K -RMK ";
        for (auto j = random() % 100; j > 0; --j)
            message += static_cast<char>(random() & 0xff);
        message += " -BEGIN RTEPTS -PT -PTID ABC";
        const QByteArray xml = convert(message);
        ASSERT_FALSE(xml.isEmpty());
        expectWellFormed(xml);
    }
}

TEST_F(BadMessages, EveryByteOfAMessageMayBeMissing)
{
    const QByteArray message = "-TITLE IFPL -ARCID EIN21K -BEGIN RTEPTS -PT -PTID ABC -END RTEPTS";
    for (int size = 0; size < message.size(); ++size) {
        const QByteArray xml = convert(message.left(size));
        if (!xml.isEmpty())
            expectWellFormed(xml);
    }
}

TEST_F(BadMessages, BlocksMayNestDeeply)
{
    QByteArray message = "-TITLE IFPL";
    for (int i = 0; i < 5000; ++i)
        message += " -BEGIN B" + QByteArray::number(i);
    for (int i = 5000; i > 0; --i)
        message += " -END B" + QByteArray::number(i - 1);
    EXPECT_FALSE(convert(message).isEmpty());
}

TEST_F(BadMessages, FiftyMegabytesAreConverted)
{
    const QByteArray data =
        QByteArray("ABCDEFGHIJKLMNO ").repeated(50 * 1024 * 1024 / 16).trimmed();
    const QByteArray xml = convert("-TITLE IFPL -ARCID EIN21K -RMK " + data);
    ASSERT_GT(xml.size(), 2 * data.size());
    EXPECT_TRUE(xml.contains(">" + data + "</RMK>"));
    EXPECT_TRUE(xml.endsWith(data.right(1000) + "</ORIGINAL_TEXT>\n</ADEXP_XML>\n"));
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

} // namespace
