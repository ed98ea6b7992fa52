#ifndef EXPRESSIONWRITER_H
#define EXPRESSIONWRITER_H

#include <QString>
#include <QStringList>

#include <cstdint>
#include <random>
#include <vector>

/// Small numbers from a seed. The standard distributions differ between libraries, so none is used.
class Chance
{
public:
    explicit Chance(std::uint32_t seed) : m_engine(seed) {}

    /// A number from 0 to `count` - 1.
    int below(int count)
    {
        return static_cast<int>(m_engine() % static_cast<std::uint32_t>(count));
    }

    bool oneIn(int count) { return below(count) == 0; }

    template <typename List>
    auto pick(const List& list)
    {
        return *(list.begin() + below(static_cast<int>(list.size())));
    }

private:
    std::mt19937 m_engine;
};

/// Writes random expressions, correct ones for the most part.
class ExpressionWriter
{
public:
    explicit ExpressionWriter(Chance* chance) : m_chance(chance) {}

    QString expression(int depth)
    {
        const bool isChoice = m_chance->oneIn(3);
        const int count = 1 + m_chance->below(4);
        QString text = part(depth);
        for (int i = 1; i < count; ++i) {
            text += isChoice ? QStringLiteral(" | ") : sequenceOperator();
            text += part(depth);
        }
        return text;
    }

private:
    QString sequenceOperator()
    {
        static const QStringList operators{QStringLiteral(" "), QStringLiteral(" "),
                                           QStringLiteral("!"), QStringLiteral(" ! "),
                                           QStringLiteral("+"), QStringLiteral("  ")};
        return m_chance->oneIn(60) ? QStringLiteral("|") : m_chance->pick(operators);
    }

    QString part(int depth)
    {
        const QString inner = depth > 0 && m_chance->oneIn(3) ? expression(depth - 1) : atom();
        switch (m_chance->below(6)) {
        case 0:
            return QStringLiteral("[%1]").arg(inner);
        case 1:
        case 2:
            return minimum() + QStringLiteral("{%1}").arg(inner) + maximum();
        case 3:
            return QStringLiteral("(%1)").arg(inner);
        default:
            // Only an atom may stand without brackets: its operators are not those around it.
            return inner.contains(QChar(u' ')) || inner.contains(QChar(u'!')) ||
                           inner.contains(QChar(u'|'))
                       ? QStringLiteral("(%1)").arg(inner)
                       : inner;
        }
    }

    QString atom()
    {
        static const QStringList atoms{
            QStringLiteral("ALPHA"),     QStringLiteral("DIGIT"), QStringLiteral("ALPHANUM"),
            QStringLiteral("SEP"),       QStringLiteral("NIL"),   QStringLiteral("alpha"),
            QStringLiteral("LIM_CHAR"),  QStringLiteral("'A'"),   QStringLiteral("'AB'"),
            QStringLiteral("'1'"),       QStringLiteral("'A B'"), QStringLiteral("'-'"),
            QStringLiteral("CHARACTER"), QStringLiteral("sep"),
        };
        static const QStringList names{QStringLiteral("X"), QStringLiteral("Y"),
                                       QStringLiteral("Z"), QStringLiteral("x")};
        if (m_chance->oneIn(200))
            return QStringLiteral("UNDEFINED");
        if (m_chance->oneIn(200))
            return QStringLiteral("' '");
        return m_chance->oneIn(3) ? m_chance->pick(names) : m_chance->pick(atoms);
    }

    QString minimum()
    {
        return m_chance->oneIn(2) ? QString() : QString::number(m_chance->below(4));
    }

    QString maximum()
    {
        return m_chance->oneIn(2) ? QString() : QString::number(m_chance->below(5));
    }

    Chance* m_chance;
};

/// All texts over the alphabet with at most `longest` characters.
inline std::vector<QString> allTexts(const QString& alphabet, int longest)
{
    std::vector<QString> texts{QString()};
    std::size_t first = 0;
    for (int length = 1; length <= longest; ++length) {
        const std::size_t end = texts.size();
        for (; first < end; ++first) {
            for (const QChar character : alphabet) {
                const QString longer = texts[first] + character;
                texts.push_back(longer);
            }
        }
    }
    return texts;
}

#endif
