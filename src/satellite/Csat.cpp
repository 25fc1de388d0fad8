#include "satellite/Csat.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <new>
#include <vector>

#include "satellite/records_ahead.h"
#include "sequence/global-types-and-parameters.h"

const char* const REPEAT_NAMES[7] = {"***  ERROR  ***", "mononucleotide",  "dinucleotide",  "trinucleotide",
                                     "tetranucleotide", "pentanucleotide", "hexanucleotide"};

Csat_garbagecollector& sat_alloc = *new Csat_garbagecollector;

void Csat::seed(const char* begin, const char* end) {
  pos_left = unit_begin = unit_right = begin;
  pos_right_end = unit_end = end;
  unit_left = end - 1;
  score = 0;
  mismatches = insertions = deletions = num_Ns = 0;
  missense.clear();
}

double Csat::percentagePerfection() const {
  const std::int64_t length = normalized_length();
  const std::int64_t without_events = length - mismatches - insertions - deletions;
  const auto percent = [](std::int64_t numerator, std::int64_t denominator) {
    if (numerator == denominator && denominator != 0) return 100.0;
    return static_cast<double>(static_cast<long double>(numerator) / static_cast<long double>(denominator) * 100.0L);
  };
  switch (global_N_and_perfection_mode) {
    case 0:
      return percent(without_events - num_Ns, length);
    case 1:
      // N leaves the denominator and still counts in the numerator.
      return percent(without_events - num_Ns, length - num_Ns);
    case 2:
      return percent(without_events, length);
    default:
      std::exit(2);
  }
}

void Csat::remove_Ns_at_ends() {
  while (pos_right_end[-1] == 'N') {
    --pos_right_end;
    unit_right = previous_unit_base(unit_right);
    --num_Ns;
  }
  while (*pos_left == 'N') {
    ++pos_left;
    unit_left = next_unit_base(unit_left);
    --num_Ns;
  }
}

const char* Csat::get_repeat_name() const {
  static char name[40];
  if (unit_length() <= 6) return REPEAT_NAMES[unit_length()];
  std::snprintf(name, sizeof name, "%lld-nucleotide", static_cast<long long>(unit_length()));
  return name;
}

bool Csat::lessThan_missense::operator()(const Event& a, const Event& b) const {
  if (a.first != b.first) return std::less<const char*>()(a.first, b.first);
  return !(a.second == 'M' && b.second == 'D');
}

void Csat::sort_missense() {
  const auto before = [](const Event& a, const Event& b) {
    if (a.first != b.first) return std::less<const char*>()(a.first, b.first);
    return a.second == 'D' && b.second != 'D';
  };
  std::sort(missense.begin(), missense.end(), before);
}

bool lessThan_sat(const Csat* a, const Csat* b) {
  const std::less<const char*> before;
  if (a->pos_left != b->pos_left) return before(a->pos_left, b->pos_left);
  return before(a->pos_right_end, b->pos_right_end);
}

/// The records lie anywhere in memory, so their places are sorted, and the list's nodes keep their order.
void sort_sats(std::list<Csat*>& sats) {
  struct Place {
    const char* left;
    const char* right_end;
    Csat* sat;
  };
  const auto comes_first = [](const Place& a, const Place& b) {
    const std::less<const char*> before;
    return a.left != b.left ? before(a.left, b.left) : before(a.right_end, b.right_end);
  };
  std::vector<Place> places;
  places.reserve(sats.size());
  std::vector<std::ptrdiff_t> runs;  // where those begin that are in order
  RecordsAhead ahead(sats);
  for (Csat* sat : sats) {
    ahead.step();
    const Place place{sat->pos_left, sat->pos_right_end, sat};
    if (places.empty() || comes_first(place, places.back())) runs.push_back(static_cast<std::ptrdiff_t>(places.size()));
    places.push_back(place);
  }
  while (runs.size() > 1) {
    std::vector<std::ptrdiff_t> merged;
    for (std::size_t i = 0; i < runs.size(); i += 2) {
      merged.push_back(runs[i]);
      if (i + 1 == runs.size()) break;
      const auto end = i + 2 < runs.size() ? places.begin() + runs[i + 2] : places.end();
      std::inplace_merge(places.begin() + runs[i], places.begin() + runs[i + 1], end, comes_first);
    }
    runs.swap(merged);
  }
  auto place = places.begin();
  for (Csat*& sat : sats) sat = (place++)->sat;
}

Csat_garbagecollector::~Csat_garbagecollector() {
  for (Csat* sat : spare) delete sat;
}

Csat* Csat_garbagecollector::take(const char* begin, const char* end) {
  Csat* sat = nullptr;
  {
    const std::lock_guard<std::mutex> lock(mutex);
    if (!spare.empty()) {
      sat = spare.back();
      spare.pop_back();
      if (!spare.empty()) prefetch(*spare.back());  // for the next time
    }
  }
  if (sat == nullptr) sat = new Csat;
  sat->seed(begin, end);
  return sat;
}

std::size_t Csat_garbagecollector::size() const {
  const std::lock_guard<std::mutex> lock(mutex);
  return spare.size();
}

void Csat_garbagecollector::give_back(Csat* sat) noexcept {
  const std::lock_guard<std::mutex> lock(mutex);
  try {
    spare.push_back(sat);
  } catch (const std::bad_alloc&) {
    delete sat;
  }
}

void Csat_garbagecollector::give_back_all(std::list<Csat*>& sats) {
  const std::lock_guard<std::mutex> lock(mutex);
  spare.splice(spare.end(), sats);
}
