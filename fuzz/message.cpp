// A message. The input is the message; the rules are those of the settings file that the build
// names.

#include "checks/answer.h"
#include "checks/require.h"
#include "target.h"

#include "adexp.h"

namespace {

void load()
{
    const DiagnosticCapture capture;
    constexpr std::string_view settings = ADEXP_FUZZ_SETTINGS;
    require(init_adexp(settings.data(), static_cast<int>(settings.size())) == 0,
            "the rule set can be loaded");
    require(capture.lines().empty(), "the rule set is right", reportLines(capture).constData());
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
    load();
    require(answer(input, false) == first, "a rule set loaded again gives the same answer");
}
