#include "termtext.h"

#include "grammar/termstd.h"

namespace {

QString countText(int count, int unwritten)
{
    return count == unwritten ? QString() : QString::number(count);
}

QString shortened(const QString& text)
{
    constexpr int Longest = 40;
    return text.size() <= Longest ? text : text.left(Longest) + QLatin1String("...");
}

} // namespace

QString inBracketsOf(const TermStd* term, const QString& text)
{
    switch (term->bracketType) {
    case BracketRepeat:
        return countText(term->minRepeat, 0) + u'{' + text + u'}' +
               countText(term->maxRepeat, RepeatNoLimit);
    case BracketOptional:
        return u'[' + text + u']';
    default:
        return text;
    }
}

QString termText(const TermStd* term)
{
    switch (term->type()) {
    case TermTypeSimple:
        return inBracketsOf(term, u'\'' + term->ExprRuleStr + u'\'');
    case TermTypeSep:
        return QStringLiteral("SEP"); // also of an inserted one
    case TermTypeExpression:
    case TermTypeMsgRule: {
        const QString text = shortened(term->ExprRuleStr);
        return term->bracketType == BracketNone ? u'(' + text + u')' : inBracketsOf(term, text);
    }
    default:
        return inBracketsOf(term, term->ExprRuleStr);
    }
}
