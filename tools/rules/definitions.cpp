#include "definitions.h"

#include "adexp.hpp"
#include "api/sharedrules.h"
#include "console.h"
#include "load/mainclass.h"
#include "message/msgrule.h"
#include "nearestname.h"
#include "termfacts.h"

namespace {

// Brackets are bounded by the compiler, so this recursion is.
void collectReferences(const TermStd* term, QStringList* names)
{
    if (term->type() == TermTypeVariable)
        names->append(term->ExprRuleStr);
    else if (const TermExpression* const expression = asExpression(term))
        for (const TermStd* part : expression->ExprList)
            collectReferences(part, names);
}

} // namespace

const MainClass& insideOf(const adexp::RuleSet& rules)
{
    return *rules.handle();
}

std::vector<TermStd*> allDefinitions(const MainClass& rules)
{
    std::vector<TermStd*> definitions(rules.termsList.begin(), rules.termsList.end());
    definitions.insert(definitions.end(), rules.msgRules.begin(), rules.msgRules.end());
    return definitions;
}

std::vector<TermStd*> definitionsNamed(const MainClass& rules, const std::string& name)
{
    // All names in a rule set are in upper case.
    const QString recordName = QString::fromStdString(name).toUpper();
    std::vector<TermStd*> named;
    std::vector<std::string> known;
    for (TermStd* definition : allDefinitions(rules)) {
        known.push_back(definition->config.recordName.toStdString());
        if (definition->config.recordName == recordName)
            named.push_back(definition);
    }
    if (named.empty()) {
        std::string text = "there is no term and no message rule of that name";
        if (const std::string nearest = nearestName(recordName.toStdString(), known);
            !nearest.empty())
            text += "; the nearest one is " + nearest;
        printError(recordName.toStdString(), text);
    }
    return named;
}

bool isCompound(const TermStd* definition)
{
    const bool isField = definition->containsField || definition->type() == TermTypeMsgRule;
    return isField && (definition->compoundField || definition->isContainsCompoundField());
}

QStringList referencesOf(const TermStd* definition)
{
    QStringList names;
    collectReferences(definition, &names);
    names.removeDuplicates();
    return names;
}
