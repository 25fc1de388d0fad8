#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "literal_reference.h"

namespace fuzz {

struct SearchInput {
  reference::Options options;  ///< not checked yet
  std::string bases;           ///< upper-case A, C, G, T, N
};

/// The first bytes choose the options, each on its own, so that a changed byte changes one of them; missing bytes count
/// as 0. The others are bases:
///
/// | byte           | meaning |
/// |----------------|---------|
/// | A, C, G, T, N  | that base |
/// | 0xC0 to 0xFF   | copies from 1 to 64 bases back: as many bases as the next byte says, up to 128 |
/// | any other      | one of A, C, G, T |
///
/// So repeats of long units are short inputs. Depth and length are cut down to what the reference, which tries every
/// way, does in a fraction of a second.
SearchInput read_search_input(const std::uint8_t* data, std::size_t size);

/// The options as a command line of the program, without the file name.
std::string command_line_of(const reference::Options& options);

}  // namespace fuzz
