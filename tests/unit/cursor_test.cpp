// The cursor over the words of a message.

#include "message/adexpdoc.h"

#include "support/diagnosticcapture.h"
#include "support/reports.h"
#include "support/tooutput.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr int Far = 1000; // a limit behind all texts of these tests

std::string text(QStringView view)
{
    return view.toString().toStdString();
}

// The report of a broken invariant.
Lines critical(const std::string& signature, const std::string& condition)
{
    return {"severity 2: " + signature + " " + condition + " "};
}

// A document with its reports.
struct Cursor
{
    explicit Cursor(const QString& message) : doc(message, &toOutput) {}

    // The index of the word at the cursor.
    int index() const { return static_cast<int>(doc.currWordListIt - doc.wordList.cbegin()); }

    void moveTo(int wordIndex) { doc.currWordListIt = doc.wordList.cbegin() + wordIndex; }

    bool atEnd() const { return doc.currWordListIt == doc.wordList.cend(); }

    // Breaks the invariant that no word is null.
    void removeWord(int wordIndex)
    {
        const int current = index();
        doc.wordList[static_cast<size_t>(wordIndex)] = DocWord();
        moveTo(current);
        doc.lastFieldWordListIt = doc.wordList.cbegin();
    }

    Lines reports() const { return linesOf(diagnostics); }

    DiagnosticCapture diagnostics;
    AdexpDoc doc;
};

TEST(Cursor, WalksFieldsAndTheirData)
{
    Cursor c(QStringLiteral("-TITLE IFPL -ARCID ABC"));
    int pos = -1;
    EXPECT_EQ(text(c.doc.getNextField(22, &pos)), "-TITLE");
    EXPECT_EQ(pos, 0);
    EXPECT_EQ(text(c.doc.getNextWord(22, &pos)), "IFPL");
    EXPECT_EQ(pos, 7);
    EXPECT_EQ(text(c.doc.getNextField(22, &pos)), "-ARCID");
    EXPECT_EQ(pos, 12);
    EXPECT_EQ(text(c.doc.getTextFromCurrentToField(22)), "ABC");
    EXPECT_TRUE(c.atEnd());
    EXPECT_EQ(c.reports(), Lines());
}

// getNextWord

TEST(CursorNextWord, IsDeliveredIfItBeginsAtTheLimit)
{
    Cursor c(QStringLiteral("AB CD"));
    int pos = -1;
    EXPECT_EQ(text(c.doc.getNextWord(0, &pos)), "AB");
    EXPECT_EQ(pos, 0);
    EXPECT_TRUE(c.doc.getNextWord(2, &pos).isNull());
    EXPECT_EQ(pos, 0);
    EXPECT_EQ(c.index(), 1);
    EXPECT_EQ(text(c.doc.getNextWord(3, &pos)), "CD");
    EXPECT_EQ(pos, 3);
}

TEST(CursorNextWord, IsNullAtTheEnd)
{
    Cursor c(QStringLiteral("A"));
    c.doc.getNextWord(Far, nullptr);
    EXPECT_TRUE(c.doc.getNextWord(Far, nullptr).isNull());
    EXPECT_TRUE(c.atEnd());
    EXPECT_TRUE(Cursor(QString()).doc.getNextWord(Far, nullptr).isNull());
}

TEST(CursorNextWord, NeedsNoPlaceForThePosition)
{
    Cursor c(QStringLiteral(" -A"));
    EXPECT_EQ(text(c.doc.getNextWord(Far, nullptr)), "-A");
}

TEST(CursorNextWord, ReportsANullWord)
{
    Cursor c(QStringLiteral("A B"));
    c.removeWord(0);
    EXPECT_TRUE(c.doc.getNextWord(Far, nullptr).isNull());
    EXPECT_EQ(c.reports(), critical("QString AdexpDoc::getNextWord(int, int*)", "dw == 0"));
}

// undoGetNextWord

TEST(CursorUndo, StepsBackOneWord)
{
    Cursor c(QStringLiteral("A B C"));
    c.moveTo(3);
    c.doc.undoGetNextWord();
    EXPECT_EQ(c.index(), 2);
    EXPECT_EQ(text(c.doc.getNextWord(Far, nullptr)), "C");
    EXPECT_EQ(c.reports(), Lines());
}

TEST(CursorUndo, AtTheFirstWordIsReported)
{
    Cursor c(QStringLiteral("A B"));
    c.doc.undoGetNextWord();
    EXPECT_EQ(c.index(), 0);
    EXPECT_EQ(c.reports(), critical("void AdexpDoc::undoGetNextWord()",
                                    "currWordListIt == wordList.constBegin()"));
}

// getNextField

TEST(CursorNextField, ReportsEachWordBeforeIt)
{
    Cursor c(QStringLiteral("A B-C -X"));
    int pos = -1;
    EXPECT_EQ(text(c.doc.getNextField(Far, &pos)), "-X");
    EXPECT_EQ(pos, 6);
    EXPECT_EQ(c.reports(), (Lines{"\"ignore word\" \"A\" ", "\"ignore word\" \"B-C\" "}));
    EXPECT_FALSE(c.doc.isValid);
    EXPECT_TRUE(c.doc.lastFieldWordListIt == c.doc.wordList.cbegin() + 2);
}

TEST(CursorNextField, IsDeliveredIfItBeginsAtTheLimit)
{
    Cursor c(QStringLiteral("A -X"));
    EXPECT_TRUE(c.doc.getNextField(1, nullptr).isNull());
    EXPECT_EQ(c.index(), 1); // the word before was passed over
    EXPECT_EQ(text(c.doc.getNextField(2, nullptr)), "-X");
}

TEST(CursorNextField, BehindTheLimitMovesNothing)
{
    Cursor c(QStringLiteral("A -B"));
    c.moveTo(1);
    EXPECT_TRUE(c.doc.getNextField(1, nullptr).isNull());
    EXPECT_EQ(c.index(), 1);
    EXPECT_TRUE(c.doc.lastFieldWordListIt == c.doc.wordList.cbegin());
}

TEST(CursorNextField, IsNullWithoutFieldWord)
{
    Cursor c(QStringLiteral("A B"));
    EXPECT_TRUE(c.doc.getNextField(Far, nullptr).isNull());
    EXPECT_TRUE(c.atEnd());
    EXPECT_EQ(c.reports(), (Lines{"\"ignore word\" \"A\" ", "\"ignore word\" \"B\" "}));
}

TEST(CursorNextField, JoinsALoneHyphenWithItsKeyword)
{
    Cursor c(QStringLiteral("- \n TITLE IFPL"));
    int pos = -1;
    EXPECT_EQ(text(c.doc.getNextField(Far, &pos)), "-TITLE");
    EXPECT_EQ(pos, 4);
    EXPECT_EQ(c.index(), 2);
    EXPECT_TRUE(c.doc.lastFieldWordListIt == c.doc.wordList.cbegin());
    EXPECT_EQ(c.reports(), Lines());
}

TEST(CursorNextField, LoneHyphenBeforeAFieldIsReported)
{
    Cursor c(QStringLiteral("- -ARCID"));
    int pos = -1;
    EXPECT_EQ(text(c.doc.getNextField(Far, &pos)), "-ARCID");
    EXPECT_EQ(pos, 2);
    EXPECT_EQ(c.reports(), (Lines{"\"field consists of a single character\" "}));
}

TEST(CursorNextField, OfSeveralLoneHyphensTheLastIsJoined)
{
    Cursor c(QStringLiteral("- - - X"));
    int pos = -1;
    EXPECT_EQ(text(c.doc.getNextField(Far, &pos)), "-X");
    EXPECT_EQ(pos, 6);
    EXPECT_EQ(c.reports(), (Lines{"\"field consists of a single character\" ",
                                  "\"field consists of a single character\" "}));
}

TEST(CursorNextField, LoneHyphenAtTheEndIsPassedSilently)
{
    Cursor c(QStringLiteral("-"));
    EXPECT_TRUE(c.doc.getNextField(Far, nullptr).isNull());
    EXPECT_TRUE(c.atEnd());
    EXPECT_EQ(c.reports(), Lines());
}

TEST(CursorNextField, LoneHyphenStaysIfItsKeywordIsBehindTheLimit)
{
    Cursor c(QStringLiteral("A - X"));
    c.moveTo(1);
    EXPECT_TRUE(c.doc.getNextField(3, nullptr).isNull());
    EXPECT_EQ(c.index(), 1);
    EXPECT_EQ(text(c.doc.getNextField(4, nullptr)), "-X");
    EXPECT_EQ(c.reports(), Lines());
}

TEST(CursorNextField, JoinedKeywordsStayReadable)
{
    Cursor c(QStringLiteral("- A - B"));
    const QStringView first = c.doc.getNextField(Far, nullptr);
    const QStringView second = c.doc.getNextField(Far, nullptr);
    EXPECT_EQ(text(first), "-A");
    EXPECT_EQ(text(second), "-B");
}

TEST(CursorNextField, ReportsANullWord)
{
    Cursor c(QStringLiteral("A B"));
    c.removeWord(0);
    EXPECT_TRUE(c.doc.getNextField(Far, nullptr).isNull());
    EXPECT_EQ(c.reports(), critical("QString AdexpDoc::getNextField(int, int*)", "dw == 0"));
}

TEST(CursorNextField, ReportsANullWordBehindALoneHyphen)
{
    Cursor c(QStringLiteral("- B"));
    c.removeWord(1);
    EXPECT_TRUE(c.doc.getNextField(Far, nullptr).isNull());
    EXPECT_EQ(c.reports(), critical("QString AdexpDoc::getNextField(int, int*)", "dw == 0"));
}

// setIteratorToNextField

TEST(CursorToNextField, StaysOnAFieldWordAtTheStart)
{
    Cursor c(QStringLiteral("-A B -C"));
    EXPECT_EQ(c.doc.setIteratorToNextField(0, 0), 0);
    EXPECT_EQ(c.index(), 0);
}

TEST(CursorToNextField, TakesFieldWordsBeforeTheStartAsData)
{
    Cursor c(QStringLiteral("-A B -C -D"));
    EXPECT_EQ(c.doc.setIteratorToNextField(5, 0), 5);
    EXPECT_EQ(c.index(), 2);
    EXPECT_EQ(c.doc.setIteratorToNextField(6, 0), 8);
    EXPECT_EQ(c.index(), 3);
}

TEST(CursorToNextField, StopsAtTheWordThatCrossesTheEnd)
{
    Cursor c(QStringLiteral("AB CD EF"));
    EXPECT_EQ(c.doc.setIteratorToNextField(0, 4), 4);
    EXPECT_EQ(c.index(), 1);
}

TEST(CursorToNextField, WordThatEndsAtTheEndIsPassed)
{
    Cursor c(QStringLiteral("AB CD EF"));
    EXPECT_EQ(c.doc.setIteratorToNextField(0, 5), 5);
    EXPECT_EQ(c.index(), 2);
}

TEST(CursorToNextField, FieldWordBeforeTheStartMayCrossTheEnd)
{
    Cursor c(QStringLiteral("-AB CD"));
    EXPECT_EQ(c.doc.setIteratorToNextField(Far, 1), 1);
    EXPECT_EQ(c.index(), 0);
}

TEST(CursorToNextField, EndOfZeroOrLessIsNone)
{
    for (const int end : {0, -1}) {
        Cursor c(QStringLiteral("AB CD "));
        EXPECT_EQ(c.doc.setIteratorToNextField(0, end), 6);
        EXPECT_TRUE(c.atEnd());
    }
}

TEST(CursorToNextField, BehindTheLastWordReturnsTheEndOrThatOfTheText)
{
    for (const auto& [end, expected] :
         {std::pair{-1, 6}, {0, 6}, {1, 1}, {5, 5}, {6, 6}, {7, 6}, {Far, 6}}) {
        Cursor c(QStringLiteral("AB CD "));
        c.moveTo(2);
        EXPECT_EQ(c.doc.setIteratorToNextField(0, end), expected) << end;
        EXPECT_TRUE(c.atEnd());
    }
}

TEST(CursorToNextField, ANullWordIsReportedAndLikeTheEnd)
{
    Cursor c(QStringLiteral("A B C"));
    c.removeWord(1);
    EXPECT_EQ(c.doc.setIteratorToNextField(0, 0), 5);
    EXPECT_EQ(c.reports(), critical("int AdexpDoc::setIteratorToNextField(int, int)", "dw == 0"));
}

// getTextFromCurrentToPoint, getTextFromCurrentToField

TEST(CursorText, RunsToTheNextFieldWordAndIsTrimmed)
{
    Cursor c(QStringLiteral("A  B \n -C"));
    EXPECT_EQ(text(c.doc.getTextFromCurrentToField(Far)), "A  B");
    EXPECT_EQ(c.index(), 2);
}

TEST(CursorText, KeepsLineFeedsInside)
{
    Cursor c(QStringLiteral("N0450F350 DCT\nABC\n"));
    EXPECT_EQ(text(c.doc.getTextFromCurrentToField(Far)), "N0450F350 DCT\nABC");
}

TEST(CursorText, IsTrimmedOfAllWhiteSpace)
{
    Cursor c(QStringLiteral(u"\u00a0\fA\u00a0B\u2003 -C"));
    EXPECT_EQ(text(c.doc.getTextFromCurrentToField(Far)), "A\u00a0B");
}

TEST(CursorText, OfOtherWhiteSpaceThanPartsWordsIsEmpty)
{
    Cursor c(QStringLiteral(u"\f \u2003 -C"));
    const QStringView nothing = c.doc.getTextFromCurrentToField(Far);
    EXPECT_TRUE(nothing.isEmpty());
    EXPECT_EQ(c.index(), 2);
}

TEST(CursorText, IsEmptyOnAFieldWordAtTheStart)
{
    Cursor c(QStringLiteral("A -B C"));
    c.moveTo(1);
    EXPECT_TRUE(c.doc.getTextFromCurrentToPoint(2, 0).isEmpty());
    EXPECT_EQ(c.index(), 1);
    EXPECT_TRUE(c.doc.getTextFromCurrentToField(Far).isEmpty());
    EXPECT_EQ(c.index(), 1);
}

TEST(CursorText, TakesFieldWordsBeforeTheStart)
{
    Cursor c(QStringLiteral("-A -B -C"));
    EXPECT_EQ(text(c.doc.getTextFromCurrentToPoint(6, 8)), "-A -B");
    EXPECT_EQ(c.index(), 2);
}

TEST(CursorText, IsCutAtTheEnd)
{
    Cursor c(QStringLiteral("ABCD EF"));
    EXPECT_EQ(text(c.doc.getTextFromCurrentToField(3)), "ABC");
    EXPECT_EQ(c.index(), 0);
}

TEST(CursorText, IsEmptyBehindTheLastWord)
{
    Cursor c(QStringLiteral("A"));
    c.moveTo(1);
    EXPECT_TRUE(c.doc.getTextFromCurrentToField(Far).isNull());
    EXPECT_TRUE(c.doc.getTextFromCurrentToPoint(0, 0).isNull());
}

TEST(CursorText, ReportsANullWord)
{
    Cursor c(QStringLiteral("A B"));
    c.removeWord(0);
    EXPECT_TRUE(c.doc.getTextFromCurrentToPoint(0, 0).isNull());
    EXPECT_EQ(c.reports(),
              critical("QString AdexpDoc::getTextFromCurrentToPoint(int, int)", "dw == 0"));
}

TEST(CursorText, RunsToTheEndWhenALaterWordIsNull)
{
    Cursor c(QStringLiteral("A B C"));
    c.removeWord(1);
    EXPECT_EQ(text(c.doc.getTextFromCurrentToField(0)), "A B C");
    EXPECT_EQ(c.reports(), critical("int AdexpDoc::setIteratorToNextField(int, int)", "dw == 0"));
}

// ignoreTextFromCurrentToPoint

TEST(CursorIgnore, MovesToTheFieldWordAtOrBehindThePoint)
{
    Cursor c(QStringLiteral("-A B -C D -E"));
    c.doc.ignoreTextFromCurrentToPoint(5);
    EXPECT_EQ(c.index(), 2);
    c.doc.ignoreTextFromCurrentToPoint(9);
    EXPECT_EQ(c.index(), 4);
    EXPECT_EQ(c.reports(), Lines());
}

TEST(CursorIgnore, MovesToTheWordThatCrossesThePoint)
{
    Cursor c(QStringLiteral("-A BCD E"));
    c.doc.ignoreTextFromCurrentToPoint(4);
    EXPECT_EQ(c.index(), 1);
}

TEST(CursorIgnore, AtTheEndDoesNothing)
{
    Cursor c(QStringLiteral("A"));
    c.moveTo(1);
    c.doc.ignoreTextFromCurrentToPoint(0);
    EXPECT_TRUE(c.atEnd());
    EXPECT_EQ(c.reports(), Lines());
}

TEST(CursorIgnore, ReportsANullWordAndDoesNothing)
{
    Cursor c(QStringLiteral("A B"));
    c.removeWord(0);
    c.doc.ignoreTextFromCurrentToPoint(Far);
    EXPECT_EQ(c.index(), 0);
    EXPECT_EQ(c.reports(), critical("void AdexpDoc::ignoreTextFromCurrentToPoint(int)", "dw == 0"));
}

// getLastDWTextEndPoint

TEST(CursorLastEnd, IsMinusOneBeforeAnyRead)
{
    EXPECT_EQ(Cursor(QStringLiteral("A")).doc.getLastDWTextEndPoint(), -1);
    EXPECT_EQ(Cursor(QString()).doc.getLastDWTextEndPoint(), -1);
}

TEST(CursorLastEnd, IsThatOfTheWordBeforeTheCursor)
{
    Cursor c(QStringLiteral(" AB  CDE "));
    c.moveTo(1);
    EXPECT_EQ(c.doc.getLastDWTextEndPoint(), 3);
    c.moveTo(2);
    EXPECT_EQ(c.doc.getLastDWTextEndPoint(), 8);
}

TEST(CursorLastEnd, ReportsANullWord)
{
    Cursor c(QStringLiteral("A B"));
    c.removeWord(0);
    c.moveTo(1);
    EXPECT_EQ(c.doc.getLastDWTextEndPoint(), -1);
    EXPECT_EQ(c.reports(), critical("int AdexpDoc::getLastDWTextEndPoint() const", "dw == 0"));
}

// searchEndBlock

// The search from word `wordIndex` on, which must leave the cursor alone.
struct Found
{
    int end;
    int endWord;
    Lines reports;
};

Found searchEnd(const QString& message, int wordIndex, QStringView name, int limit = Far)
{
    Cursor c(message);
    c.moveTo(wordIndex);
    c.doc.lastFieldWordListIt = c.doc.wordList.cbegin();
    Found found{0, -7, {}};
    found.end = c.doc.searchEndBlock(name, limit, &found.endWord);
    EXPECT_EQ(c.index(), wordIndex);
    EXPECT_TRUE(c.doc.lastFieldWordListIt == c.doc.wordList.cbegin());
    found.reports = c.reports();
    return found;
}

TEST(CursorSearchEnd, FindsEndAndName)
{
    const Found found = searchEnd(QStringLiteral("-BEGIN ADDR -FAC X -END ADDR -A"), 2, u"ADDR");
    EXPECT_EQ(found.end, 28);
    EXPECT_EQ(found.endWord, 19);
    EXPECT_EQ(found.reports, Lines());
}

TEST(CursorSearchEnd, NeedsNoPlaceForTheEndWord)
{
    Cursor c(QStringLiteral("-END A"));
    EXPECT_EQ(c.doc.searchEndBlock(u"A", Far, nullptr), 6);
    EXPECT_EQ(c.index(), 0);
}

TEST(CursorSearchEnd, WithoutTheNameIsMinusOne)
{
    const Found found = searchEnd(QStringLiteral("-FAC X -END OTHER -END addr ADDR"), 0, u"ADDR");
    EXPECT_EQ(found.end, -1);
    EXPECT_EQ(found.endWord, -7);
    EXPECT_EQ(found.reports, Lines());
}

TEST(CursorSearchEnd, AtTheEndIsMinusOne)
{
    EXPECT_EQ(searchEnd(QStringLiteral("-END A"), 2, u"A").end, -1);
    EXPECT_EQ(searchEnd(QStringLiteral("-END"), 0, u"A").end, -1);
    EXPECT_EQ(searchEnd(QStringLiteral("-end A"), 0, u"A").end, -1);
}

TEST(CursorSearchEnd, TakesTheFirstWithTheName)
{
    const Found found =
        searchEnd(QStringLiteral("-BEGIN A -END B -BEGIN A -END A -END A"), 2, u"A");
    EXPECT_EQ(found.end, 31);
    EXPECT_EQ(found.endWord, 25);
}

TEST(CursorSearchEnd, WordBehindEndIsItsNameWhateverItIs)
{
    const Found found = searchEnd(QStringLiteral("-END -END A -END A"), 0, u"A");
    EXPECT_EQ(found.end, 18);
    EXPECT_EQ(found.endWord, 12);
    EXPECT_EQ(searchEnd(QStringLiteral("-END -END"), 0, u"-END").end, 9);
}

TEST(CursorSearchEnd, JoinsALoneHyphenAndTakesItsPosition)
{
    const Found found = searchEnd(QStringLiteral("-FAC X - END A"), 0, u"A");
    EXPECT_EQ(found.end, 14);
    EXPECT_EQ(found.endWord, 7);
}

TEST(CursorSearchEnd, EndsAtTheLimit)
{
    const QString message = QStringLiteral("-FAC X -END A");
    EXPECT_EQ(searchEnd(message, 0, u"A", 12).end, 13);
    EXPECT_EQ(searchEnd(message, 0, u"A", 11).end, -1); // before the name
    EXPECT_EQ(searchEnd(message, 0, u"A", 6).end, -1);  // before "-END"
}

TEST(CursorSearchEnd, PassesDataSilentlyAndReportsLoneHyphens)
{
    const Found found = searchEnd(QStringLiteral("X -FAC Y Z - -END A"), 0, u"A");
    EXPECT_EQ(found.end, 19);
    EXPECT_EQ(found.reports, (Lines{"\"field consists of a single character\" "}));
}

TEST(CursorSearchEnd, StopsAtANullWord)
{
    Cursor c(QStringLiteral("-A -END A"));
    c.removeWord(0);
    EXPECT_EQ(c.doc.searchEndBlock(u"A", Far, nullptr), -1);
    EXPECT_EQ(c.index(), 0);
    EXPECT_EQ(c.reports(),
              (Lines{"severity 2: int AdexpDoc::setIteratorToNextField(int, int) dw == 0 ",
                     "severity 2: QString AdexpDoc::getNextField(int, int*) dw == 0 "}));
}

} // namespace
