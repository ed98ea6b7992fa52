#include "termtree.h"

#include "grammar/termexpression.h"
#include "termfacts.h"
#include "termtext.h"

namespace {

QString number(int count)
{
    return QString::number(count);
}

// ", 2 to 7 times"; empty for what is there once.
QString countWords(const TermStd* term)
{
    if (term->bracketType == BracketOptional)
        return QStringLiteral(", optional");
    if (term->bracketType != BracketRepeat)
        return {};
    const int min = term->minRepeat;
    const int max = term->maxRepeat;
    if (max == RepeatNoLimit)
        return min == 0 ? QStringLiteral(", any number of times")
                        : QLatin1String(", at least ") + number(min) +
                              (min == 1 ? QLatin1String(" time") : QLatin1String(" times"));
    const QLatin1String times(max == 1 ? " time" : " times");
    if (min == max)
        return QLatin1String(", ") + number(max) + times;
    if (min == 0)
        return QLatin1String(", up to ") + number(max) + times;
    return QLatin1String(", ") + number(min) + QLatin1String(" to ") + number(max) + times;
}

QString nodeText(const TermStd* term)
{
    switch (term->type()) {
    case TermTypeExpression:
    case TermTypeMsgRule: {
        const bool choice = isChoice(asExpression(term));
        return choice ? QStringLiteral("one of") : QStringLiteral("in sequence");
    }
    case TermTypeSimple:
        return u'\'' + term->ExprRuleStr + u'\'';
    case TermTypeSep:
        return QStringLiteral("SEP");
    default:
        return term->ExprRuleStr;
    }
}

// Brackets are bounded by the compiler, so this recursion is.
void addNode(const TermStd* term, const QString& indent, const QString& branch, QString* tree)
{
    *tree += indent + branch + nodeText(term) + countWords(term) + u'\n';
    const TermExpression* const expression = asExpression(term);
    if (!expression)
        return;
    const QString below =
        branch.isEmpty()
            ? indent
            : indent + (branch.startsWith(u'`') ? QLatin1String("   ") : QLatin1String("|  "));
    for (const TermStd* part : expression->ExprList)
        addNode(part, below,
                part == expression->ExprList.last() ? QStringLiteral("`- ") : QStringLiteral("|- "),
                tree);
}

} // namespace

QString termTree(const TermStd* term)
{
    QString tree;
    addNode(term, {}, {}, &tree);
    return tree;
}
