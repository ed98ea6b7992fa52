#include "termsimple.h"

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

bool TermSimple::check_config(const TermList*)
{
    if (ExprRuleStr.isEmpty()) {
        configErrorMessage(QObject::tr("ExprRuleStr is empty"));
        valid = false;
    }
    return valid;
}

int TermSimple::real_parse(const QChar* data)
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
