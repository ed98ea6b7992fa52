// A message. The input is the message; the rules are those of the settings file that the build
// names.

#include "checks/answer.h"
#include "checks/require.h"
#include "target.h"

#include "adexp.h"

#include <QHash>

namespace {

void load()
{
    const DiagnosticCapture capture;
    constexpr std::string_view settings = ADEXP_FUZZ_SETTINGS;
    require(init_adexp(settings.data(), static_cast<int>(settings.size())) == 0,
            "the rule set can be loaded");
    require(capture.lines().empty(), "the rule set is right", reportLines(capture).constData());
}

// From now on new hash tables of Qt have another order, as in another process.
void changeHashSeed()
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    qSetGlobalQHashSeed(qGlobalQHashSeed() == 0 ? -1 : 0);
#else
    if (QHashSeed::globalSeed() == 0)
        QHashSeed::resetRandomGlobalSeed();
    else
        QHashSeed::setDeterministicGlobalSeed();
#endif
}

} // namespace

void Target::setUp()
{
    load();
}

void Target::tryInput(std::string_view input, bool thorough)
{
    const Answer first = checkedAnswer(input, false);
    if (!thorough)
        return;
    clear_adexp();
    changeHashSeed();
    load();
    require(answer(input, false) == first,
            "a rule set loaded again gives the same answer, whatever the order of hash tables");
}
