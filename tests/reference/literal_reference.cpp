// The literal reference. Read it from top to bottom: options, FASTA reader,
// unit primitives, the repeat record, thresholds, exact search, imperfect
// extension, the three searches, overlap removal, reports, header block, run.
//
// Nothing in here is meant to be fast. Positions are indices into the
// sequence, a range is half-open, and every record is an ordinary value.

#include "literal_reference.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <list>
#include <vector>

namespace reference {

namespace {

using Int = std::int64_t;

// ---------------------------------------------------------------------------
// Small formatting helpers
// ---------------------------------------------------------------------------

std::string number(int value) {
  char text[64];
  std::snprintf(text, sizeof text, "%d", value);
  return text;
}

std::string number(std::uint32_t value) {
  char text[64];
  std::snprintf(text, sizeof text, "%u", value);
  return text;
}

std::string number(float value) {
  char text[64];
  std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
  return text;
}

// A decimal integer, right-aligned in at least `width` characters.
std::string padded(int width, Int value) {
  char text[64];
  std::snprintf(text, sizeof text, "%*lld", width, static_cast<long long>(value));
  return text;
}

// Names are printed as C strings: a name ends at its first zero byte.
std::string as_c_string(const std::string& name) {
  return std::string(name.c_str());
}

// ---------------------------------------------------------------------------
// The FASTA reader
// ---------------------------------------------------------------------------

struct Sequence {
  std::string name;
  std::string bases;  // only A, C, G, T, N (and X once it is masked)
};

class FastaFile {
 public:
  explicit FastaFile(const std::string& bytes) : bytes_(bytes) {}

  bool at_eof() const { return at_eof_; }

  // Replaces `sequence` by the next record. Throws 0 or 2 on malformed input.
  void read_record(Sequence& sequence) {
    sequence.name.clear();
    sequence.bases.clear();

    char c = get_char();
    if (at_eof_ || c != '>') throw 0;

    c = get_char();
    sequence.name.clear();
    while (!at_eof_ && c != '\n') {
      sequence.name.push_back(c);
      c = get_char();
    }
    if (at_eof_) {
      // A header on the last line needs no line end, but it needs a name.
      if (sequence.name.empty()) throw 0;
      at_eof_ = false;
    }

    for (;;) {
      c = get_char();
      if (at_eof_) return;
      --position_;  // push the byte back
      if (c == '>') return;
      read_line_of_dna(sequence.bases);
    }
  }

 private:
  // One byte, with CR LF and a CR at the very end of the file folded to LF.
  // At the end of the file sets at_eof_ and returns a byte without meaning.
  char get_char() {
    if (position_ == bytes_.size()) {
      at_eof_ = true;
      return '\0';
    }
    const char c = bytes_[position_++];
    if (c != '\r') return c;
    if (position_ == bytes_.size()) {
      at_eof_ = true;
      return '\n';
    }
    const char next = bytes_[position_++];
    if (next != '\n') throw 2;
    return '\n';
  }

  void read_line_of_dna(std::string& bases) {
    char c = get_char();
    while (!at_eof_ && c != '\n') {
      char upper = c;
      if (c >= 'a' && c <= 'z') upper = static_cast<char>(c - 'a' + 'A');
      if (upper >= 'A' && upper <= 'Z') {
        if (upper == 'A' || upper == 'C' || upper == 'G' || upper == 'T') {
          bases.push_back(upper);
        } else if (upper == 'X') {
          // X is dropped.
        } else {
          bases.push_back('N');
        }
      }
      c = get_char();
    }
  }

  const std::string& bytes_;
  std::size_t position_ = 0;
  bool at_eof_ = false;
};

// The record as FASTA, `width` bases to a line.
void write_sequence(std::string& out, const Sequence& sequence, std::size_t width) {
  out += ">" + as_c_string(sequence.name) + "\n";
  for (std::size_t i = 0; i < sequence.bases.size(); i += width) {
    out += sequence.bases.substr(i, width);
    out += "\n";
  }
}

// ---------------------------------------------------------------------------
// Unit primitives
// ---------------------------------------------------------------------------

std::string reverse_complement(const std::string& unit) {
  const std::string from = "ATCGNDHKMRYBV";
  const std::string to = "TAGCNHDMKYRVB";
  std::string result;
  for (std::size_t i = unit.size(); i > 0; --i) {
    const std::size_t where = from.find(unit[i - 1]);
    result.push_back(where == std::string::npos ? '?' : to[where]);
  }
  return result;
}

// The alphabetically smallest rotation; `periodic` is set when the unit is a
// repetition of a shorter string.
std::string smallest_rotation(const std::string& unit, bool& periodic) {
  const std::size_t n = unit.size();
  const std::string twice = unit + unit;
  std::size_t best = 0;
  periodic = false;
  for (std::size_t i = 1; i < n; ++i) {
    const int order = twice.compare(i, n, twice, best, n);
    if (order < 0) {
      best = i;
    } else if (order == 0) {
      periodic = true;
    }
  }
  return twice.substr(best, n);
}

// The distinct prime factors of n that are smaller than n, ascending.
std::vector<std::size_t> proper_prime_factors(std::size_t n) {
  std::vector<std::size_t> factors;
  std::size_t rest = n;
  for (std::size_t p = 2; p <= rest; ++p) {
    if (rest % p != 0) continue;
    if (p < n) factors.push_back(p);
    while (rest % p == 0) rest /= p;
  }
  return factors;
}

// True when the unit consists of p equal blocks for a prime factor p that is
// smaller than its length. A unit of prime length is never reducible here.
bool is_reducible_unit(const std::string& unit) {
  const std::size_t n = unit.size();
  for (const std::size_t p : proper_prime_factors(n)) {
    const std::size_t m = n / p;
    bool all_equal = true;
    for (std::size_t k = 1; k + 1 <= p; ++k) {
      if (unit.compare((k - 1) * m, m, unit, k * m, m) != 0) {
        all_equal = false;
        break;
      }
    }
    if (all_equal) return true;
  }
  return false;
}

// ---------------------------------------------------------------------------
// The repeat record
// ---------------------------------------------------------------------------

struct Event {
  Int position;
  char kind;  // M, I or D
};

struct Record {
  Int pos_left = 0;
  Int pos_right_end = 0;
  Int unit_right = 0;
  Int unit_left = 0;
  Int unit_begin = 0;
  Int unit_end = 0;
  Int score = 0;
  Int mismatches = 0;
  Int insertions = 0;
  Int deletions = 0;
  Int num_Ns = 0;
  Int recursion_depth = 0;
  std::vector<Event> missense;
};

Record seed_record(Int first, Int unit_length) {
  Record s;
  s.pos_left = first;
  s.unit_begin = first;
  s.unit_right = first;
  s.pos_right_end = first + unit_length;
  s.unit_end = first + unit_length;
  s.unit_left = first + unit_length - 1;
  return s;
}

Int unit_length_of(const Record& s) {
  return s.unit_end - s.unit_begin;
}

Int length_of(const Record& s) {
  return s.pos_right_end - s.pos_left;
}

Int normalised_length_of(const Record& s) {
  return length_of(s) - s.insertions + s.deletions;
}

Int next_in_unit(const Record& s, Int unit_position) {
  ++unit_position;
  if (unit_position == s.unit_end) unit_position = s.unit_begin;
  return unit_position;
}

Int previous_in_unit(const Record& s, Int unit_position) {
  --unit_position;
  if (unit_position == s.unit_begin - 1) unit_position = s.unit_end - 1;
  return unit_position;
}

// Records by start, then by end; the sort of a list keeps equal ones in order.
bool less_than_record(const Record& a, const Record& b) {
  if (a.pos_left < b.pos_left) return true;
  if (a.pos_left > b.pos_left) return false;
  return a.pos_right_end < b.pos_right_end;
}

// Events by position; at one position the deletions come first, so that the
// missing unit base is shown before the base that stands there.
bool less_than_event(const Event& a, const Event& b) {
  if (a.position != b.position) return a.position < b.position;
  return a.kind == 'D' && b.kind != 'D';
}

void sort_events(Record& s) {
  std::stable_sort(s.missense.begin(), s.missense.end(), less_than_event);
}

// ---------------------------------------------------------------------------
// The search of one sequence
// ---------------------------------------------------------------------------

enum class Thresholds { user, intern };

class Search {
 public:
  Search(const Options& options, const Sequence& sequence)
      : o_(options), sequence_(sequence), bases_(sequence.bases), end_(static_cast<Int>(sequence.bases.size())) {}

  // Runs the search of the selected mode; the result is in report order.
  std::list<Record> search() {
    if (o_.search_mode == 0) return exact_search();
    if (o_.search_mode == 1) return extend_exact_search();
    return imperfect_search();
  }

  void remove_hidden(std::list<Record>& records) const;
  void report(std::string& out, const std::list<Record>& records) const;

 private:
  char base(Int position) const { return bases_[static_cast<std::size_t>(position)]; }

  std::string bases_between(Int from, Int to) const {
    return bases_.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from));
  }

  // --- thresholds ---

  static Int linear_threshold(int plain, int a, float bx, Int unit_length) {
    const long double linear =
        std::ceil(static_cast<long double>(a) + static_cast<long double>(unit_length) * static_cast<long double>(bx));
    Int value;
    if (!(linear > -2147483648.0L)) {
      value = -2147483648LL;
    } else if (linear >= 2147483647.0L) {
      value = 2147483647LL;
    } else {
      value = static_cast<Int>(linear);
    }
    return value > plain ? value : plain;
  }

  Int min_score(Thresholds which, Int u) const {
    if (which == Thresholds::intern) return u < 4 ? 4 : u;
    return linear_threshold(o_.min_score, o_.min_score_a, o_.min_score_bx, u);
  }

  Int min_length(Thresholds which, Int u) const {
    if (which == Thresholds::intern) return 0;
    return linear_threshold(o_.min_length, o_.min_length_a, o_.min_length_bx, u);
  }

  bool passes(Thresholds which, const Record& s) const {
    const Int u = unit_length_of(s);
    return s.score >= min_score(which, u) && normalised_length_of(s) >= min_length(which, u);
  }

  // --- what all searches share ---

  // The first N at or after `from`, or the end of the sequence.
  Int first_N_from(Int from) const {
    while (from < end_ && base(from) != 'N') ++from;
    return from;
  }

  Int skip_Ns(Int position) const {
    while (position < end_ && base(position) == 'N') ++position;
    return position;
  }

  // A window may serve as a unit if it holds no N and is not one base
  // repeated.
  bool valid_starting_pattern(Int b, Int e, Int next_N) const {
    if (next_N < e && next_N >= b) return false;
    if (e - b == 1) return true;
    for (Int i = b; i + 1 < e; ++i) {
      if (base(i) != base(i + 1)) return true;
    }
    return false;
  }

  void remove_Ns_at_ends(Record& s) const {
    while (base(s.pos_right_end - 1) == 'N') {
      --s.pos_right_end;
      s.unit_right = previous_in_unit(s, s.unit_right);
      --s.num_Ns;
    }
    while (base(s.pos_left) == 'N') {
      ++s.pos_left;
      s.unit_left = next_in_unit(s, s.unit_left);
      --s.num_Ns;
    }
  }

  bool extend_exact_forward(Record& s, Int stop) const;
  bool extend_exact_backward(Record& s, Int stop) const;

  // The searches.
  std::list<Record> exact_search() { return exact_search(Thresholds::user); }
  std::list<Record> exact_search(Thresholds active) const;
  std::list<Record> extend_exact_search() const;
  std::list<Record> imperfect_search() const;

  // Imperfect extension.
  enum class Verdict { ended, chosen };
  Verdict look_forward(Record& s, Int seq_end, char& choice, Int& value) const;
  Verdict look_backward(Record& s, Int left_limit, char& choice, Int& value) const;
  Int lookahead_forward(Record& s, Int seq_end) const;
  Int lookahead_backward(Record& s, Int left_limit) const;
  void extend_imperfect_forward(Record& s, Int seq_end) const;
  void extend_imperfect_backward(Record& s, Int left_limit) const;

  // Reports.
  void report_record(std::string& out, const Record& s) const;
  std::string repeat_line(const Record& s, const std::string& unit) const;
  std::string bases_line(const Record& s) const;
  std::string alignment(const Record& s) const;
  double percentage_perfection(const Record& s) const;
  Int left_flank_begin(const Record& s) const { return std::max<Int>(0, s.pos_left - static_cast<Int>(o_.flanking)); }
  Int right_flank_end(const Record& s) const {
    return std::min<Int>(end_, s.pos_right_end + static_cast<Int>(o_.flanking));
  }

  const Options& o_;
  const Sequence& sequence_;
  const std::string& bases_;
  const Int end_;
};

// ---------------------------------------------------------------------------
// Exact extension
// ---------------------------------------------------------------------------

// Both return false only in front of a run of N that is too long.

bool Search::extend_exact_forward(Record& s, Int stop) const {
  while (s.pos_right_end != stop) {
    const Int p = s.pos_right_end;
    if (base(p) == base(s.unit_right)) {
      ++s.score;
      ++s.pos_right_end;
      s.unit_right = next_in_unit(s, s.unit_right);
      continue;
    }
    if (base(p) != 'N') return true;
    if (o_.Ns_allowed_in_a_row == 0) return true;
    Int run = 0;
    for (Int i = p; i != stop && base(i) == 'N'; ++i) {
      ++run;
      if (run > o_.Ns_allowed_in_a_row) return false;
    }
    if (o_.treat_Ns_as_missense) return true;
    for (Int taken = 0; taken < run; ++taken) {
      ++s.num_Ns;
      ++s.pos_right_end;
      s.unit_right = next_in_unit(s, s.unit_right);
    }
  }
  return true;
}

bool Search::extend_exact_backward(Record& s, Int stop) const {
  while (s.pos_left - 1 != stop) {
    const Int p = s.pos_left - 1;
    if (base(p) == base(s.unit_left)) {
      ++s.score;
      --s.pos_left;
      s.unit_left = previous_in_unit(s, s.unit_left);
      continue;
    }
    if (base(p) != 'N') return true;
    if (o_.Ns_allowed_in_a_row == 0) return true;
    Int run = 0;
    for (Int i = p; i != stop && base(i) == 'N'; --i) {
      ++run;
      if (run > o_.Ns_allowed_in_a_row) return false;
    }
    if (o_.treat_Ns_as_missense) return true;
    for (Int taken = 0; taken < run; ++taken) {
      ++s.num_Ns;
      --s.pos_left;
      s.unit_left = previous_in_unit(s, s.unit_left);
    }
  }
  return true;
}

// ---------------------------------------------------------------------------
// Exact search
// ---------------------------------------------------------------------------

std::list<Record> Search::exact_search(Thresholds active) const {
  std::list<Record> found;

  // cover[i + 1] describes base i; there is a guard on either side.
  std::string cover(static_cast<std::size_t>(end_) + 2, 'a');
  const auto at = [&cover](Int i) -> char& { return cover[static_cast<std::size_t>(i + 1)]; };

  Int k = o_.min_unit_length;

  if (o_.min_unit_length == 1) {
    Int p = skip_Ns(0);
    while (p + 1 < end_) {
      Record s = seed_record(p, 1);
      extend_exact_forward(s, end_);
      extend_exact_backward(s, -1);
      remove_Ns_at_ends(s);
      if (passes(active, s)) {
        found.push_back(s);
        p = s.pos_right_end - 1;
      }
      ++p;
      p = skip_Ns(p);
    }
    k = 2;
  }

  for (; k <= static_cast<Int>(o_.max_unit_length); ++k) {
    if (k > end_) break;  // no window fits any more
    Int next_N = first_N_from(0);
    for (Int p = 0; p + k < end_; ++p) {
      if (next_N < p) next_N = first_N_from(p);
      const bool admissible =
          (at(p) == 'a' && (at(p + k - 1) == 'a' || at(p + k) == 'a')) || (at(p - 1) == 'a' && at(p + k - 1) == 'a');
      if (!admissible) continue;
      if (!valid_starting_pattern(p, p + k, next_N)) continue;

      Record s = seed_record(p, k);
      extend_exact_forward(s, end_);
      extend_exact_backward(s, -1);
      remove_Ns_at_ends(s);
      if (!passes(active, s)) continue;
      if (unit_length_of(s) != 1 && passes(Thresholds::user, s)) {
        for (Int i = s.pos_left; i < s.pos_right_end; ++i) at(i) = ' ';
        for (const Event& e : s.missense) at(e.position) = 'a';
      }
      found.push_back(s);
    }
  }

  found.sort(less_than_record);
  return found;
}

// ---------------------------------------------------------------------------
// Imperfect extension
// ---------------------------------------------------------------------------

// One node of the walk: exact extension of s in place, then, if the node may
// go on, every first step with everything that can follow it. Answers `ended`
// if no step is to be taken, otherwise `chosen` with the best first step and
// the score that can be reached through it. A mismatch wins ties over an
// insertion, and an insertion over a deletion.
Search::Verdict Search::look_forward(Record& s, Int seq_end, char& choice, Int& value) const {
  const Int unit_length = unit_length_of(s);
  Int best = -unit_length - 1;
  choice = '-';

  if (!extend_exact_forward(s, seq_end)) return Verdict::ended;
  if (s.recursion_depth == o_.maximum_recursion_depth) return Verdict::ended;
  if (s.pos_right_end == seq_end) return Verdict::ended;

  Record t;
  if (s.score + o_.mismatch_score > -unit_length) {
    t = s;
    t.pos_right_end += 1;
    t.mismatches += 1;
    t.score += o_.mismatch_score;
    t.unit_right = next_in_unit(t, t.unit_right);
    t.recursion_depth += 1;
    best = lookahead_forward(t, seq_end);
    choice = 'M';
  }
  if (s.score + o_.indel_score > -unit_length) {
    t = s;
    t.pos_right_end += 1;
    t.score += o_.indel_score;
    t.insertions += 1;
    t.recursion_depth += 1;
    Int r = lookahead_forward(t, seq_end);
    if (r > best) {
      best = r;
      choice = 'I';
    }

    t = s;
    t.deletions += 1;
    t.score += o_.indel_score;
    t.unit_right = next_in_unit(t, t.unit_right);
    t.recursion_depth += 1;
    r = lookahead_forward(t, seq_end);
    if (r > best) {
      best = r;
      choice = 'D';
    }
  }
  if (choice == '-') return Verdict::ended;
  value = best;
  return Verdict::chosen;
}

Int Search::lookahead_forward(Record& s, Int seq_end) const {
  char choice = '-';
  Int best = 0;
  if (look_forward(s, seq_end, choice, best) == Verdict::ended) return s.score;
  return best > s.score ? best : s.score;
}

// The committed walk. It goes on step after step, also without a visible
// gain, until a node ends it; the record is left at the earliest of the
// highest-scoring states on the way.
void Search::extend_imperfect_forward(Record& s, Int seq_end) const {
  Record current = s;
  Record kept;
  bool first = true;
  for (;;) {
    char choice = '-';
    Int unused = 0;
    const Verdict verdict = look_forward(current, seq_end, choice, unused);
    if (first || current.score > kept.score) kept = current;
    first = false;
    if (verdict == Verdict::ended) break;

    current.missense.push_back(Event{current.pos_right_end, choice});
    if (choice == 'M') {
      current.pos_right_end += 1;
      current.score += o_.mismatch_score;
      current.mismatches += 1;
      current.unit_right = next_in_unit(current, current.unit_right);
    } else if (choice == 'I') {
      current.pos_right_end += 1;
      current.score += o_.indel_score;
      current.insertions += 1;
    } else {
      current.deletions += 1;
      current.score += o_.indel_score;
      current.unit_right = next_in_unit(current, current.unit_right);
    }
  }
  s = kept;
}

Search::Verdict Search::look_backward(Record& s, Int left_limit, char& choice, Int& value) const {
  const Int unit_length = unit_length_of(s);
  Int best = -unit_length - 1;
  choice = '-';

  if (!extend_exact_backward(s, left_limit)) return Verdict::ended;
  if (s.recursion_depth == o_.maximum_recursion_depth) return Verdict::ended;
  if (s.pos_left - 1 == left_limit) return Verdict::ended;

  Record t;
  if (s.score + o_.mismatch_score > -unit_length) {
    t = s;
    t.pos_left -= 1;
    t.mismatches += 1;
    t.score += o_.mismatch_score;
    t.unit_left = previous_in_unit(t, t.unit_left);
    t.recursion_depth += 1;
    best = lookahead_backward(t, left_limit);
    choice = 'M';
  }
  if (s.score + o_.indel_score > -unit_length) {
    t = s;
    t.pos_left -= 1;
    t.score += o_.indel_score;
    t.insertions += 1;
    t.recursion_depth += 1;
    Int r = lookahead_backward(t, left_limit);
    if (r > best) {
      best = r;
      choice = 'I';
    }

    t = s;
    t.deletions += 1;
    t.score += o_.indel_score;
    t.unit_left = previous_in_unit(t, t.unit_left);
    t.recursion_depth += 1;
    r = lookahead_backward(t, left_limit);
    if (r > best) {
      best = r;
      choice = 'D';
    }
  }
  if (choice == '-') return Verdict::ended;
  value = best;
  return Verdict::chosen;
}

Int Search::lookahead_backward(Record& s, Int left_limit) const {
  char choice = '-';
  Int best = 0;
  if (look_backward(s, left_limit, choice, best) == Verdict::ended) {
    return s.score;
  }
  return best > s.score ? best : s.score;
}

void Search::extend_imperfect_backward(Record& s, Int left_limit) const {
  Record current = s;
  Record kept;
  bool first = true;
  for (;;) {
    char choice = '-';
    Int unused = 0;
    const Verdict verdict = look_backward(current, left_limit, choice, unused);
    if (first || current.score > kept.score) kept = current;
    first = false;
    if (verdict == Verdict::ended) break;

    if (choice == 'M') {
      current.pos_left -= 1;
      current.missense.push_back(Event{current.pos_left, 'M'});
      current.score += o_.mismatch_score;
      current.mismatches += 1;
      current.unit_left = previous_in_unit(current, current.unit_left);
    } else if (choice == 'I') {
      current.pos_left -= 1;
      current.missense.push_back(Event{current.pos_left, 'I'});
      current.score += o_.indel_score;
      current.insertions += 1;
    } else {
      current.missense.push_back(Event{current.pos_left, 'D'});
      current.deletions += 1;
      current.score += o_.indel_score;
      current.unit_left = previous_in_unit(current, current.unit_left);
    }
  }
  s = kept;
}

// ---------------------------------------------------------------------------
// Exact repeats extended to imperfect ones
// ---------------------------------------------------------------------------

std::list<Record> Search::extend_exact_search() const {
  std::list<Record> seeds = exact_search(Thresholds::intern);
  std::list<Record> found;
  for (const Record& seed : seeds) {
    Record s = seed;
    extend_imperfect_forward(s, end_);
    extend_imperfect_backward(s, -1);
    remove_Ns_at_ends(s);
    if (passes(Thresholds::user, s)) {
      sort_events(s);
      found.push_back(s);
    }
  }
  found.sort(less_than_record);
  return found;
}

// ---------------------------------------------------------------------------
// Direct search for imperfect repeats
// ---------------------------------------------------------------------------

std::list<Record> Search::imperfect_search() const {
  std::list<Record> found;

  // mask[i + 1] describes base i; there is a sentinel on either side.
  std::string mask(static_cast<std::size_t>(end_) + 2, 'a');
  const auto at = [&mask](Int i) -> char& { return mask[static_cast<std::size_t>(i + 1)]; };

  const auto try_seed = [&](Int p, Int k) {
    Record s = seed_record(p, k);
    extend_imperfect_forward(s, end_);
    extend_imperfect_backward(s, -1);
    remove_Ns_at_ends(s);
    if (!passes(Thresholds::user, s)) return;
    sort_events(s);
    for (Int i = s.pos_left; i < s.pos_right_end; ++i) at(i) = ' ';
    for (const Event& e : s.missense) at(e.position) = 'a';
    found.push_back(s);
  };

  Int k = o_.min_unit_length;

  if (k == 1) {
    Int p = skip_Ns(0);
    while (p + 1 < end_) {
      if (at(p) == 'a') try_seed(p, 1);
      ++p;
      p = skip_Ns(p);
    }
    k = 2;
    std::fill(mask.begin(), mask.end(), 'a');
  }

  for (; k <= static_cast<Int>(o_.max_unit_length); ++k) {
    if (k > end_) break;  // no window fits any more
    Int next_N = first_N_from(0);
    for (Int p = 0; p + k < end_; ++p) {
      if (next_N < p) next_N = first_N_from(p);
      const bool anchored =
          (at(p) == 'a' && (at(p + k - 1) == 'a' || at(p + k) == 'a')) || (at(p - 1) == 'a' && at(p + k - 1) == 'a');
      if (!anchored) continue;
      if (!valid_starting_pattern(p, p + k, next_N)) continue;
      try_seed(p, k);
    }
  }

  found.sort(less_than_record);
  return found;
}

// ---------------------------------------------------------------------------
// Overlap removal
// ---------------------------------------------------------------------------

void Search::remove_hidden(std::list<Record>& records) const {
  if (records.empty()) return;
  auto first = records.begin();
  while (first != records.end()) {
    auto second = std::next(first);
    bool first_removed = false;
    while (second != records.end() && first->pos_right_end > second->pos_left) {
      const Record& a = *first;
      const Record& b = *second;
      const Int overlap = std::min(a.pos_right_end, b.pos_right_end) - b.pos_left;
      if (!o_.remove_mostly_hidden) {
        ++second;
        continue;
      }
      if (unit_length_of(a) + overlap <= length_of(a) && unit_length_of(b) + overlap <= length_of(b)) {
        ++second;
        continue;
      }
      if (a.score < b.score) {
        first = records.erase(first);
        first_removed = true;
        break;
      }
      second = records.erase(second);
    }
    if (!first_removed) ++first;
  }
}

// ---------------------------------------------------------------------------
// Reports
// ---------------------------------------------------------------------------

const char* const repeat_names[7] = {"***  ERROR  ***", "mononucleotide",  "dinucleotide",  "trinucleotide",
                                     "tetranucleotide", "pentanucleotide", "hexanucleotide"};

double Search::percentage_perfection(const Record& s) const {
  const Int length = normalised_length_of(s);
  const Int events = s.mismatches + s.insertions + s.deletions;
  Int numerator = 0;
  Int denominator = 0;
  if (o_.N_and_perfection_mode == 0) {
    numerator = length - events - s.num_Ns;
    denominator = length;
  } else if (o_.N_and_perfection_mode == 1) {
    numerator = length - events - s.num_Ns;
    denominator = length - s.num_Ns;
  } else {
    numerator = length - events;
    denominator = length;
  }
  const long double quotient = static_cast<long double>(numerator) / static_cast<long double>(denominator);
  return static_cast<double>(quotient * 100.0L);
}

std::string Search::repeat_line(const Record& s, const std::string& unit) const {
  const Int u = unit_length_of(s);
  const Int start = s.pos_left + 1;
  const Int end = s.pos_right_end;
  const Int bp = length_of(s);
  const Int BP = normalised_length_of(s);
  const double perfection = percentage_perfection(s);

  if (o_.print_sat_mode == 2) {
    std::string line;
    if (u <= 6) {
      line = repeat_names[u];
    } else {
      line = padded(0, u) + "-nucleotide";
    }
    line += " " + padded(0, start) + " : " + padded(0, end);
    line += " -- length " + padded(0, BP);
    line += " score " + padded(0, s.score);
    line += " perfection " + number(static_cast<int>(perfection + 0.5));
    line += " unit " + unit + "\n";
    return line;
  }

  std::string line;
  if (u <= 6) {
    char name[32];
    std::snprintf(name, sizeof name, "%16s", repeat_names[u]);
    line = name;
  } else {
    line = padded(5, u) + "-nucleotide";
  }
  line += " " + padded(9, start) + " : " + padded(9, end);
  line += " | " + padded(6, bp) + " bp";
  line += " | " + padded(6, BP) + " BP";
  line += " | " + padded(6, s.score) + " pt";
  char percent[512];
  std::snprintf(percent, sizeof percent, " | %7.3f %%", perfection);
  line += percent;

  if (o_.print_sat_mode == 0) {
    line += " | unit " + unit + "\n";
    return line;
  }

  line += " | " + padded(3, s.mismatches) + " mis";
  line += " | " + padded(3, s.insertions) + " ins";
  line += " | " + padded(3, s.deletions) + " del | ";
  if (!o_.treat_Ns_as_missense) line += padded(3, s.num_Ns) + " N | ";
  line += " unit " + unit + "\n";
  line += "Missense: ";
  for (const Event& e : s.missense) {
    line += "(" + padded(0, e.position - s.pos_left + 1) + ",";
    line += e.kind;
    line += "),";
  }
  line += "\n";
  return line;
}

std::string Search::bases_line(const Record& s) const {
  const std::string repeat = bases_between(s.pos_left, s.pos_right_end);
  if (o_.flanking <= 0) return repeat + "\n";
  return bases_between(left_flank_begin(s), s.pos_left) + ":" + repeat + ":" +
         bases_between(s.pos_right_end, right_flank_end(s)) + "\n";
}

std::string Search::alignment(const Record& s) const {
  std::string sequence_line;
  std::string match_line;
  std::string unit_line;
  const auto column = [&](char in_sequence, char in_match, char in_unit) {
    sequence_line += in_sequence;
    match_line += in_match;
    unit_line += in_unit;
  };

  if (o_.flanking > 0) {
    for (Int i = left_flank_begin(s); i < s.pos_left; ++i) {
      column(base(i), ' ', ' ');
    }
    column(':', ' ', ' ');
  }

  Int u = next_in_unit(s, s.unit_left);
  std::size_t e = 0;
  const auto position_of_event = [&]() { return e < s.missense.size() ? s.missense[e].position : s.pos_right_end; };
  Int q = position_of_event();
  Int p = s.pos_left;
  while (p != s.pos_right_end) {
    if (p != q) {
      column(base(p), base(p) != 'N' ? '|' : '*', base(u));
      ++p;
      u = next_in_unit(s, u);
      continue;
    }
    const char kind = s.missense[e].kind;
    if (kind == 'M') {
      column(base(p), ' ', base(u));
      ++p;
      u = next_in_unit(s, u);
    } else if (kind == 'I') {
      column(base(p), ' ', '-');
      ++p;
    } else {
      column('-', ' ', base(u));
      u = next_in_unit(s, u);
    }
    ++e;
    q = position_of_event();
  }

  if (o_.flanking > 0) {
    column(':', ' ', ' ');
    for (Int i = s.pos_right_end; i < right_flank_end(s); ++i) {
      column(base(i), ' ', ' ');
    }
  }

  return sequence_line + "\n" + match_line + "\n" + unit_line + "\n";
}

void Search::report_record(std::string& out, const Record& s) const {
  // A repeat whose unit is itself periodic is not written.
  std::string unit = bases_between(s.unit_begin, s.unit_end);
  bool periodic = false;
  if (o_.report_unit_mode == 0) {
    periodic = is_reducible_unit(unit);
  } else if (o_.report_unit_mode == 1) {
    unit = smallest_rotation(unit, periodic);
  } else {
    bool ignored = false;
    const std::string a = smallest_rotation(reverse_complement(unit), periodic);
    const std::string b = smallest_rotation(unit, ignored);
    unit = a > b ? b : a;
  }
  if (periodic) return;

  out += repeat_line(s, unit);
  if (o_.print_sat_seq_mode == 1) {
    out += bases_line(s);
  } else if (o_.print_sat_seq_mode == 2) {
    out += alignment(s);
  }
}

void Search::report(std::string& out, const std::list<Record>& records) const {
  out += ">" + as_c_string(sequence_.name) + "\n";
  out += "sequence length: " + padded(0, end_) + "\n";
  for (const Record& s : records) report_record(out, s);
}

// ---------------------------------------------------------------------------
// The header block
// ---------------------------------------------------------------------------

void creator_message(std::string& out, const std::string& prefix) {
  out += prefix + "Results computed with:\n";
  out += prefix + "   Ostrel, version 3.2.6\n";
}

void print_search_parameters(std::string& out, const std::string& prefix, const Options& o) {
  const auto line = [&](const std::string& label, const std::string& value) { out += prefix + label + value + "\n"; };

  line("Parameter settings used in this search:", "");
  line("Input file name:                    ", o.input_filename);
  if (!o.output_filename.empty()) {
    line("Output file name:                   ", o.output_filename);
  }
  line("   Sequence range to process:       ",
       number(o.sequence_from) + " - " +
           (o.sequence_to == 4294967295U ? std::string("last sequence") : number(o.sequence_to)));
  line("   Satellites searched for:         ", o.search_mode == 0   ? "exact repeats"
                                               : o.search_mode == 1 ? "exact repeats which are extended to imperfect "
                                                                      "repeats"
                                                                    : "imperfect repeats");
  line("   Recursion depth:                 ", number(o.maximum_recursion_depth));
  line("   Minimum unit length:             ", number(o.min_unit_length));
  line("   Maximum unit length:             ", number(o.max_unit_length));
  line("   Minimum score:                   maximum (",
       number(o.min_score) + ", " + number(o.min_score_a) + "+" + number(o.min_score_bx) + "*unitlength )");
  line("   Minimum length:                  maximum (",
       number(o.min_length) + ", " + number(o.min_length_a) + "+" + number(o.min_length_bx) + "*unitlength )");
  line("   Treat N's as:                    ", o.treat_Ns_as_missense ? "missense" : "neutral");
  line("   Max. succesive N's allowed:      ", number(o.Ns_allowed_in_a_row));
  line("   Mismatch score:                  ", number(o.mismatch_score));
  line("   Indel score:                     ", number(o.indel_score));
  line("   Minimum perfection:              ", number(o.perfection_minimum) + " %");
  line("   Number of flanking nucletides:   ", number(o.flanking));
  line("   Remove mostly overlapping satellites: ", o.remove_mostly_hidden ? "yes" : "no");
  line("   Write file with masked seq.:     ", o.mask_repeats ? "yes" : "no");
  line("   Computing perfections treat N's: ", o.N_and_perfection_mode == 0   ? "asMismatch"
                                               : o.N_and_perfection_mode == 1 ? "asNeutral"
                                                                              : "asMatch");
  line("   Report units as:                 ", o.report_unit_mode == 0   ? "as they are"
                                               : o.report_unit_mode == 1 ? "alphabetical normal form"
                                                                         : "alphabetical normal form using reverse "
                                                                           "complement");
  line("   Output format:                   ", o.print_sat_mode == 0   ? "ostrel format"
                                               : o.print_sat_mode == 1 ? "extended ostrel format"
                                                                       : "sputnik compatible format");
  line("   Print sequence mode:             ", o.print_sat_seq_mode == 0   ? "don't print sequence"
                                               : o.print_sat_seq_mode == 1 ? "print sequence"
                                                                           : "print alignment");
}

void print_output_format(std::string& out, const std::string& prefix, const Options& o) {
  out += prefix + "\n";
  out += prefix + "Columns in lines of output providing repeat information:\n";
  const auto column = [&](int n, const std::string& text) {
    out += prefix + "Column " + padded(2, n) + ": " + text + "\n";
  };
  column(1, "Repeat unit length");
  column(2, "Position at which repeat starts in current sequence");
  column(3, "Position at which repeat ends in current sequence");
  column(4, "Length of repeat in original sequence, i.e. (end-start+1)");
  column(5, "Normalized repeat length, i.e. (end-start+1-insertions+deletions)");
  column(6, "Repeat score");
  column(7, "Repeat perfection");
  if (o.print_sat_mode == 1) {
    column(8, "Number of mismatches");
    column(9, "Number of insertions");
    column(10, "Number of deletions");
    if (o.treat_Ns_as_missense) {
      column(11, "Repeat unit");
    } else {
      column(11, "Number of N's");
      column(12, "Repeat unit");
    }
  } else {
    column(8, "Repeat unit");
  }
  out += prefix + "\n";
}

}  // namespace

// ---------------------------------------------------------------------------
// Checks of the settings
// ---------------------------------------------------------------------------

int check_options(Options& o) {
  const auto unknown_mode = [](int mode) { return mode < 0 || mode > 2; };
  if (unknown_mode(o.print_sat_mode)) return -2;
  if (unknown_mode(o.print_sat_seq_mode)) return -2;
  if (unknown_mode(o.N_and_perfection_mode)) return -2;
  if (unknown_mode(o.report_unit_mode)) return -2;

  // Written so that a value that is not a number is refused as well.
  if (o.perfection_minimum < 0.0F || o.perfection_minimum > 0.0F || std::isnan(o.perfection_minimum)) {
    return -1;
  }
  if (o.min_unit_length != 1 && o.min_unit_length != 2) return -1;

  const long double plain_score = static_cast<long double>(o.min_score);
  const long double linear_score = static_cast<long double>(o.min_score_a) + static_cast<long double>(o.min_score_bx);
  const long double score = plain_score > linear_score ? plain_score : linear_score;
  const long double plain_length = static_cast<long double>(o.min_length);
  const long double linear_length =
      static_cast<long double>(o.min_length_a) + static_cast<long double>(o.min_length_bx);
  const long double length = plain_length > linear_length ? plain_length : linear_length;
  if (score < 2.0L && length < 2.0L) return -1;

  if (o.mismatch_score >= -1) return -1;
  if (o.indel_score >= -1) return -1;

  if (o.Ns_allowed_in_a_row < 0) o.Ns_allowed_in_a_row = 0;
  if (o.flanking < 0) o.flanking = 0;
  if (o.maximum_recursion_depth < 0) o.maximum_recursion_depth = 0;

  if (o.max_unit_length < o.min_unit_length) return -1;
  return 0;
}

// ---------------------------------------------------------------------------
// The run
// ---------------------------------------------------------------------------

Result run(const Options& options, const std::string& fasta_bytes) {
  Result result;
  std::string& out = result.report;

  creator_message(out, "# ");
  print_search_parameters(out, "# ", options);
  print_output_format(out, "# ", options);

  FastaFile input(fasta_bytes);
  Sequence sequence;
  std::uint32_t counter = 0;

  while (!input.at_eof()) {
    ++counter;
    try {
      input.read_record(sequence);
    } catch (int thrown) {
      result.fasta_error = thrown;
      return result;
    }
    if (counter < options.sequence_from || counter > options.sequence_to) {
      continue;
    }

    Search search(options, sequence);
    std::list<Record> records = search.search();
    search.remove_hidden(records);
    search.report(out, records);

    if (options.mask_repeats) {
      for (const Record& s : records) {
        for (Int i = s.pos_left; i < s.pos_right_end; ++i) {
          sequence.bases[static_cast<std::size_t>(i)] = 'X';
        }
      }
      write_sequence(result.masked, sequence, 80);
    }
  }

  out += "## Finished successfully. ##\n";
  return result;
}

}  // namespace reference
