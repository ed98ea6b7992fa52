#ifndef TERMVARIABLE_H
#define TERMVARIABLE_H

#include "grammar/termstd.h"

/// A reference by name to another term of the rule set.
///
/// check_config() resolves it. From then on every question and every match goes to the term to
/// which it refers.
class TermVariable : public TermStd
{
public:
    /// Refers to the term whose name is the rule text of @p record (not null, copied). The record's
    /// name is that of the definition that contains the reference.
    explicit TermVariable(const ConfigInfo* record);

    int type() const override;
    int calculateOfLengthData(bool withRepeat) const override;

    /// Looks the name up in @p termsList and checks the term found, unless it was checked before.
    /// Reports and refuses loops, references to itself, unknown names and invalid terms.
    bool check(Check* check) override;

    QString dumpData(bool topLevel) const override;
    bool isCharacterNoLimit(Reporter* reporter) const override;
    const TermStd* search_TermField(QStringView name) const override;
    bool isContainsField() const override;
    void setCompoundField() override;
    bool isContainsCompoundField() const override;
    bool isFirstRequiredField(const TermStd* field, Reporter* reporter) const override;
    int matchOnce(const QChar* data, Match* match) const override;

    TermStd* simpleTerm = nullptr; ///< the term referred to, not owned; null until resolved

private:
    bool fail(adexp_code code, const QString& text, Reporter* reporter);
    bool failLoop(Reporter* reporter) const;
    bool failTangle(Reporter* reporter);
    bool failNotValid(Reporter* reporter);
    TermStd* namedTerm(const Check& check);
};

#endif
