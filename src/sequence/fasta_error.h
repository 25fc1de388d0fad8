#pragma once

/// The errors of a FASTA input, thrown as plain integers and caught by the driver.
enum FastaError : int {
  FASTA_HEADER_EXPECTED = 0,      ///< the next byte is not ">", or the file ends directly after it
  FASTA_CANNOT_PUSH_BACK = 1,     ///< a byte cannot be pushed back: it is not in the block any more
  FASTA_LONE_CR = 2,              ///< a CR that is not followed by LF, and not the file's last byte
  FASTA_READ_FAILED = 3,          ///< the operating system could not read the file any further
  FASTA_DAMAGED_COMPRESSION = 4,  ///< the compressed data are damaged or end too early
};
