// What bench/instructions counts: one load of the embedded rule set, or one conversion of a
// message.
//   instructions-probe load
//   instructions-probe FILE

#include "support/converter.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

namespace {

std::string message;

} // namespace

// Counted is what happens inside of this function, which callgrind finds by its name.
extern "C" __attribute__((noinline)) void counted_instructions()
{
    if (message.empty()) {
        bench::useEmbeddedRules();
    } else {
        unsigned int length = 0;
        bench::convert(message, &length);
    }
}

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("Usage: instructions-probe load | FILE\n", stderr);
        return 1;
    }
    if (argv[1] != std::string("load")) {
        std::ifstream file(argv[1], std::ios::binary);
        message.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        bench::useEmbeddedRules();
        // What happens at the first call only, such as the binding of functions, is not counted.
        bench::convertFaultlessOrExit(message);
    }
    counted_instructions();
    clear_adexp();
}
