#ifndef WAKEUP_H
#define WAKEUP_H

/// Wakes a thread that waits with poll().
class WakeUp
{
public:
    /// Throws std::system_error if no descriptor is left for it.
    WakeUp();
    ~WakeUp();

    WakeUp(const WakeUp&) = delete;
    WakeUp& operator=(const WakeUp&) = delete;

    /// Makes the descriptor readable; from any thread.
    void call() const;
    /// Makes it not readable, until the next call().
    void reset() const;

    int descriptor() const { return m_descriptor; }

private:
    int m_descriptor;
};

#endif
