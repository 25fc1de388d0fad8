#pragma once

#include <functional>

#include "case_generator.h"

namespace differential {

// Makes a failing case smaller as long as `still_fails` says that the smaller one fails, too: first drops records, then
// cuts pieces out of the text, then drops options, and so on until nothing more can go or the time is over.
Case shrink(Case failing, const std::function<bool(const Case&)>& still_fails, double seconds);

}  // namespace differential
