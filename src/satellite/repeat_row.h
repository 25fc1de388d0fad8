#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "satellite/Csat.h"

/// What a table says of one repeat: the values of its report line, and what the report shows as an alignment.
struct RepeatRow {
  std::int64_t start;              ///< first base, 1-based
  std::int64_t end;                ///< last base, 1-based, inclusive
  std::int64_t unit_length;        ///< bases
  std::int64_t length;             ///< bases in the sequence
  std::int64_t normalized_length;  ///< bases of the perfect repeat that the alignment covers
  std::int64_t score;
  double perfection;  ///< percent, as in the report
  double copies;      ///< of the unit, in the perfect repeat that the alignment covers
  std::uint32_t mismatches;
  std::uint32_t insertions;
  std::uint32_t deletions;
  std::uint32_t neutral_Ns;
  std::string unit;          ///< as the report shows it
  std::string matched_unit;  ///< as it is repeated in the sequence, from the unit base that is due at `start`
  std::string alignment;     ///< runs of columns, a count and a letter each: = match, X mismatch, I inserted base,
                             ///< D missing base, M neutral N
};

/// The row of a repeat of `seq`; none for a repeat that the report does not show. The events must be in the order of
/// `sort_missense`.
std::optional<RepeatRow> repeat_row(const Csat& sat, const CSequence_Mol& seq);
