#ifndef TARGET_H
#define TARGET_H

#include <string_view>

/// A fuzz target: something of this project that has to bear any input. Each target is one source
/// file that defines the two functions; fuzzer.cpp makes a fuzzer of it, replay.cpp a test that
/// goes through the files of known inputs.
namespace Target {

/// Called once, before the first input.
void setUp();

/// Does with @p input what the target is for, and ends the process with require() if something
/// that must hold does not. Nothing of one input may reach the next one. With @p thorough also what
/// takes too long to be done with each of a million inputs.
void tryInput(std::string_view input, bool thorough);

} // namespace Target

#endif
