#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

/// The inner loop of the lag filter: a dynamic programme over (unit position x, lag), many lags side by side in the
/// lanes of a vector.
///
/// A walk that compares the unit base at x with the sequence base at x + lag stands at the node (x, lag). A match or a
/// mismatch leads to (x + 1, lag), an insertion to (x, lag + 1), a deletion to (x + 1, lag - 1). This holds for every
/// seed and every unit length, as long as a walk has not used its unit up.
///
/// The nodes are worked in rows of equal t = 2 x + lag, from high t to low. A step leads one or two rows up, so no
/// value of a row depends on another one of the same row. Every other lag has a node in a row. Backward walks are
/// forward walks on the reversed sequence of n bases, and the seed in row t then stands in row 2 n - t, at the same
/// lag.
///
/// For each node the kernel keeps an upper bound of the score that a walk from it can gain (its "gain"), and, for
/// several lines x = c ahead, a lower bound of what its score must be above the bound of permitted steps for it to come
/// to the line at all.
///
/// The nodes are worked in rows of equal t = 2 x + lag, from high t to low. A step leads one or two rows up, so no
/// value of a row depends on another one of the same row. Every other lag has a node in a row. Backward walks are
/// forward walks on the reversed sequence of n bases, and the seed in row t then stands in row 2 n - t, at the same
/// lag. doc/search.md has the proofs.

/// What is the same for all rows. Lane i of row t stands for the lag `first_lag` + 2 i + b, with b 0 or 1 as t -
/// `first_lag` is even or odd.
struct LagTask {
  std::int64_t first_lag;
  std::size_t lanes;           ///< of a row; further lags are taken for lost, or worked too
  std::int64_t first_unit;     ///< unit lengths that are decided, inclusive range, within the lanes
  std::int64_t last_unit;      ///< no gain is higher: no walk gains more within its unit
  std::int64_t line_distance;  ///< unit positions between two lines, 1 to first_unit
  std::uint16_t mismatch;      ///< what a mismatch costs
  std::uint16_t indel;         ///< what an inserted or deleted base costs
  std::int64_t free_Ns;        ///< longest run of N in the sequence that is crossed at no cost; others match nothing
  /// Per unit length, from `first_unit` on: seeds whose forward walk may gain more than this are not decided.
  std::vector<std::uint16_t> most_forward_gain;
  /// Per unit length: the score that is too little for a repeat.
  std::vector<std::uint16_t> most_gain;

  std::int64_t last_lag() const { return first_lag + 2 * static_cast<std::int64_t>(lanes) - 1; }
};

/// The seeds that start at base p and are L long with `first_row` <= 2 p + L < `end_row`, in the sequence [begin, end).
struct LagBlock {
  const char* begin;
  const char* end;
  std::int64_t first_row;
  std::int64_t end_row;
};

/// Takes the bits of a row, lane 0 lowest, that are set for seeds that are not rejected. The bytes are valid during the
/// call. Rows without such a seed are left out; seeds outside the sequence may be told of as well.
using LagVerdicts = std::function<void(std::int64_t row, const std::uint8_t* open, std::size_t bytes)>;

/// Whether the kernel works a task with vectors of bytes. Otherwise values have 16 bits.
bool fits_bytes(const LagTask& task);

/// Rejects every seed of the block for which it is certain that its walks end within its unit and gain, together, no
/// more than `most_gain`. Tells of the others.
void certify_block(const LagTask& task, const LagBlock& block, const LagVerdicts& verdicts);

/// The kernel for one level of vector instructions.
struct LagKernelLevel {
  const char* name;
  void (*certify)(const LagTask& task, const LagBlock& block, const LagVerdicts& verdicts);
};

/// The levels that this processor can run, the widest vectors first; `certify_block` takes the first.
std::vector<LagKernelLevel> lag_kernel_levels();
