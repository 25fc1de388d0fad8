#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

/// The inner loop of the lag filter: a dynamic programme over (unit position x, lag), all lags of a row side by side in
/// the lanes of a vector.
///
/// A walk that compares the unit base at x with the sequence base at x + lag stands at the node (x, lag). A match or a
/// mismatch leads to (x + 1, lag), an insertion to (x, lag + 1), a deletion to (x + 1, lag - 1). This holds for every
/// seed and every unit length, as long as a walk has not used its unit up.
///
/// For each node the kernel keeps an upper bound of the score that any path from it gains at best (its "gain"), and,
/// for several lines ahead, of the score of any path that reaches unit position c (its "crossing"). Rows are worked
/// from high x to low x. doc/search.md has the proof.

/// What is the same for all rows. Lane i stands for the lag `first_lag` + i.
struct LagTask {
  std::int64_t first_lag;
  std::size_t lanes;        ///< a multiple of 64
  std::int64_t first_unit;  ///< unit lengths that are decided, inclusive range, within the lanes
  std::int64_t last_unit;
  std::int64_t line_distance;                 ///< unit positions between two lines, 1 to first_unit
  std::uint16_t mismatch;                     ///< what a mismatch costs: at most two indels, which do the same
  std::uint16_t indel;                        ///< what an inserted or deleted base costs
  std::uint16_t start;                        ///< the value that stands for score 0 on a line; value 0 is "lost"
  std::int64_t longest_insertion;             ///< inserted bases in a row that a walk can pay for
  std::vector<std::uint16_t> crossing_limit;  ///< per lane: a crossing of at most this ends every walk
  std::vector<std::uint16_t> gain_limit;      ///< per lane: a gain of at most this is too little
};

/// The bases of the rows, 0 outside the sequence. Row x compares bases[x] with bases[x + first_lag] .. bases[x +
/// first_lag + lanes - 1].
struct LagRows {
  const char* bases;
  std::int64_t highest;        ///< first row worked: last_unit above the last row decided, or at the sequence's end
  std::int64_t decided_begin;  ///< half-open range of the rows that are decided
  std::int64_t decided_end;
};

/// Takes the verdicts on a decided row, lanes / 8 bytes that are valid during the call: bit i tells that no walk of the
/// seed (row, lag of lane i) comes to the end of its unit or gains more than its limit.
using LagVerdicts = std::function<void(std::int64_t row, const std::uint8_t* certified)>;

/// Decides the rows, from high to low. Values fit 8 bits when `start` + `last_unit` + 1 does; otherwise 16 bits are
/// used.
void certify_rows(const LagTask& task, const LagRows& rows, const LagVerdicts& verdicts);

/// The kernel for one level of vector instructions.
struct LagKernelLevel {
  const char* name;
  void (*certify)(const LagTask& task, const LagRows& rows, const LagVerdicts& verdicts);
};

/// The levels that this processor can run, the widest vectors first; `certify_rows` takes the first.
std::vector<LagKernelLevel> lag_kernel_levels();
