#pragma once

/// The whole program: banner, command line, files, the loop over the records of the input, closing messages. Returns
/// the exit code, one of ExitCode.
int ostrel_main(int argc, const char* const* argv);
