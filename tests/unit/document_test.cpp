// A message cut into words.

#include "message/adexpdoc.h"

#include "support/diagnosticcapture.h"
#include "support/tooutput.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using Words = std::vector<std::pair<std::string, int>>;

Words wordsOf(const AdexpDoc& doc)
{
    Words words;
    for (const DocWord& word : doc.wordList)
        words.emplace_back(word.textIn(doc.msgParam.text).toString().toStdString(),
                           word.beginPoint);
    return words;
}

Words wordsOf(const QString& text)
{
    return wordsOf(AdexpDoc(text, &toOutput));
}

TEST(Document, PositionsCountWithoutCarriageReturns)
{
    const AdexpDoc doc(QStringLiteral("-TITLE IFPL\r\n-ARCID ABC"), &toOutput);
    EXPECT_EQ(wordsOf(doc), (Words{{"-TITLE", 0}, {"IFPL", 7}, {"-ARCID", 12}, {"ABC", 19}}));
    EXPECT_EQ(doc.msgParam.text, QStringLiteral("-TITLE IFPL\n-ARCID ABC"));
}

TEST(Document, CarriageReturnsGoWhereverTheyStand)
{
    const AdexpDoc doc(QStringLiteral("\rA\r\rB\r C\r"), &toOutput);
    EXPECT_EQ(doc.msgParam.text, QStringLiteral("AB C"));
    EXPECT_EQ(wordsOf(doc), (Words{{"AB", 0}, {"C", 3}}));
}

TEST(Document, EmptyTextHasNoWords)
{
    const AdexpDoc doc{QString(), &toOutput};
    EXPECT_TRUE(doc.wordList.empty());
    EXPECT_TRUE(doc.currWordListIt == doc.wordList.cend());
}

TEST(Document, TextOfSeparatorsHasNoWords)
{
    const AdexpDoc doc(QStringLiteral(" \n\t\r\n "), &toOutput);
    EXPECT_TRUE(doc.wordList.empty());
    EXPECT_TRUE(doc.currWordListIt == doc.wordList.cend());
    EXPECT_TRUE(doc.lastFieldWordListIt == doc.wordList.cend());
}

TEST(Document, RunsOfSeparatorsMakeNoWords)
{
    EXPECT_EQ(wordsOf(QStringLiteral("A  \t\nB")), (Words{{"A", 0}, {"B", 5}}));
    EXPECT_EQ(wordsOf(QStringLiteral("\n A")), (Words{{"A", 2}}));
}

TEST(Document, LastWordNeedsNoSeparator)
{
    EXPECT_EQ(wordsOf(QStringLiteral("A BC")), (Words{{"A", 0}, {"BC", 2}}));
    EXPECT_EQ(wordsOf(QStringLiteral("A BC ")), (Words{{"A", 0}, {"BC", 2}}));
}

TEST(Document, LoneHyphenIsAWord)
{
    EXPECT_EQ(wordsOf(QStringLiteral("- TITLE")), (Words{{"-", 0}, {"TITLE", 2}}));
}

TEST(Document, HyphenDoesNotSplit)
{
    EXPECT_EQ(wordsOf(QStringLiteral("ABC-DEF --X-")), (Words{{"ABC-DEF", 0}, {"--X-", 8}}));
}

TEST(Document, OtherWhiteSpaceIsPartOfAWord)
{
    const QString text = QStringLiteral(u"A\fB\vC\u00a0D\u2003E\u0085F");
    EXPECT_EQ(wordsOf(text), (Words{{text.toStdString(), 0}}));
}

TEST(Document, NullCharacterIsPartOfAWord)
{
    const AdexpDoc doc(QString(u'A') + QChar() + u'B', &toOutput);
    ASSERT_EQ(doc.wordList.size(), 1u);
    EXPECT_EQ(doc.wordList.front().size, 3u);
}

TEST(Document, PositionsCountUtf16Units)
{
    EXPECT_EQ(wordsOf(QStringLiteral(u"\U0001F6E9 B")), (Words{{"\U0001F6E9", 0}, {"B", 3}}));
}

// What splitting does, one character after the other.
Words wordsByReading(const QString& text)
{
    Words words;
    QString word;
    for (int i = 0; i <= text.size(); ++i) {
        if (i < text.size() && !QStringLiteral(" \n\t").contains(text.at(i))) {
            word += text.at(i);
        } else if (!word.isEmpty()) {
            words.emplace_back(word.toStdString(), i - static_cast<int>(word.size()));
            word.clear();
        }
    }
    return words;
}

// The document looks at 64 characters at a time; words begin, end and go on at any of them.
TEST(Document, WordsAreTheSameAtAnyPlace)
{
    const QString characters = QStringLiteral(" \n\tAB-CD");
    std::mt19937 random(7);
    for (int length = 0; length <= 200; ++length) {
        for (const unsigned choice : {8u, 30u, 200u}) { // words of some, of many characters
            QString text;
            for (int i = 0; i < length; ++i)
                text += characters.at(static_cast<int>(std::min(random() % choice, 7ul)));
            const AdexpDoc doc(text, &toOutput);
            ASSERT_EQ(wordsOf(doc), wordsByReading(text)) << text.toStdString();
            for (const DocWord& word : doc.wordList)
                ASSERT_EQ(word.isField, text.at(word.beginPoint) == u'-') << text.toStdString();
        }
    }
}

TEST(Document, WordKnowsItsEnd)
{
    const AdexpDoc doc(QStringLiteral(" -TITLE IFPL"), &toOutput);
    EXPECT_EQ(doc.wordList.at(0).endPoint(), 7);
    EXPECT_EQ(doc.wordList.at(1).endPoint(), 12);
    EXPECT_TRUE(doc.wordList.at(0).isField);
    EXPECT_FALSE(doc.wordList.at(1).isField);
}

TEST(Document, StartsValidAtTheFirstWordAndWithoutRootAndHeader)
{
    const DiagnosticCapture diagnostics;
    const AdexpDoc doc(QStringLiteral("-TITLE IFPL"), &toOutput);
    EXPECT_TRUE(doc.isValid);
    EXPECT_TRUE(doc.currWordListIt == doc.wordList.cbegin());
    EXPECT_TRUE(doc.lastFieldWordListIt == doc.wordList.cbegin());
    EXPECT_EQ(doc.rootField, nullptr);
    EXPECT_EQ(doc.msgParam.title, QString());
    EXPECT_EQ(doc.msgParam.rating, QString());
    EXPECT_EQ(doc.msgParam.to, QString());
    EXPECT_EQ(doc.msgParam.datatime, QString());
    EXPECT_EQ(doc.msgParam.from, QString());
    EXPECT_TRUE(diagnostics.lines().empty());
}

} // namespace
