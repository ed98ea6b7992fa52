#include "grammar/termstd.h"

#include "grammar/charclass.h"
#include "report/linereporter.h"

#include <QObject>

using CharClass::isAny;

namespace {

constexpr unsigned LimCharBits =
    CharClass::Upper | CharClass::Digit | CharClass::Space | CharClass::Special;

// The classes of a standard term that matches one character; 0 for every other term.
constexpr unsigned oneCharacterBits(int stdType)
{
    switch (stdType) {
    case TermTypeCharacter:
        return LimCharBits | CharClass::Hyphen;
    case TermTypeAlphanum:
        return CharClass::Upper | CharClass::Digit;
    case TermTypeAlpha:
        return CharClass::Upper;
    case TermTypeDigit:
        return CharClass::Digit;
    case TermTypeLimChar:
        return LimCharBits;
    default:
        return 0;
    }
}

// The length of the run of characters of these classes at `data`, at most `max`.
int runLength(const QChar* data, unsigned bits, int max)
{
    int length = 0;
    while (length < max && isAny(data[length], bits))
        ++length;
    return length;
}

} // namespace

TermStd::TermStd(int kind, const ConfigInfo* record)
    : stdType(kind), valid(true), config(*record), ExprRuleStr(record->ruleText)
{
    if (const unsigned bits = oneCharacterBits(stdType))
        firstChars = FirstChars::ofClasses(bits);
    else if (isSeparator())
        firstChars = FirstChars::ofClasses(CharClass::Space);
}

TermStd::TermStd(const ConfigInfo* record) : config(*record) {}

int TermStd::type() const
{
    return stdType;
}

int TermStd::calculateOfLengthData(bool withRepeat) const
{
    if (withRepeat && bracketType == BracketRepeat)
        return maxRepeat > 0 ? maxRepeat : 1;
    return 1;
}

int TermStd::lengthTimesMaxRepeat(int length) const
{
    if (bracketType != BracketRepeat || maxRepeat <= 0)
        return length;
    // In 64 bits, cut to 32: an overflow has a defined result.
    return maxRepeat == RepeatNoLimit ? RepeatNoLimit
                                      : static_cast<int>(static_cast<qint64>(length) * maxRepeat);
}

bool TermStd::check_config(const TermList* termsList, Reporter* reporter)
{
    Check own{termsList, reporter};
    return check(&own);
}

bool TermStd::check(Check*)
{
    return valid;
}

void TermStd::settle(Reporter* reporter)
{
    if (valid) // references of the others may be unresolved
        m_fieldKind = findFieldKind(reporter);
}

bool TermStd::isCharacterNoLimit(Reporter*) const
{
    return bracketType == BracketRepeat && stdType == TermTypeCharacter &&
           maxRepeat == RepeatNoLimit;
}

const TermStd* TermStd::search_TermField(QStringView) const
{
    return nullptr;
}

bool TermStd::isContainsField() const
{
    return containsField;
}

void TermStd::setCompoundField()
{
    compoundField = false;
}

bool TermStd::isContainsCompoundField() const
{
    return compoundField;
}

FieldKind TermStd::findFieldKind(Reporter* reporter) const
{
    if (isContainsCompoundField())
        return FieldKind::Compound;
    return isCharacterNoLimit(reporter) ? FieldKind::BasicToLimit : FieldKind::Basic;
}

bool TermStd::isFirstRequiredField(const TermStd*, Reporter*) const
{
    return false;
}

int TermStd::parse(const QChar* indata) const
{
    LineReporter reporter;
    Match own(&reporter);
    return match(indata, &own);
}

int TermStd::real_parse(const QChar* data) const
{
    LineReporter reporter;
    Match own(&reporter);
    return matchOnce(data, &own);
}

// The rest of match(): the repeat count of a term in braces, and a null text.
int TermStd::matchRepeated(const QChar* indata, Match* match) const
{
    if (!indata) {
        match->reporter()->internalError("int TermStd::parse(const QChar*)", "indata == 0");
        return 0;
    }

    // A message consists mostly of runs of one class: they are counted without a call for each
    // character.
    if (const unsigned bits = oneCharacterBits(stdType)) {
        const int length = runLength(indata, bits, maxRepeat);
        match->takeSteps(length);
        return minRepeat > length ? 0 : length;
    }
    int count = 0;
    int pos = 0;
    while (count < maxRepeat && match->takeSteps(1)) {
        const int matched = matchOnce(indata + pos, match);
        if (matched == 0)
            break;
        ++count;
        pos += matched;
    }
    return minRepeat > count ? 0 : pos;
}

int TermStd::matchOnce(const QChar* data, Match* match) const
{
    if (const unsigned bits = oneCharacterBits(stdType))
        return isAny(*data, bits);
    switch (type()) {
    case TermTypeSep:
        return matchSeparator(data, match);
    case TermTypeNil:
        return parse_nil(data);
    default:
        match->reporter()->internalError("virtual int TermStd::real_parse(const QChar*)",
                                         QLatin1String("unknown StdTerm type =  ") +
                                             QString::number(type()));
        return 0;
    }
}

void TermStd::setRepeatCount(int min, int max, Reporter* reporter)
{
    if (bracketType != BracketRepeat) {
        minRepeat = maxRepeat = -1;
        return;
    }
    int newMin = min == -1 ? 0 : min;
    int newMax = max == -1 ? RepeatNoLimit : max;
    if (type() == TermTypeSep && (newMin > 1 || max > 1)) {
        configErrorMessage(ADEXP_CODE_REPEATED_SPACE,
                           QObject::tr("in adexp the number of spaces does not matter"), reporter);
        if (newMin > 0)
            newMin = 1;
        if (max > 1)
            newMax = 1;
    }
    if (newMax < newMin) {
        configErrorMessage(ADEXP_CODE_COUNTS_EXCHANGED,
                           QObject::tr("minimum repeat count = ") + QString::number(newMin) +
                               QObject::tr(" more than maximum repeat count = ") +
                               QString::number(newMax),
                           reporter);
        newMin = newMax;
    }
    minRepeat = newMin;
    maxRepeat = newMax;
}

QString TermStd::dumpDataSetMaxMin(const QString& text) const
{
    switch (bracketType) {
    case BracketRepeat:
        return QString::number(minRepeat) + u'{' + text + u'}' + QString::number(maxRepeat);
    case BracketOptional:
        return u'[' + text + u']';
    default:
        return text;
    }
}

QString TermStd::dumpData(bool) const
{
    switch (type()) {
    case TermTypeCharacter:
        return dumpDataSetMaxMin(QStringLiteral("CHARACTER"));
    case TermTypeAlphanum:
        return dumpDataSetMaxMin(QStringLiteral("ALPHANUM"));
    case TermTypeAlpha:
        return dumpDataSetMaxMin(QStringLiteral("ALPHA"));
    case TermTypeDigit:
        return dumpDataSetMaxMin(QStringLiteral("DIGIT"));
    case TermTypeSep:
        return dumpDataSetMaxMin(QStringLiteral("SEP"));
    case TermTypeNil:
        return dumpDataSetMaxMin(QStringLiteral("NIL"));
    case TermTypeLimChar:
        return dumpDataSetMaxMin(QStringLiteral("LIM_CHAR"));
    case TermTypeSimple:
        return dumpDataSetMaxMin(u'\'' + ExprRuleStr + u'\'');
    default:
        return dumpDataSetMaxMin(QStringLiteral("UNKNOWN"));
    }
}

void TermStd::configErrorMessage(adexp_code code, const QString& text, Reporter* reporter,
                                 int begin) const
{
    Finding finding;
    finding.code = code;
    if (code == ADEXP_CODE_REPEATED_SPACE)
        finding.severity = Severity::Warning;
    finding.text = text;
    finding.detail = config.ruleText;
    finding.record = config;
    finding.begin = begin == -1 ? config.textBegin : begin;
    reporter->report(finding);
}

int TermStd::parse_special(const QChar* c) const
{
    return isAny(*c, CharClass::Space | CharClass::Special);
}

int TermStd::parse_lim_char(const QChar* c) const
{
    return isAny(*c, LimCharBits);
}

int TermStd::parse_character(const QChar* c) const
{
    return isAny(*c, LimCharBits | CharClass::Hyphen);
}

int TermStd::parse_sep(const QChar* data) const
{
    const QChar* end = data;
    while (isAny(*end, CharClass::Space))
        ++end;
    return static_cast<int>(end - data);
}

int TermStd::parse_nil(const QChar*) const
{
    return 0;
}
