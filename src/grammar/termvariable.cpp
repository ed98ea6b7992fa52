#include "grammar/termvariable.h"

#include "report/linereporter.h"

#include <QObject>

namespace {

const char* const NotResolved = "simpleTerm == 0";
const char* const Loop = "loop detected in the variables";

// Definitions that nest too deep are not checked at all (DefinitionNesting). But if loops are
// tangled, the check enters a definition again through each of its references. With this limit it
// needs a stack of less than 256 KiB.
constexpr std::size_t MaxChecksUnderWay = 400;

} // namespace

TermVariable::TermVariable(const ConfigInfo* record) : TermStd(record)
{
    ExprRuleStr = record->ruleText;
}

int TermVariable::type() const
{
    return TermTypeVariable;
}

int TermVariable::calculateOfLengthData(bool withRepeat) const
{
    if (!simpleTerm) {
        LineReporter().internalError("virtual int TermVariable::calculateOfLengthData(bool) const",
                                     NotResolved);
        return 0;
    }
    const int length = simpleTerm->calculateOfLengthData(true);
    return withRepeat ? lengthTimesMaxRepeat(length) : length;
}

bool TermVariable::fail(adexp_code code, const QString& text, Reporter* reporter)
{
    configErrorMessage(code, text, reporter);
    valid = false;
    return false;
}

// What builds texts is never inlined: check() calls itself hundreds of levels deep, and the texts
// would take room in each of its frames.

[[gnu::noinline]] bool TermVariable::failLoop(Reporter* reporter) const
{
    // `valid` stays: the call that is under way decides about it.
    configErrorMessage(ADEXP_CODE_REFERENCE_LOOP, QObject::tr("loop detected in the variables"),
                       reporter);
    return false;
}

[[gnu::noinline]] bool TermVariable::failTangle(Reporter* reporter)
{
    return fail(ADEXP_CODE_TANGLED_LOOPS,
                QObject::tr("loops of variables are tangled more than %1 levels deep")
                    .arg(MaxChecksUnderWay),
                reporter);
}

[[gnu::noinline]] bool TermVariable::failNotValid(Reporter* reporter)
{
    return fail(ADEXP_CODE_INVALID_NAME,
                QObject::tr("variable ") + ExprRuleStr +
                    QObject::tr(" was found, but variable not valid"),
                reporter);
}

// The term of the name; null after a report.
[[gnu::noinline]] TermStd* TermVariable::namedTerm(const Check& check)
{
    TermStd* term = nullptr;
    if (ExprRuleStr.isEmpty())
        fail(ADEXP_CODE_EMPTY_NAME, QObject::tr("ExprRuleStr is empty"), check.reporter);
    else if (config.recordName == ExprRuleStr)
        fail(ADEXP_CODE_SELF_REFERENCE, QObject::tr("variable points to itself"), check.reporter);
    else if (!check.terms)
        fail(ADEXP_CODE_BROKEN_INVARIANT, QObject::tr("termsList = 0"), check.reporter);
    else if (term = check.terms->search(ExprRuleStr); !term)
        fail(ADEXP_CODE_UNKNOWN_NAME,
             QObject::tr("variable ") + ExprRuleStr + QObject::tr(" not found"), check.reporter);
    return term;
}

bool TermVariable::check(Check* check)
{
    if (check->isUnderWay(this))
        return failLoop(check->reporter);
    if (simpleTerm)
        return valid;
    TermStd* const term = namedTerm(*check);
    if (!term)
        return false;
    if (term->configChecked) {
        valid = term->valid;
    } else {
        if (check->underWay.size() == MaxChecksUnderWay)
            return failTangle(check->reporter);
        check->underWay.push_back(this);
        valid = term->check(check);
        check->underWay.pop_back();
        // Also after a failure: the term is not checked again and stays in the list, unresolved;
        // pinned by `Validation.TermThatFailedInTheCheckOfAnotherStaysWithoutReport`.
        term->configChecked = true;
    }
    if (!valid)
        return failNotValid(check->reporter);
    simpleTerm = term;
    firstChars = firstCharsOf(term);
    return true;
}

QString TermVariable::dumpData(bool) const
{
    // One opening tag and two closing ones; pinned by
    // `TermDump.unresolved_reference_closes_its_tag_twice`.
    const QString name = dumpDataSetMaxMin(ExprRuleStr);
    return name + QLatin1String("<simpleTerm>") + name + QLatin1String("</simpleTerm>") +
           (simpleTerm ? simpleTerm->dumpData(false) : QStringLiteral("not found")) +
           QLatin1String("</simpleTerm>");
}

bool TermVariable::isCharacterNoLimit(Reporter* reporter) const
{
    static const char* const Signature = "virtual bool TermVariable::isCharacterNoLimit()";
    const TermStd* term = this;
    for (int followed = 0; term->type() == TermTypeVariable; ++followed) {
        if (term->TermStd::isCharacterNoLimit(reporter))
            return true;
        term = static_cast<const TermVariable*>(term)->simpleTerm;
        if (!term || followed == Match::MaxReferences) {
            reporter->internalError(Signature, term ? Loop : NotResolved);
            return false;
        }
    }
    return term->isCharacterNoLimit(reporter);
}

const TermStd* TermVariable::search_TermField(QStringView name) const
{
    if (!simpleTerm)
        return nullptr;
    if (simpleTerm->type() == TermTypeVariable)
        return simpleTerm->ExprRuleStr == name ? simpleTerm : nullptr;
    return simpleTerm->search_TermField(name);
}

bool TermVariable::isContainsField() const
{
    return containsField || (simpleTerm && simpleTerm->isContainsField());
}

void TermVariable::setCompoundField()
{
    if (simpleTerm)
        compoundField = simpleTerm->isContainsField();
}

bool TermVariable::isContainsCompoundField() const
{
    return simpleTerm && (simpleTerm->compoundField || simpleTerm->isContainsCompoundField());
}

bool TermVariable::isFirstRequiredField(const TermStd* field, Reporter* reporter) const
{
    if (!simpleTerm) {
        reporter->internalError(
            "virtual bool TermVariable::isFirstRequiredField(const TermStd*) const", NotResolved);
        return false;
    }
    return simpleTerm == field || simpleTerm->isFirstRequiredField(field, reporter);
}

int TermVariable::matchOnce(const QChar* data, Match* match) const
{
    static const char* const Signature = "virtual int TermVariable::real_parse(const QChar*)";
    if (!simpleTerm) {
        match->reporter()->internalError(Signature, NotResolved);
        return 0;
    }
    if (!match->enterReference()) {
        match->reporter()->internalError(Signature, Loop);
        match->leaveReference();
        return 0;
    }
    const int matched = simpleTerm->match(data, match);
    match->leaveReference();
    return matched;
}
