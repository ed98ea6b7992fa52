#ifndef STEPS_H
#define STEPS_H

#include <cstdint>
#include <functional>

/// The steps that the library takes while @p task runs, in a thread with a small stack. A step is a
/// piece of its code without a branch. What Qt and the C library do is not counted.
std::int64_t stepsOf(const std::function<void()>& task);

/// Expects that ten times as much takes @p task no more than ten times the steps, and no more than
/// about @p stepsPerByte (as measured with GCC 12 and Qt 6.4; Clang 14 counts fewer, since it
/// leaves out pieces that others imply) for each byte. @p task does its work for @p count things
/// and returns the bytes that it read and wrote.
void expectLinear(const std::function<std::int64_t(int count)>& task, int count,
                  double stepsPerByte);

#endif
