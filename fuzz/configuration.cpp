// A rule set and messages. The input is cut at lines "%%%%" into the settings file, the four rule
// files simple.xml, sub.xml, primary.xml and rules.xml, and messages.

#include "checks/answer.h"
#include "checks/privatefolder.h"
#include "checks/require.h"
#include "target.h"

#include "adexp.h"

#include <QSettings>
#include <QString>

#include <algorithm>
#include <string>
#include <vector>

namespace {

constexpr std::string_view Cut = "%%%%\n";
constexpr const char* RuleFiles[] = {"simple.xml", "sub.xml", "primary.xml", "rules.xml"};
constexpr std::size_t MostMessages = 4;

std::vector<std::string_view> cutAtMarks(std::string_view input)
{
    std::vector<std::string_view> parts;
    for (;;) {
        const std::size_t end = input.find(Cut);
        parts.push_back(input.substr(0, end));
        if (end == std::string_view::npos)
            return parts;
        input.remove_prefix(end + Cut.size());
    }
}

// Settings may name any file of the machine, and one of those may be endless. Only plain names are
// tried, which are in the private folder or nowhere.
bool namesOwnFilesOnly(const QString& settingsFile)
{
    QSettings settings(settingsFile, QSettings::IniFormat);
    const QStringList keys = settings.allKeys();
    return std::none_of(keys.begin(), keys.end(), [&settings](const QString& key) {
        const QString value = settings.value(key).toString();
        return value.contains(u'/') || value.contains(u':');
    });
}

struct Loaded
{
    int result;
    QByteArray reports;
};

Loaded load(const std::string& settings)
{
    const DiagnosticCapture capture;
    const int result = init_adexp(settings.data(), static_cast<int>(settings.size()));
    require(result >= 0 && result <= 2, "loading tells one of three results");
    require(result == 0 || !capture.lines().empty(), "a failure is reported");
    return {result, reportLines(capture)};
}

std::vector<Answer> answers(const std::vector<std::string_view>& messages)
{
    std::vector<Answer> result;
    result.reserve(messages.size());
    for (const std::string_view message : messages) // rules may be broken in any way
        result.push_back(checkedAnswer(message, true));
    return result;
}

} // namespace

void Target::setUp()
{
    PrivateFolder::enter();
}

void Target::tryInput(std::string_view input, bool thorough)
{
    const std::vector<std::string_view> parts = cutAtMarks(input);
    const auto part = [&parts](std::size_t i) {
        return i < parts.size() ? parts[i] : std::string_view();
    };
    PrivateFolder::clear();
    // Qt keeps what it read from a settings file, by its name.
    static unsigned int inputs = 0;
    const std::string settings = std::to_string(++inputs) + ".ini";
    PrivateFolder::write(settings, part(0));
    if (!namesOwnFilesOnly(QString::fromStdString(settings)))
        return;
    std::size_t next = 1;
    for (const char* file : RuleFiles)
        PrivateFolder::write(file, part(next++));
    std::vector<std::string_view> messages;
    for (; next < parts.size() && messages.size() < MostMessages; ++next)
        messages.push_back(parts[next]);

    const Loaded first = load(settings);
    const std::vector<Answer> firstAnswers = answers(messages);
    if (thorough) {
        clear_adexp();
        const Loaded second = load(settings);
        require(first.result == second.result && first.reports == second.reports,
                "a rule set loads alike twice");
        require(answers(messages) == firstAnswers,
                "a rule set loaded again gives the same answers");
    }
    clear_adexp();
}
