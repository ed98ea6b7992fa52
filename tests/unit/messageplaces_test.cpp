// Places of a message in the bytes that the caller gave, and as lines and columns.

#include "message/messageplaces.h"

#include <QString>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

namespace {

QString textOf(const std::string& bytes)
{
    return QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size())).remove(u'\r');
}

// The bytes of each unit of the text. A unit of a pair of surrogates has those of the pair.
std::vector<std::string> bytesOfUnits(const std::string& bytes)
{
    const QString text = textOf(bytes);
    const MessagePlaces places(text, bytes);
    std::vector<std::string> units;
    for (int i = 0; i < text.size(); ++i) {
        adexp_place place{};
        places.locate(i, i + 1, &place);
        units.push_back(bytes.substr(static_cast<size_t>(place.byte_begin),
                                     static_cast<size_t>(place.byte_end - place.byte_begin)));
    }
    return units;
}

using Units = std::vector<std::string>;

TEST(MessagePlaces, AreThoseOfTheUnitsInAscii)
{
    EXPECT_EQ(bytesOfUnits("-A 1"), (Units{"-", "A", " ", "1"}));
}

TEST(MessagePlaces, CountCarriageReturnsAndAByteOrderMark)
{
    EXPECT_EQ(bytesOfUnits("\xef\xbb\xbf"
                           "A\r\n\rB\r"),
              (Units{"A", "\n", "B"}));
}

TEST(MessagePlaces, AStretchEndsBehindItsLastCharacterAndNotBehindCarriageReturns)
{
    const std::string bytes = "AB\r\nC";
    const QString text = textOf(bytes);
    adexp_place place{};
    MessagePlaces(text, bytes).locate(0, 2, &place);
    EXPECT_EQ(place.byte_end, 2);
    MessagePlaces(text, bytes).locate(5 - 1, 5 - 1, &place); // behind the last unit
    EXPECT_EQ(place.byte_begin, 5);
}

TEST(MessagePlaces, OfCharactersOfSeveralBytes)
{
    EXPECT_EQ(bytesOfUnits("A\u0416\u20ac\U0001f6e9B"),
              (Units{"A", "\u0416", "\u20ac", "\U0001f6e9", "\U0001f6e9", "B"}));
}

TEST(MessagePlaces, HaveLinesAndColumnsFromOne)
{
    const std::string bytes = "A\r\n\u0416B\n";
    const QString text = textOf(bytes);
    const MessagePlaces places(text, bytes);
    const auto lineAndColumn = [&places](int unit) {
        adexp_place place{};
        places.locate(unit, unit, &place);
        return std::pair(place.line, place.column);
    };
    EXPECT_EQ(lineAndColumn(0), std::pair(1, 1));
    EXPECT_EQ(lineAndColumn(1), std::pair(1, 2)); // the line feed belongs to its line
    EXPECT_EQ(lineAndColumn(3), std::pair(2, 2));
    EXPECT_EQ(lineAndColumn(5), std::pair(3, 1));
}

// As Qt decodes them: the bytes of each unit give that unit again, and all of them in a row are the
// message without its carriage returns and its byte order mark.
TEST(MessagePlaces, OfAnyBytesAreWhereQtFoundTheCharacters)
{
    std::mt19937 random(1);
    const std::string alphabet =
        "A \r\n-\x80\xbf\xc0\xc2\xd0\x96\xe0\xa0\xe2\x82\xac\xed\x9f\xbb\xef"
        "\xf0\x90\x9f\x9b\xa9\xf4\x8f\xf5\xff";
    for (int round = 0; round < 3000; ++round) {
        std::string bytes = round % 3 == 0 ? "\xef\xbb\xbf" : "";
        for (size_t i = random() % 300; i > 0; --i)
            bytes += alphabet[random() % alphabet.size()];
        const QString text = textOf(bytes);
        const Units units = bytesOfUnits(bytes);
        std::string expected = bytes;
        if (expected.compare(0, 3, "\xef\xbb\xbf") == 0)
            expected.erase(0, 3);
        expected.erase(std::remove(expected.begin(), expected.end(), '\r'), expected.end());
        std::string row;
        for (int i = 0; i < text.size(); ++i) {
            const std::string& unit = units[static_cast<size_t>(i)];
            if (!text[i].isLowSurrogate())
                row += unit;
            ASSERT_TRUE(textOf("." + unit).contains(text[i])) << "round " << round << " unit " << i;
        }
        ASSERT_EQ(row, expected) << "round " << round;
    }
}

} // namespace
