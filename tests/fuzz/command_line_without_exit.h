#pragma once

/// Thrown where the command line would end the process.
struct ProcessEnded {
  int status;
};
