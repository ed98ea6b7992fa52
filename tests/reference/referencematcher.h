#ifndef REFERENCEMATCHER_H
#define REFERENCEMATCHER_H

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

/*
 * =============================================================================================
 *  WARNING: THIS CODE IS DELIBERATELY NAIVE. DO NOT OPTIMISE IT. DO NOT SHARE IT.
 *
 *  This is a second, independent reading of the expression language: its compiler, its matcher,
 *  its length calculation and its dump. The tests compare the library with it over hundreds of
 *  thousands of expressions and texts.
 *
 *  It is worth something only as long as
 *    - it can be checked against the description of the language by reading it once, so it copies
 *      texts, looks names up again and again and keeps nothing between two questions;
 *    - it uses nothing of the library, and the library uses nothing of it. A helper that both
 *      share would make both wrong in the same way, and the comparison would be silent.
 * =============================================================================================
 */
namespace reference {

/// The maximum repeat count that means "no upper limit", also as a length.
constexpr int Unlimited = 0x1fffffff;

/// A repeat count that was not written.
constexpr int NotGiven = -1;

enum class Kind { Keyword, Literal, Name, Group };

enum class Bracket { None, Optional, Repeated };

/// One term of an expression, with all that stands below it.
struct Term
{
    Kind kind = Kind::Group;
    QString text; ///< keyword, literal or name; empty for a group
    Bracket bracket = Bracket::None;
    int least = NotGiven; ///< set only for repeated terms
    int most = NotGiven;
    std::vector<Term> parts; ///< terms of a group, inserted separators included
    QString operators;       ///< of a group: one '!' or '|' between any two parts
};

/// What became of an expression text.
struct Compiled
{
    std::optional<Term> term; ///< nothing if the text is not a correct expression
    QStringList messages;     ///< everything reported, in order
};

/// Compiles the text of a named definition: an expression of one term is that term itself.
Compiled compile(const QString& expression);

/// Named definitions, and everything that can be asked of a term which refers to them.
class Grammar
{
public:
    /// Adds a definition. A text that does not compile is left out; the first of a name wins.
    void define(const QString& name, const QString& expression);

    /**
     * True if every name below the term is defined, no literal is empty and no definition leads
     * back to itself. `ownName` is the name under which the term itself is being defined.
     */
    bool isSound(const Term& term, const QString& ownName) const;

    /// Number of UTF-16 units the term takes at the start of the text, 0 for no match.
    int matchedLength(const Term& term, const QString& text) const;

    /// The most characters that the term can cover, by the rules of the length calculation.
    qint64 longestLength(const Term& term, bool withRepeat) const;

    /// The dump; names that are not defined here show as not found.
    QString dump(const Term& term, bool topLevel) const;

private:
    struct Definition
    {
        QString name;
        Term term;
    };

    const Term* find(const QString& name) const;
    bool isSoundBelow(const Term& term, const QStringList& namesAbove) const;
    int match(const Term& term, const QString& text) const;
    int matchOnce(const Term& term, const QString& text) const;
    int matchChoice(const Term& group, const QString& text) const;
    int matchSequence(const Term& group, const QString& text) const;
    QString dumpGroup(const Term& group, bool topLevel) const;

    std::vector<Definition> m_definitions;
};

} // namespace reference

#endif
