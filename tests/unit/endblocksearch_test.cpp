#include "message/adexpdoc.h"

#include "support/diagnosticcapture.h"
#include "support/tooutput.h"

#include <gtest/gtest.h>

#include <random>

namespace {

// What the look ahead for the end of a block is: reading field after field. The document finds it
// by an index instead, with the same answers and the same reports.
int searchEndBlockByReading(AdexpDoc* doc, const QString& name, int limit, int* endWordPoint)
{
    const auto lastField = doc->lastFieldWordListIt;
    const auto current = doc->currWordListIt;
    int endPoint = -1;
    while (doc->currWordListIt != doc->wordList.cend()) {
        doc->setIteratorToNextField(0, 0);
        const QStringView field = doc->getNextField(limit, nullptr);
        if (field.isEmpty())
            break;
        if (field != u"-END")
            continue;
        const auto endWord = doc->lastFieldWordListIt;
        int namePoint = 0;
        const QStringView word = doc->getNextWord(limit, &namePoint);
        if (word.isEmpty())
            break;
        if (word == name) {
            endPoint = namePoint + static_cast<int>(word.size());
            *endWordPoint = endWord->beginPoint;
            break;
        }
    }
    doc->lastFieldWordListIt = lastField;
    doc->currWordListIt = current;
    return endPoint;
}

struct Answer
{
    int endPoint;
    int endWordPoint;
    size_t reports;

    bool operator==(const Answer& other) const
    {
        return endPoint == other.endPoint && endWordPoint == other.endWordPoint &&
               reports == other.reports;
    }
};

// Compares both searches from every word, for every name, with limits at and beside every word.
void compareSearches(const QString& text)
{
    AdexpDoc doc(text, &toOutput);
    for (auto cursor = doc.wordList.cbegin(); cursor != doc.wordList.cend(); ++cursor) {
        doc.currWordListIt = doc.lastFieldWordListIt = cursor;
        for (const char* name : {"A", "-END", "-", "END", "-A", "X"}) {
            for (int limit = 0; limit <= text.size(); ++limit) {
                Answer expected{-1, -7, 0};
                Answer found = expected;
                {
                    DiagnosticCapture capture;
                    expected.endPoint = searchEndBlockByReading(&doc, QLatin1String(name), limit,
                                                                &expected.endWordPoint);
                    expected.reports = capture.lines().size();
                }
                {
                    DiagnosticCapture capture;
                    found.endPoint = doc.searchEndBlock(QString(QLatin1String(name)), limit,
                                                        &found.endWordPoint);
                    found.reports = capture.lines().size();
                }
                ASSERT_TRUE(expected == found)
                    << text.toStdString() << " from word " << (cursor - doc.wordList.cbegin())
                    << " name " << name << " limit " << limit << ": " << expected.endPoint << '/'
                    << found.endPoint << ", " << expected.endWordPoint << '/' << found.endWordPoint
                    << ", " << expected.reports << '/' << found.reports;
                ASSERT_TRUE(doc.currWordListIt == cursor && doc.lastFieldWordListIt == cursor);
            }
        }
    }
}

TEST(EndBlockSearch, findsWhatReadingFindsOverRandomWords)
{
    const QStringList words{QStringLiteral("-END"), QStringLiteral("-"),  QStringLiteral("END"),
                            QStringLiteral("A"),    QStringLiteral("-A"), QStringLiteral("-END")};
    std::mt19937 random(20);
    for (int round = 0; round < 400; ++round) {
        QStringList text;
        for (unsigned i = 0, count = 1 + static_cast<unsigned>(random() % 9); i < count; ++i)
            text.append(words.at(static_cast<int>(random() % 6)));
        compareSearches(text.join(QLatin1Char(' ')));
    }
}

TEST(EndBlockSearch, anEndThatIsTheNameOfAnEndIsNotReadAsOne)
{
    compareSearches(QStringLiteral("-END -END A -END -END -END A - END - END A - - -END -END -A"));
}

} // namespace
