// What a remembered step holds for.

#include "search/view_memo.h"

#include <gtest/gtest.h>

namespace {

constexpr std::int64_t any_height = StepChoice::any_height;

/// A view of A against C, in which one base of the sequence or of the unit may be another one. `number` is counted from
/// the walk's position on.
template <bool forward>
UnitRuns::View view_with(int number, bool of_unit = false) {
  UnitRuns::View view;
  view.unit.low = ~std::uint64_t{0};
  view.is_whole = true;
  if (number < 0) return view;
  (of_unit ? view.unit : view.sequence).high |= std::uint64_t{1} << (forward ? number : 63 - number);
  return view;
}

template <typename Direction>
class ViewMemoTest : public testing::Test {};
using Directions = testing::Types<std::true_type, std::false_type>;
TYPED_TEST_SUITE(ViewMemoTest, Directions);

TYPED_TEST(ViewMemoTest, AStepIsKnownAtTheHeightsThatItHoldsFor) {
  constexpr bool forward = TypeParam::value;
  ViewMemo<forward> memo;
  const NearView<forward> view(view_with<forward>(-1));
  EXPECT_EQ(memo.step_at(view, 100).kind, '?');
  memo.note(view, {'D', 40, 7, any_height});
  EXPECT_EQ(memo.step_at(view, 6).kind, '?');
  const StepChoice step = memo.step_at(view, 7);
  EXPECT_EQ(step.kind, 'D');
  EXPECT_EQ(step.unit_bases_seen, 40);
  EXPECT_EQ(step.lowest, 7);
  EXPECT_EQ(step.highest, any_height);
  memo.forget();
  EXPECT_EQ(memo.step_at(view, 7).kind, '?');
}

TYPED_TEST(ViewMemoTest, AStepThatAGreaterHeightMayChangeIsNotNoted) {
  constexpr bool forward = TypeParam::value;
  ViewMemo<forward> memo;
  const NearView<forward> view(view_with<forward>(-1));
  memo.note(view, {'M', 40, 7, 1000});
  EXPECT_EQ(memo.step_at(view, 8).kind, '?');
}

TYPED_TEST(ViewMemoTest, NearViewsDifferInTheirBases) {
  constexpr bool forward = TypeParam::value;
  const NearView<forward> view(view_with<forward>(-1));
  for (const bool of_unit : {false, true}) {
    EXPECT_FALSE(view == NearView<forward>(view_with<forward>(0, of_unit)));
    EXPECT_FALSE(view == NearView<forward>(view_with<forward>(43, of_unit)));
    EXPECT_TRUE(view == NearView<forward>(view_with<forward>(44, of_unit)));
  }
  ViewMemo<forward> memo;
  memo.note(view, {'I', 45, 7, any_height});
  EXPECT_EQ(memo.step_at(view, 8).kind, '?');
  memo.note(view, {'I', 44, 7, any_height});
  EXPECT_EQ(memo.step_at(view, 8).kind, 'I');
}

TYPED_TEST(ViewMemoTest, AViewIsTheSequenceAndTheUnitFromTheStopOn) {
  constexpr bool forward = TypeParam::value;
  std::string bases;
  for (int i = 0; i < 400; ++i) bases += "ACGT"[i * i % 7 % 4];
  const char* const begin = bases.data();
  const char* const end = begin + bases.size();
  const BasePlanes planes(begin, end);
  const auto base_of = [](const UnitRuns::Bases& word, int number) {
    const int bit = forward ? number : 63 - number;
    return (word.low >> bit & 1) | (word.high >> bit & 1) << 1;
  };
  for (const std::int64_t length : {1, 5, 63, 64, 65, 100}) {
    const UnitCircle circle{begin + 150, begin + 150 + length};
    const UnitRuns runs(planes, begin, circle);
    for (std::int64_t phase = 0; phase < length; phase += 3) {
      Front<forward> front{begin + 200, circle.begin + phase, 0, 0};
      UnitRuns::View view;
      runs.look(front, forward ? end : begin, view);
      ASSERT_TRUE(view.is_whole);
      const UnitRuns::Bases behind = runs.bases_behind_view(front);
      for (int number = 0; number < 72; ++number) {
        const auto code = [&](char base) {
          const UnitRuns one(planes, begin, {begin + bases.find(base), begin + bases.find(base) + 1});
          return (one.low_bits(0) & 1) | (one.high_bits(0) & 1) << 1;
        };
        if (number < 64) {
          EXPECT_EQ(base_of(view.sequence, number), code(front.next_base()));
        }
        EXPECT_EQ(base_of(number < 64 ? view.unit : behind, number % 64), code(*front.unit)) << length << " " << number;
        front.take_base();
        front.step_unit(circle);
      }
    }
  }
}

}  // namespace
