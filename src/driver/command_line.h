#pragma once

/// Sets every parameter to its default, then reads and checks the command line. Returns 0, or a negative exit code
/// after a message on standard error. --help, --version and words that cannot be parsed end the process in the library.
int read_and_init_parameters(int argc, const char* const* argv);
