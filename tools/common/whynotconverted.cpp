#include "whynotconverted.h"

#include "inputfile.h"

std::string whyNotConverted(const adexp::Result& result)
{
    const std::string title(result.title());
    switch (result.status()) {
    case adexp::Status::Ok:
        return {};
    case adexp::Status::NoTitle:
        return "there is no \"-TITLE\" in it; check that it is an ADEXP message";
    case adexp::Status::NoRule:
        if (title.empty())
            return "it ends behind \"-TITLE\"; add the title";
        return "the rule set has no rule for the title \"" + title +
               "\"; add a rule, or choose with --settings a rule set that has "
               "one";
    default:
        return tooLargeError();
    }
}
