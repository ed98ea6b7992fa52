#ifndef ADEXPLIB_H
#define ADEXPLIB_H

class MainClass;

/// The converter of the process, behind the exported functions of adexp.h; null before the first
/// init_adexp() and after clear_adexp(). Owned by those functions.
extern MainClass* mc;

#endif
