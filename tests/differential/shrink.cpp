#include "shrink.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace differential {
namespace {

std::vector<std::string> split_records(const std::string& fasta) {
  std::vector<std::string> records;
  std::size_t start = 0;
  while (start < fasta.size()) {
    const std::size_t next = fasta.find("\n>", start);
    const std::size_t end = next == std::string::npos ? fasta.size() : next + 1;
    records.push_back(fasta.substr(start, end - start));
    start = end;
  }
  return records;
}

std::string joined(const std::vector<std::string>& records) {
  std::string text;
  for (const std::string& record : records) text += record;
  return text;
}

class Shrinker {
 public:
  Shrinker(Case failing, const std::function<bool(const Case&)>& still_fails, double seconds)
      : best_(std::move(failing)),
        still_fails_(still_fails),
        end_(std::chrono::steady_clock::now() + std::chrono::milliseconds(static_cast<long>(seconds * 1000))) {}

  Case run() {
    bool progress = true;
    while (progress && !out_of_time()) {
      // Each of the three must run, whatever the others achieved.
      const bool fewer_records = drop_records();
      const bool fewer_options = drop_options();
      const bool shorter_text = cut_text();
      progress = fewer_records || fewer_options || shorter_text;
    }
    return best_;
  }

 private:
  bool out_of_time() const { return std::chrono::steady_clock::now() > end_; }

  bool accept(const Case& smaller) {
    if (out_of_time() || !still_fails_(smaller)) return false;
    best_ = smaller;
    return true;
  }

  // Removes stretches of the list: halves of it at first, single elements in the end.
  template <typename List, typename Rebuild>
  bool remove_stretches(List list, const Rebuild& rebuild) {
    bool progress = false;
    for (std::size_t size = std::max<std::size_t>(list.size() / 2, 1); size > 0 && !out_of_time(); size /= 2) {
      std::size_t at = 0;
      while (at < list.size() && !out_of_time()) {
        List shorter = list;
        const auto from = shorter.begin() + static_cast<std::ptrdiff_t>(at);
        shorter.erase(from, from + static_cast<std::ptrdiff_t>(std::min(size, list.size() - at)));
        if (accept(rebuild(shorter))) {
          list = std::move(shorter);
          progress = true;
        } else {
          at += size;
        }
      }
    }
    return progress;
  }

  Case with_fasta(const std::string& fasta) const {
    Case changed = best_;
    changed.fasta = fasta;
    return changed;
  }

  bool drop_records() {
    return remove_stretches(split_records(best_.fasta),
                            [this](const std::vector<std::string>& records) { return with_fasta(joined(records)); });
  }

  bool cut_text() {
    return remove_stretches(best_.fasta, [this](const std::string& text) { return with_fasta(text); });
  }

  bool drop_options() {
    return remove_stretches(best_.options, [this](const std::vector<Option>& options) {
      Case changed = best_;
      changed.options = options;
      return changed;
    });
  }

  Case best_;
  const std::function<bool(const Case&)>& still_fails_;
  std::chrono::steady_clock::time_point end_;
};

}  // namespace

Case shrink(Case failing, const std::function<bool(const Case&)>& still_fails, double seconds) {
  return Shrinker(std::move(failing), still_fails, seconds).run();
}

}  // namespace differential
