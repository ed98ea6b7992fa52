#include "conversion.h"

#include <algorithm>
#include <optional>

namespace {

// Takes the next word off the front of text; empty at the end.
std::string_view takeWord(std::string_view* text)
{
    constexpr std::string_view Separators = " \n\t\r";
    const std::size_t begin = std::min(text->find_first_not_of(Separators), text->size());
    text->remove_prefix(begin);
    const std::string_view word = text->substr(0, text->find_first_of(Separators));
    text->remove_prefix(word.size());
    return word;
}

// The word behind the first "-TITLE" (or "- TITLE"): empty if the message ends there, nothing if
// there is no "-TITLE".
std::optional<std::string> titleOf(std::string_view message)
{
    std::string_view before;
    for (std::string_view word = takeWord(&message); !word.empty(); word = takeWord(&message)) {
        if (word == "-TITLE" || (before == "-" && word == "TITLE"))
            return std::string(takeWord(&message));
        before = word;
    }
    return std::nullopt;
}

} // namespace

Conversion::Conversion(const std::string& message)
    : m_document(
          convert_from_adexp(message.data(), static_cast<unsigned int>(message.size()), &m_length))
{
    if (!m_document)
        m_failure = whyNotConverted(message);
}

std::string whyNotConverted(std::string_view message)
{
    const std::optional<std::string> title = titleOf(message);
    if (!title)
        return "there is no \"-TITLE\" in it; check that it is an ADEXP message";
    if (title->empty())
        return "it ends behind \"-TITLE\"; add the title";
    return "the rule set has no rule for the title \"" + *title +
           "\" (or memory ran out); add a rule, or choose with --settings a rule set that has one";
}
