// The command line with an exit that throws. The C library declares its own as one that never throws, so it cannot be
// replaced when linking: the frames between would not let the exception through.

#include "command_line_without_exit.h"

// Whatever declares the library's exit has to come before the definition below.
#include <stdlib.h>

#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>

namespace {

[[noreturn]] void end_process_by_throwing(int status) {
  throw ProcessEnded{status};
}

}  // namespace

#define exit end_process_by_throwing
#include "driver/command_line.cpp"
