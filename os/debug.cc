#include <stdarg.h>
#include <stdio.h>

#include "os/os.h"

extern "C" {

void DBG_open(void) {}

void DBG_printf(const char* format, ...) {
  if (!format) return;
  va_list arguments;
  va_start(arguments, format);
  vprintf(format, arguments);
  va_end(arguments);
}

}  // extern "C"
