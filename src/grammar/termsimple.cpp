#include "grammar/termsimple.h"

#include <QObject>

TermSimple::TermSimple(const ConfigInfo* record) : TermStd(record)
{
    ExprRuleStr = record->ruleText.simplified();
    valid = true;
    firstChars = FirstChars();
    if (!ExprRuleStr.isEmpty())
        firstChars.add(ExprRuleStr.at(0).unicode());
}

int TermSimple::type() const
{
    return TermTypeSimple;
}

int TermSimple::calculateOfLengthData(bool) const
{
    return lengthTimesMaxRepeat(static_cast<int>(ExprRuleStr.size()));
}

bool TermSimple::check(Check* check)
{
    if (ExprRuleStr.isEmpty()) {
        configErrorMessage(ADEXP_CODE_EMPTY_LITERAL, QObject::tr("ExprRuleStr is empty"),
                           check->reporter);
        valid = false;
    }
    return valid;
}

int TermSimple::matchOnce(const QChar* data, Match*) const
{
    // Never past the null at the end of the data, even if a rule file has put a null into the
    // literal.
    const QChar* const literal = ExprRuleStr.constData();
    const auto length = static_cast<int>(ExprRuleStr.size());
    for (int i = 0; i < length; ++i) {
        if (literal[i] != data[i] || data[i].isNull())
            return 0;
    }
    return length;
}
