// Positions beyond 2^31 and 2^32, in a range of addresses that holds no memory: nothing here may read a base.

#include <sys/mman.h>

#include "satellite/Csat.h"
#include "test_support.h"

namespace {

constexpr std::size_t giant = 6000000000;
const char unit[] = "AC";

/// A record of six thousand million bases that cannot be read.
class GiantSequence {
 public:
  GiantSequence() : region_(mmap(nullptr, giant, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {
    if (region_ == MAP_FAILED) throw std::runtime_error("no range of addresses");
    mol.sequence.buffer = static_cast<char*>(region_);
    mol.sequence.length = giant - 1;
    mol.sequence.capacity = giant;
  }
  GiantSequence(const GiantSequence&) = delete;
  GiantSequence& operator=(const GiantSequence&) = delete;
  ~GiantSequence() {
    mol.sequence.buffer = nullptr;  // the range is not the string's to free
    munmap(region_, giant);
  }

  /// A repeat of the unit AC over [begin, end).
  Csat repeat(std::ptrdiff_t begin, std::ptrdiff_t end) const {
    Csat sat;
    sat.seed(unit, unit + 2);
    sat.pos_left = mol.begin() + begin;
    sat.pos_right_end = mol.begin() + end;
    return sat;
  }

  CSequence_Mol mol;

 private:
  void* region_;
};

class LargePositionTest : public test::WithParameters {
 protected:
  LargePositionTest() { global_print_sat_seq_mode = 0; }

  std::string report(const Csat& sat) {
    return test::bytes_written_by([&](std::FILE* out) { sat.report_sat(out, sequence.mol); });
  }

  GiantSequence sequence;
};

TEST_F(LargePositionTest, TheShortFormatShowsThemWhole) {
  global_print_sat_mode = 0;
  Csat sat = sequence.repeat(3000000000, 3000000020);
  sat.score = 18;
  EXPECT_EQ(report(sat),
            "    dinucleotide 3000000001 : 3000000020 |     20 bp |     20 BP |     18 pt | 100.000 % | unit AC\n");
}

TEST_F(LargePositionTest, TheExtendedFormatShowsEventsFarFromTheStart) {
  Csat sat = sequence.repeat(5, 5000000005);
  sat.score = 4999999991;
  sat.mismatches = 1;
  sat.missense.push_back({sequence.mol.begin() + 4000000005, 'M'});
  EXPECT_EQ(report(sat),
            "    dinucleotide         6 : 5000000005 | 5000000000 bp | 5000000000 BP | 4999999991 pt | 100.000 % |"
            "   1 mis |   0 ins |   0 del |   0 N |  unit AC\n"
            "Missense: (4000000001,M),\n");
}

TEST_F(LargePositionTest, TheSputnikFormatShowsThemWhole) {
  global_print_sat_mode = 2;
  Csat sat = sequence.repeat(4294967295, 4294967315);
  sat.score = 18;
  EXPECT_EQ(report(sat), "dinucleotide 4294967296 : 4294967315 -- length 20 score 18 perfection 100 unit AC\n");
}

TEST_F(LargePositionTest, TheNormalizedLengthIsNotTruncated) {
  Csat sat = sequence.repeat(0, 4294967296);
  sat.insertions = 1;
  sat.deletions = 3;
  EXPECT_EQ(sat.normalized_length(), 4294967298);
}

TEST_F(LargePositionTest, ThePerfectionOfALongRepeatIsExact) {
  Csat sat = sequence.repeat(0, 4000000000);
  sat.mismatches = 1000000000;
  EXPECT_EQ(sat.percentagePerfection(), 75.0);
}

TEST_F(LargePositionTest, TheOrderHoldsAcrossTwoToTheThirtyOne) {
  const Csat near = sequence.repeat(2147483647, 2147483657);
  const Csat far = sequence.repeat(2147483648, 2147483650);
  EXPECT_TRUE(lessThan_sat(&near, &far));
  EXPECT_FALSE(lessThan_sat(&far, &near));
}

}  // namespace
