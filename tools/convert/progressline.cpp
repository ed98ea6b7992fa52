#include "progressline.h"

#include "console.h"
#include "interruption.h"

#include <QString>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr std::chrono::milliseconds FirstAfter{500};
constexpr std::chrono::milliseconds Pause{100};
constexpr int BarWidth = 20;

bool canEraseLines()
{
    const char* const terminal = std::getenv("TERM");
    return isatty(STDERR_FILENO) == 1 && terminal && std::string(terminal) != "dumb";
}

// Number of columns of the terminal.
std::size_t width()
{
    winsize size{};
    ioctl(STDERR_FILENO, TIOCGWINSZ, &size);
    return size.ws_col == 0 ? 80 : size.ws_col;
}

std::string bar(double part)
{
    const int filled = static_cast<int>(part * BarWidth);
    return '[' + std::string(static_cast<std::size_t>(filled), '#') +
           std::string(static_cast<std::size_t>(BarWidth - filled), '.') + "] " +
           std::to_string(static_cast<int>(part * 100)) + " % ";
}

// "1:02:03", "2:03"
std::string duration(double seconds)
{
    const long all = static_cast<long>(seconds);
    const QString text =
        all >= 3600 ? QString::asprintf("%ld:%02ld:%02ld", all / 3600, all / 60 % 60, all % 60)
                    : QString::asprintf("%ld:%02ld", all / 60, all % 60);
    return text.toStdString();
}

std::string line(std::uint64_t messages, double seconds, std::optional<double> part)
{
    const auto rate = static_cast<std::uint64_t>(static_cast<double>(messages) / seconds);
    std::string counts = std::to_string(messages) + " messages, " + std::to_string(rate) + "/s";
    if (!part || *part <= 0)
        return counts;
    const double known = std::min(*part, 1.0);
    return bar(known) + counts + ", " + duration(seconds * (1 - known) / known) + " left";
}

} // namespace

ProgressLine::ProgressLine(bool isWanted)
    : m_isWanted(isWanted && canEraseLines()), m_next(m_start + FirstAfter)
{
}

ProgressLine::~ProgressLine()
{
    erase();
}

void ProgressLine::show(std::uint64_t messages, std::optional<double> part)
{
    if (!m_isWanted)
        return;
    const Clock::time_point now = Clock::now();
    if (now < m_next)
        return;
    m_next = now + Pause;
    const double seconds = std::chrono::duration<double>(now - m_start).count();
    // One column stays free: a full line makes some terminals go to the next.
    const std::string text = line(messages, seconds, part).substr(0, width() - 1);
    Interruption::setLineShown(true);
    m_isShown = true;
    writeToStandardError("\r" + text + "\x1b[K");
}

void ProgressLine::erase()
{
    if (!m_isShown)
        return;
    writeToStandardError("\r\x1b[K");
    m_isShown = false;
    Interruption::setLineShown(false);
}
