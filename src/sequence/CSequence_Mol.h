#pragma once

#include <cstdio>
#include <string>

#include "sequence/CFile.h"
#include "sequence/faststring.h"

/// One FASTA record, reused for every record of the input.
///
/// Invariant after `readFastaSequence`: `sequence` holds only A, C, G, T and N in upper case and is NUL-terminated.
/// The search keeps pointers into the buffer, so it must not be grown until the record has been reported; reading the
/// next record may move it. Owned by the driver.
class CSequence_Mol {
 public:
  std::string name;       ///< the header after ">" up to the line end, verbatim
  faststring sequence;    ///< the normalised bases
  int sequence_type = 0;  ///< 0: DNA; nothing else is implemented

  /// Replaces name and bases by the next record of `file`, which must stand at its ">".
  /// Throws the integers of FastaError, and std::bad_alloc.
  void readFastaSequence(CFile& file);

  /// Becomes a copy of another record.
  void copy(const CSequence_Mol& other);

  /// Reads one sequence line and appends its bases: A, C, G and T in either case are kept, X is dropped, every other
  /// letter becomes N, every byte that is not a letter is skipped.
  void getLineOfDNA(CFile& file);

  /// Writes the record as FASTA with `width` bases a line.
  void writeSequence(std::FILE* out, int width);

  const char* begin() const { return sequence.buffer; }
  const char* end() const { return sequence.buffer + sequence.length; }

 private:
  void readName(CFile& file);
  void appendBases(const char* from, const char* to);
};
