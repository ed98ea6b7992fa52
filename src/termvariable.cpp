#include "termvariable.h"

#include "diagnosticline.h"

#include <QObject>
#include <QScopedValueRollback>

namespace {

const char* const NotResolved = "simpleTerm == 0";
const char* const Loop = "loop detected in the variables";

// Definitions that nest too deep are not checked at all (DefinitionNesting). But if loops are
// tangled, the check enters a definition again through each of its references. With this limit it
// needs a stack of less than 256 KiB. Checks of one process never run in parallel, so one counter
// is enough.
constexpr int MaxChecksUnderWay = 400;
int checksUnderWay = 0;

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
        DiagnosticLine::internalError("virtual int TermVariable::calculateOfLengthData(bool) const",
                                      NotResolved);
        return 0;
    }
    const int length = simpleTerm->calculateOfLengthData(true);
    return withRepeat ? lengthTimesMaxRepeat(length) : length;
}

void TermVariable::report(const QString& text, FindingKind kind) const
{
    Finding finding;
    finding.kind = kind;
    configErrorMessage(text, finding);
}

bool TermVariable::fail(const QString& text, FindingKind kind)
{
    report(text, kind);
    valid = false;
    return false;
}

// Functions that build texts are never inlined: check_config() calls itself hundreds of levels
// deep, and each of its frames would have room for the texts.

[[gnu::noinline]] bool TermVariable::failLoop() const
{
    // `valid` is not set here: the outer call of check_config() sets it.
    report(QObject::tr("loop detected in the variables"), FindingKind::Loop);
    return false;
}

[[gnu::noinline]] bool TermVariable::failTangle()
{
    return fail(QObject::tr("loops of variables are tangled more than %1 levels deep")
                    .arg(MaxChecksUnderWay));
}

[[gnu::noinline]] bool TermVariable::failNotValid()
{
    return fail(QObject::tr("variable ") + ExprRuleStr +
                    QObject::tr(" was found, but variable not valid"),
                FindingKind::Consequence);
}

// The term with the name; null after a report.
[[gnu::noinline]] TermStd* TermVariable::namedTerm(const TermList* termsList)
{
    TermStd* term = nullptr;
    if (ExprRuleStr.isEmpty())
        fail(QObject::tr("ExprRuleStr is empty"));
    else if (config.recordName == ExprRuleStr)
        fail(QObject::tr("variable points to itself"));
    else if (!termsList)
        fail(QObject::tr("termsList = 0"));
    else if (term = termsList->search(ExprRuleStr); !term)
        fail(QObject::tr("variable ") + ExprRuleStr + QObject::tr(" not found"),
             FindingKind::UnknownName);
    return term;
}

bool TermVariable::check_config(const TermList* termsList)
{
    if (loopGuard)
        return failLoop();
    if (simpleTerm)
        return valid;
    TermStd* const term = namedTerm(termsList);
    if (!term)
        return false;
    if (term->configChecked) {
        valid = term->valid;
    } else {
        if (checksUnderWay == MaxChecksUnderWay)
            return failTangle();
        const QScopedValueRollback<int> oneMore(checksUnderWay, checksUnderWay + 1);
        const QScopedValueRollback<bool> guard(loopGuard, true);
        valid = term->check_config(termsList);
        // Also after a failure: the term is not checked again and stays in the list, unresolved;
        // pinned by `Validation.TermThatFailedInTheCheckOfAnotherStaysWithoutReport`.
        term->configChecked = true;
    }
    if (!valid)
        return failNotValid();
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

bool TermVariable::isCharacterNoLimit()
{
    if (TermStd::isCharacterNoLimit())
        return true;
    if (!simpleTerm) {
        DiagnosticLine::internalError("virtual bool TermVariable::isCharacterNoLimit()",
                                      NotResolved);
        return false;
    }
    if (loopGuard) {
        DiagnosticLine::internalError("virtual bool TermVariable::isCharacterNoLimit()", Loop);
        return false;
    }
    const QScopedValueRollback<bool> guard(loopGuard, true);
    return simpleTerm->isCharacterNoLimit();
}

TermStd* TermVariable::search_TermField(QStringView name) const
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

bool TermVariable::isFirstRequiredField(const TermStd* field) const
{
    if (!simpleTerm) {
        DiagnosticLine::internalError(
            "virtual bool TermVariable::isFirstRequiredField(const TermStd*) const", NotResolved);
        return false;
    }
    return simpleTerm == field || simpleTerm->isFirstRequiredField(field);
}

int TermVariable::real_parse(const QChar* data)
{
    if (!simpleTerm) {
        DiagnosticLine::internalError("virtual int TermVariable::real_parse(const QChar*)",
                                      NotResolved);
        return 0;
    }
    if (loopGuard) {
        DiagnosticLine::internalError("virtual int TermVariable::real_parse(const QChar*)", Loop);
        return 0;
    }
    const QScopedValueRollback<bool> guard(loopGuard, true);
    return simpleTerm->parse(data);
}
