#ifndef CHARSET_H
#define CHARSET_H

#include <QString>

#include <set>

/// A set of characters: whole classes (CharClass::Bit) and single ones.
class CharSet
{
public:
    /// No character.
    CharSet() = default;

    /// The characters of the classes @p classes.
    static CharSet ofClasses(unsigned classes);

    /// The characters of @p text.
    static CharSet ofText(const QString& text);

    bool isEmpty() const { return m_classes == 0 && m_chars.empty(); }

    bool contains(QChar c) const;

    /// True only if every character of @p other is in this set. A class is looked for as a whole:
    /// of the ten characters that make up a class one by one it is not known that they do.
    bool contains(const CharSet& other) const;

    void add(const CharSet& other);

    /// The characters in both, as far as whole classes and single characters tell.
    CharSet intersected(const CharSet& other) const;

private:
    unsigned m_classes = 0;
    std::set<QChar> m_chars;
};

#endif
