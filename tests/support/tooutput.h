#ifndef TOOUTPUT_H
#define TOOUTPUT_H

#include "report/linereporter.h"

/// Writes what the classes under test report to Qt's message output.
inline LineReporter toOutput;

#endif
