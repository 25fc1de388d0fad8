#pragma once

#include <cstdint>
#include <vector>

#include "search/base_planes.h"
#include "search/front.h"
#include "search/workers.h"

/// Tells in bulk, 64 positions at a time, which seeds of one unit length can possibly reach a minimum score. All others
/// certainly cannot, so the search need not try them; doc/search.md gives the proof.
class SeedFilter {
 public:
  /// `sequence` is the half-open range that `planes` was made of.
  SeedFilter(const BasePlanes& planes, const char* begin, const char* end) : planes_(planes), bases_(end - begin) {}

  /// Whether the filter can reject seeds of this unit length at all.
  static bool is_useful(std::int64_t unit_length, std::int64_t minimum_score, const ExtensionRules& rules);

  /// Marks in `candidates` the seeds that must be tried: bit p % 64 of word p / 64 for the seed that starts at base p.
  /// With `rules.maximum_depth` 0 only exact extension is considered.
  void mark_candidates(std::int64_t unit_length, std::int64_t minimum_score, const ExtensionRules& rules,
                       std::vector<std::uint64_t>& candidates, const Workers& workers = Workers(1)) const;

 private:
  const BasePlanes& planes_;
  std::int64_t bases_;
};
