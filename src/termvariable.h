#ifndef TERMVARIABLE_H
#define TERMVARIABLE_H

#include "termstd.h"

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
    bool loopGuard = false;        ///< set during a call of the term referred to

private:
    void report(const QString& text, FindingKind kind) const;
    bool fail(const QString& text, FindingKind kind = FindingKind::Cause);
    bool failLoop() const;
    bool failTangle();
    bool failNotValid();
    TermStd* namedTerm(const TermList* termsList);
};

#endif
