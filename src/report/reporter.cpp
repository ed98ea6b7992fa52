#include "report/reporter.h"

// These are not inlined: who finds a broken invariant is called very often, and should stay small.
[[gnu::noinline]] void Reporter::internalError(const char* signature, const QString& condition)
{
    Finding finding;
    finding.code = ADEXP_CODE_BROKEN_INVARIANT;
    finding.severity = Severity::Internal;
    finding.text = QLatin1String(signature) + u' ' + condition;
    report(finding);
}

[[gnu::noinline]] void Reporter::internalError(const char* signature, const char* condition)
{
    internalError(signature, QString::fromLatin1(condition));
}
