#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "satellite/repeat_row.h"

/// The sequence that the rows belong to.
struct RowSequence {
  std::string id;
  std::int64_t length;  ///< bases
};

/// The header up to the first blank or tab, as samtools and bedtools name a sequence; "record_" and the 1-based number
/// of the record if that is empty.
std::string sequence_id(const std::string& name, unsigned number);

/// A form in which the repeats can be written beside the report. All texts end their lines.
struct RowFormat {
  const char* option;                                         ///< the option that names the file, without its dashes
  const std::string* filename;                                ///< the parameter that it sets
  std::string heading;                                        ///< the first lines of the file
  std::string (*sequence_line)(const RowSequence& sequence);  ///< goes before all rows; null: the format has none
  /// One repeat; `number` is its 1-based number in the file.
  std::string (*line)(const RowSequence& sequence, const RepeatRow& row, std::uint64_t number);
};

/// BED, GFF3, tab-separated values, JSON Lines.
const std::array<RowFormat, 4>& row_formats();
