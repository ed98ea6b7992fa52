#ifndef GRAMMAR_H
#define GRAMMAR_H

#include "grammar/namedlist.h"
#include "grammar/termexpression.h"
#include "load/mainclass.h"
#include "message/msgrule.h"
#include "support/tooutput.h"

#include <QString>

#include <gtest/gtest.h>

#include <memory>

/// A small rule set made of expression texts, without files. It owns all terms and rules; documents
/// and fields that use them must go before it.
class Grammar
{
public:
    /// Adds the definition of a simple term. Definitions come before the rules.
    Grammar& simple(const QString& name, const QString& expression)
    {
        return define(name, expression, false);
    }

    /// Adds the definition of a field.
    Grammar& field(const QString& name, const QString& expression)
    {
        return define(name, expression, true);
    }

    /// Adds a message rule, after all definitions it needs.
    Grammar& rule(const QString& title, const QString& fields)
    {
        m_converter.termsList_checkConfig(&toOutput);
        const ConfigInfo item = record(title, fields);
        auto rule = std::make_unique<MsgRule>(&item, &m_converter, &toOutput);
        EXPECT_TRUE(rule->check_config(&m_converter.termsList, &toOutput)) << title.toStdString();
        m_converter.msgRules.append(rule.release());
        return *this;
    }

    const RuleList* rules() const { return &m_converter.msgRules; }

    /// The term that stands for the field @p name in the first rule; it must be there.
    const TermStd* fieldTerm(const QString& name) const
    {
        const TermStd* const term = m_converter.msgRules.at(0)->search_TermField(name);
        EXPECT_NE(term, nullptr) << name.toStdString();
        return term;
    }

private:
    static ConfigInfo record(const QString& name, const QString& expression)
    {
        ConfigInfo item;
        item.recordName = name;
        item.ruleText = expression;
        return item;
    }

    Grammar& define(const QString& name, const QString& expression, bool containsField)
    {
        const ConfigInfo item = record(name, expression);
        TermStd* const term = TermExpression::append_expression(&item, true, &toOutput);
        EXPECT_NE(term, nullptr) << name.toStdString();
        if (term) {
            term->containsField = containsField;
            m_converter.termsList.append(term);
        }
        return *this;
    }

    MainClass m_converter{nullptr};
};

#endif
