#ifndef TEXTPLACES_H
#define TEXTPLACES_H

#include <QStringView>

#include <vector>

/// Places in the text of a message. Positions count UTF-16 units from 0, as those of fields and
/// findings do.
class TextPlaces
{
public:
    /// A place as editors show it.
    struct Place
    {
        int line;   ///< from 1
        int column; ///< in UTF-16 units, from 1
    };

    /// Places in @p text, which must outlive this object. At most 2^31 - 1 UTF-16 units.
    explicit TextPlaces(QStringView text);

    /// The number of UTF-16 units of the text.
    int size() const { return static_cast<int>(m_text.size()); }

    /// @p position moved into the text, and to the front of the character if it lies inside one.
    int characterBegin(int position) const;

    /// Position behind the word that @p position, which lies in the text, is in.
    int wordEnd(int position) const;

    /// Position of the word behind @p position, or behind the text.
    int nextWord(int position) const;

    /// Position of the word before @p position, or 0.
    int previousWord(int position) const;

    /// The text from @p begin to @p end.
    QStringView text(int begin, int end) const { return m_text.mid(begin, end - begin); }

    /// Line and column of @p position, which lies in the text.
    Place placeOf(int position) const;

private:
    QStringView m_text;
    std::vector<int> m_lineBegins;
};

#endif
