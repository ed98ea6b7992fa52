#ifndef PROGRESSLINE_H
#define PROGRESSLINE_H

#include <chrono>
#include <cstdint>
#include <optional>

/// A line at the bottom of the terminal that tells how far the command is: a bar, the number of
/// messages, how many a second, and how long it will take.
///
/// It appears after half a second, so that short work shows nothing. What else goes to the terminal
/// needs the line erased before.
class ProgressLine
{
public:
    /// A line on standard error, if it @p isWanted and that is a terminal that can erase lines.
    explicit ProgressLine(bool isWanted);
    ~ProgressLine();

    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    /// @p messages are done; @p part (0 to 1) of all the work, if that is known. Shows it, unless
    /// it was shown a moment ago.
    void show(std::uint64_t messages, std::optional<double> part);

    /// Erases the line, until the next show().
    void erase();

private:
    using Clock = std::chrono::steady_clock;

    bool m_isWanted;
    bool m_isShown = false;
    Clock::time_point m_start = Clock::now();
    Clock::time_point m_next; // when to show it next
};

#endif
