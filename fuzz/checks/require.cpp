#include "require.h"

#include <cstdlib>
#include <string>
#include <unistd.h>

void violated(std::string_view what, std::string_view where)
{
    std::string line = "\nDoes not hold: " + std::string(what);
    if (!where.empty())
        line += ": " + std::string(where);
    line += '\n';
    // Not through stderr, which a target may have replaced. Whether all of it could be written
    // makes no difference any more.
    if (write(STDERR_FILENO, line.data(), line.size()) < 0)
        std::abort();
    std::abort();
}
