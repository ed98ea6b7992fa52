#include "definitions.h"

#include "adexp.hpp"
#include "api/sharedrules.h"
#include "console.h"
#include "load/mainclass.h"
#include "message/msgrule.h"
#include "nearestname.h"
#include "termfacts.h"

#include <algorithm>
#include <iterator>

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

std::vector<TermStd*> definitionsNamed(const MainClass& rules, const QString& name)
{
    std::vector<TermStd*> named;
    const std::vector<TermStd*> all = allDefinitions(rules);
    std::copy_if(all.begin(), all.end(), std::back_inserter(named),
                 [&name](const TermStd* one) { return one->config.recordName == name; });
    return named;
}

void printUnknownName(const MainClass& rules, const QString& name)
{
    std::vector<std::string> known;
    for (const TermStd* definition : allDefinitions(rules))
        known.push_back(definition->config.recordName.toStdString());
    std::string text = "there is no term and no message rule of that name";
    if (const std::string nearest = nearestName(name.toStdString(), known); !nearest.empty())
        text += "; the nearest one is " + nearest;
    printError(name.toStdString(), text);
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
