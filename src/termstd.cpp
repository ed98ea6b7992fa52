#include "termstd.h"

#include "charclass.h"
#include "diagnosticline.h"
#include "matchingsteps.h"

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

bool TermStd::check_config(const TermList*)
{
    return valid;
}

bool TermStd::isCharacterNoLimit()
{
    return bracketType == BracketRepeat && stdType == TermTypeCharacter &&
           maxRepeat == RepeatNoLimit;
}

TermStd* TermStd::search_TermField(QStringView) const
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

FieldKind TermStd::fieldKind()
{
    if (m_fieldKind != FieldKind::Unknown)
        return m_fieldKind;
    const FieldKind kind = isContainsCompoundField() ? FieldKind::Compound
                           : isCharacterNoLimit()    ? FieldKind::BasicToLimit
                                                     : FieldKind::Basic;
    if (configChecked)
        m_fieldKind = kind;
    return kind;
}

bool TermStd::isFirstRequiredField(const TermStd*) const
{
    return false;
}

// The rest of parse(): terms in braces, and a null text.
int TermStd::parseRepeated(const QChar* indata)
{
    if (!indata) {
        DiagnosticLine::internalError("int TermStd::parse(const QChar*)", "indata == 0");
        return 0;
    }

    // A message consists mostly of runs of one class: they are counted without a call for each
    // character.
    if (const unsigned bits = oneCharacterBits(stdType)) {
        const int length = runLength(indata, bits, maxRepeat);
        MatchingSteps::take(length);
        return minRepeat > length ? 0 : length;
    }
    int count = 0;
    int pos = 0;
    while (count < maxRepeat && MatchingSteps::take(1)) {
        const int matched = real_parse(indata + pos);
        if (matched == 0)
            break;
        ++count;
        pos += matched;
    }
    return minRepeat > count ? 0 : pos;
}

int TermStd::real_parse(const QChar* data)
{
    if (const unsigned bits = oneCharacterBits(stdType))
        return isAny(*data, bits);
    switch (type()) {
    case TermTypeSep:
        return parse_sep(data);
    case TermTypeNil:
        return parse_nil(data);
    default:
        DiagnosticLine(QtCriticalMsg)
            .plain("virtual int TermStd::real_parse(const QChar*)")
            .plain("unknown StdTerm type = ")
            .number(type())
            .send();
        return 0;
    }
}

void TermStd::setRepeatCount(int min, int max)
{
    if (bracketType != BracketRepeat) {
        minRepeat = maxRepeat = -1;
        return;
    }
    int newMin = min == -1 ? 0 : min;
    int newMax = max == -1 ? RepeatNoLimit : max;
    if (type() == TermTypeSep && (newMin > 1 || max > 1)) {
        Finding finding;
        finding.severity = Severity::Warning;
        configErrorMessage(QObject::tr("in adexp the number of spaces does not matter"), finding);
        if (newMin > 0)
            newMin = 1;
        if (max > 1)
            newMax = 1;
    }
    if (newMax < newMin) {
        configErrorMessage(QObject::tr("minimum repeat count = ") + QString::number(newMin) +
                           QObject::tr(" more than maximum repeat count = ") +
                           QString::number(newMax));
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

void TermStd::configErrorMessage(const QString& text) const
{
    configErrorMessage(text, Finding());
}

void TermStd::configErrorMessage(const QString& text, Finding finding) const
{
    if (finding.begin == -1)
        finding.begin = config.textBegin;
    finding.text = text;
    finding.detail = config.ruleText;
    finding.record = config;
    DiagnosticLine(QtDebugMsg)
        .quoted(config.xmlErrorHead())
        .quoted(config.ruleText)
        .quoted(text)
        .send(finding);
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
    const auto length = static_cast<int>(end - data);
    MatchingSteps::take(length);
    return length;
}

int TermStd::parse_nil(const QChar*) const
{
    return 0;
}
