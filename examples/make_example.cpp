// Writes examples/tandem_repeats.fa to standard output: repeats of known kinds in a quiet background.
//
// The background is random, but no short stretch of it repeats, so that a search with the default settings reports the
// repeats that are placed here. The generator is seeded with a constant and has no other source of randomness: the
// output is the same on every machine.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

namespace {

/// The SplitMix64 generator.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  std::uint64_t next() {
    std::uint64_t z = state_ += 0x9e3779b97f4a7c15;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9;
    z = (z ^ (z >> 27)) * 0x94d049bb133111eb;
    return z ^ (z >> 31);
  }

  /// 0 <= result < n
  std::size_t below(std::size_t n) { return static_cast<std::size_t>(next() % n); }

 private:
  std::uint64_t state_;
};

constexpr std::string_view letters = "ACGT";

/// One sequence under construction.
class Record {
 public:
  Record(std::string name, Random& random) : name_(std::move(name)), random_(random) {}

  /// Random bases that repeat nothing of what stands directly before them, at any distance up to 40.
  Record& background(std::size_t length) {
    for (std::size_t i = 0; i < length; ++i) bases_ += quiet_base();
    return *this;
  }

  Record& literal(std::string_view bases) {
    bases_ += bases;
    return *this;
  }

  Record& repeat(std::string_view unit, std::size_t copies) {
    for (std::size_t i = 0; i < copies; ++i) bases_ += unit;
    return *this;
  }

  /// A repeat in which every `distance`-th base or so is exchanged, left out or preceded by a random one.
  Record& decayed_repeat(std::string_view unit, std::size_t copies, std::size_t distance) {
    for (std::size_t i = 0; i < copies * unit.size(); ++i) {
      const char base = unit[i % unit.size()];
      const bool is_event = random_.below(distance) == 0;
      switch (is_event ? random_.below(3) : 3) {
        case 0:
          bases_ += other_than(base);
          break;
        case 1:
          break;
        case 2:
          bases_ += any_base();
          [[fallthrough]];
        default:
          bases_ += base;
      }
    }
    return *this;
  }

  /// Turns the last `count` bases to lower case.
  Record& soft_mask(std::size_t count) {
    for (std::size_t i = bases_.size() - count; i < bases_.size(); ++i) bases_[i] = to_lower(bases_[i]);
    return *this;
  }

  void write() const {
    constexpr std::size_t width = 80;
    std::printf(">%s\n", name_.c_str());
    for (std::size_t i = 0; i < bases_.size(); i += width) std::printf("%s\n", bases_.substr(i, width).c_str());
  }

 private:
  static char to_lower(char base) { return static_cast<char>(base - 'A' + 'a'); }
  static char to_upper(char base) { return base >= 'a' ? static_cast<char>(base - 'a' + 'A') : base; }

  char any_base() { return letters[random_.below(letters.size())]; }

  char other_than(char base) {
    char other = any_base();
    while (other == base) other = any_base();
    return other;
  }

  /// How many bases at the end, `next` included, equal those that stand `lag` before them.
  std::size_t copied(char next, std::size_t lag) const {
    std::size_t run = 0;
    for (std::size_t i = bases_.size(); i >= lag; --i, ++run) {
      const char base = i == bases_.size() ? next : bases_[i];
      if (to_upper(base) != to_upper(bases_[i - lag])) break;
    }
    return run;
  }

  /// Whether `next` would make the end repeat more than a few bases.
  bool repeats(char next) const {
    constexpr std::size_t longest_lag = 40;
    constexpr std::size_t tolerated = 4;
    for (std::size_t lag = 1; lag <= longest_lag; ++lag) {
      if (copied(next, lag) > tolerated) return true;
    }
    return false;
  }

  char quiet_base() {
    const std::size_t first = random_.below(letters.size());
    for (std::size_t i = 0; i < letters.size(); ++i) {
      const char base = letters[(first + i) % letters.size()];
      if (!repeats(base)) return base;
    }
    return letters[first];
  }

  std::string name_;
  std::string bases_;
  Random& random_;
};

void write_perfect_repeats(Random& random) {
  Record record("example_1 perfect repeats, one of them in lower case", random);
  record.background(260).repeat("A", 16);
  record.background(240).repeat("CA", 14);
  record.background(250).repeat("AAG", 9);
  record.background(230).repeat("GATA", 8).background(60).soft_mask(120);
  record.background(240).repeat("TTTTA", 7);
  record.background(260).repeat("TTAGGG", 9);
  record.background(220).write();
}

void write_imperfect_repeats(Random& random) {
  Record record("example_2 imperfect repeats, runs of N and an ambiguity code", random);
  record.background(230).repeat("AC", 10).literal("AT").repeat("AC", 9);                   // one base exchanged
  record.background(210).repeat("CTT", 7).literal("G").repeat("CTT", 6);                   // one base too many
  record.background(240).repeat("GATA", 6).literal("GAA").repeat("GATA", 5);               // one base too few
  record.background(220).repeat("GT", 8).literal("NNN").repeat("TG", 8);                   // N inside a repeat
  record.background(210).repeat("CAG", 7).literal(std::string(12, 'N')).repeat("CAG", 8);  // N between two repeats
  record.background(230).literal("NN").repeat("AAT", 8).literal("NNNN");       // N on either side of a repeat
  record.background(220).repeat("ATCC", 5).literal("ATRC").repeat("ATCC", 5);  // R is read as N
  record.background(240).decayed_repeat("TTAGGG", 40, 25);
  record.background(210).write();
}

void write_satellites(Random& random) {
  constexpr std::string_view unit = "GATCCTGAAGTTCATGCACTTGGATAACGCA";
  static_assert(unit.size() == 31);
  Record record("example_3 satellites with a unit of 31 bases", random);
  record.background(250).repeat(unit, 8);
  record.background(300).decayed_repeat(unit, 24, 30);
  record.background(260).repeat("AATGG", 12);
  record.background(240).write();
}

}  // namespace

int main() {
  Random random(20260101);
  write_perfect_repeats(random);
  write_imperfect_repeats(random);
  write_satellites(random);
  return std::fflush(stdout) == 0 ? 0 : 1;
}
