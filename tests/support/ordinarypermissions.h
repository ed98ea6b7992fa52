#ifndef ORDINARYPERMISSIONS_H
#define ORDINARYPERMISSIONS_H

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

/// While it lives, the permissions of files hold for this thread as for any user, also for root:
/// root reads and writes all files by two capabilities, which are taken away and given back.
class OrdinaryPermissions
{
public:
    OrdinaryPermissions()
    {
        syscall(SYS_capget, &m_header, m_before);
        __user_cap_data_struct without[2] = {m_before[0], m_before[1]};
        without[0].effective &= ~((1U << CAP_DAC_OVERRIDE) | (1U << CAP_DAC_READ_SEARCH));
        syscall(SYS_capset, &m_header, without);
    }
    ~OrdinaryPermissions() { syscall(SYS_capset, &m_header, m_before); }

    OrdinaryPermissions(const OrdinaryPermissions&) = delete;
    OrdinaryPermissions& operator=(const OrdinaryPermissions&) = delete;

private:
    __user_cap_header_struct m_header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct m_before[2] = {};
};

#endif
