#ifndef TERMVARIABLE_H
#define TERMVARIABLE_H

#include "termstd.h"

/// A reference by name to another term of the rule set.
///
/// check_config() resolves it; from then on every question and every match is passed on to the term
/// it refers to.
class TermVariable : public TermStd
{
public:
    /// Refers to the term named by the rule text of @p record (not null, copied). The record's name
    /// is that of the definition in which the reference stands.
    explicit TermVariable(const ConfigInfo* record);

    int type() const override;
    int calculateOfLengthData(bool withRepeat) const override;

    /// Looks the name up in @p termsList and has the term found checked, if nobody did so before.
    /// Reports and refuses loops, references to itself, names that are not there and invalid terms.
    bool check_config(const TermList* termsList) override;

    QString dumpData(bool topLevel) const override;
    bool isCharacterNoLimit() override;
    TermStd* search_TermField(QStringView name) const override;
    bool isContainsField() const override;
    void setCompoundField() override;
    bool isContainsCompoundField() const override;
    bool isFirstRequiredField(const TermStd* field) const override;
    int real_parse(const QChar* data) override;

    TermStd* simpleTerm = nullptr; ///< the term referred to, not owned; null until resolved
    bool loopGuard = false;        ///< set while a call is being passed on

private:
    void report(const QString& text, FindingKind kind) const;
    bool fail(const QString& text, FindingKind kind = FindingKind::Cause);
    bool failLoop() const;
    bool failTangle();
    bool failNotValid();
    TermStd* namedTerm(const TermList* termsList);
};

#endif
