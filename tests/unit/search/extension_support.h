#pragma once

#include "search/search_support.h"

namespace test {

/// One seed of a sequence, grown into an imperfect repeat.
class ImperfectExtensionTest : public SearchTest {
 protected:
  void seed(const std::string& bases, std::ptrdiff_t begin, std::ptrdiff_t unit_length) {
    sequence = std::make_unique<Sequence>(bases);
    sat.seed(sequence->at(begin), sequence->at(begin + unit_length));
  }

  void forward() { CSearchController(1, sequence->mol).extend_imperfect_forward(sat, sequence->mol.end()); }
  void backward() { CSearchController(1, sequence->mol).extend_imperfect_backward(sat, sequence->mol.begin() - 1); }

  std::string grown() const { return described(*sequence, sat); }
  std::string events() const { return events_of(*sequence, sat); }

  std::unique_ptr<Sequence> sequence;
  Csat sat;
};

}  // namespace test
