#include "definitions.h"

#include "adexplib.h"
#include "console.h"
#include "mainclass.h"
#include "msgrule.h"
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

std::vector<TermStd*> allDefinitions()
{
    std::vector<TermStd*> definitions(mc->termsList.begin(), mc->termsList.end());
    definitions.insert(definitions.end(), mc->msgRules.begin(), mc->msgRules.end());
    return definitions;
}

std::vector<TermStd*> definitionsNamed(const QString& name)
{
    std::vector<TermStd*> named;
    const std::vector<TermStd*> all = allDefinitions();
    std::copy_if(all.begin(), all.end(), std::back_inserter(named),
                 [&name](const TermStd* one) { return one->config.recordName == name; });
    return named;
}

void printUnknownName(const QString& name)
{
    std::vector<std::string> known;
    for (const TermStd* definition : allDefinitions())
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
