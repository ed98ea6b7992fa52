#ifndef DOCWORD_H
#define DOCWORD_H

#include <QString> // with Qt 5 the comparisons of views are declared there
#include <QStringView>

#include <memory_resource>
#include <vector>

/// A word of the message: the characters between blanks, line feeds and tabs.
///
/// Only eight bytes, without the characters themselves: in a message every second character may be
/// a word.
struct DocWord
{
    int beginPoint;           ///< position of its first character in the message
    unsigned int size : 31;   ///< its UTF-16 units, at least one
    unsigned int isField : 1; ///< it begins with a hyphen, so a field begins with it

    /// True for DocWord(), which is no word. A list that holds it is broken.
    bool isNull() const { return size == 0; }

    /// Position after the last character.
    int endPoint() const { return beginPoint + static_cast<int>(size); }

    void setEndPoint(int point) { size = static_cast<unsigned>(point - beginPoint) & 0x7fffffff; }

    /// The characters of the word, a view into @p message.
    QStringView textIn(QStringView message) const
    {
        return QStringView(message.data() + beginPoint, static_cast<int>(size));
    }
};

/// The words of a message in text order.
using WordList = std::pmr::vector<DocWord>;

/// Fills @p words (empty, not null) with the words of @p message, which is at most 2^31 - 1 UTF-16
/// units long.
void splitIntoWords(QStringView message, WordList* words);

#endif
