#ifndef EXAMPLECHECKER_H
#define EXAMPLECHECKER_H

#include <QString>

class MainClass;
class TermStd;
struct RuleRecord;

/// Checks the examples in the records of rule files against the definitions.
///
/// The example of a simple term, or of a field without fields in it, is data: the definition must
/// match all of it, also in a message. The example of a compound field is a part of a message, with
/// the keyword. The example of a message rule is a message. An example must be accepted without a
/// report, and a counterexample must not.
class ExampleChecker
{
public:
    /// For the definitions of @p rules (not null, not owned), which must outlive this object.
    explicit ExampleChecker(MainClass* rules);

    /// What is wrong with the example @p text of @p record; empty if it is accepted. The record's
    /// definition must have been loaded.
    QString whyRefused(const RuleRecord& record, const QString& text) const;

    /// What is wrong with the counterexample @p text of @p record; empty if it is refused. The
    /// record's definition must have been loaded.
    QString whyAccepted(const RuleRecord& record, const QString& text) const;

private:
    QString dataRefused(const RuleRecord& record, TermStd* term, const QString& data) const;
    QString stretchRefused(const RuleRecord& record, const QString& stretch) const;
    QString messageRefused(const RuleRecord& record, const QString& message) const;
    TermStd* definitionOf(const RuleRecord& record) const;

    MainClass* m_rules;
};

#endif
