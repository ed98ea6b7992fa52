#include "wakeup.h"

#include <cerrno>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

WakeUp::WakeUp() : m_descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (m_descriptor == -1)
        throw std::system_error(errno, std::generic_category());
}

WakeUp::~WakeUp()
{
    close(m_descriptor);
}

void WakeUp::call() const
{
    eventfd_write(m_descriptor, 1); // fails only if it is readable for long
}

void WakeUp::reset() const
{
    eventfd_t calls = 0;
    eventfd_read(m_descriptor, &calls);
}
