#include "sequence/byte_source.h"

#include <fcntl.h>
#include <htslib/bgzf.h>
#include <htslib/hfile.h>
#include <htslib/hts_log.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <new>

#include "sequence/fasta_error.h"

namespace {

bool can_be_read(int descriptor, const struct stat& status) {
  if (S_ISDIR(status.st_mode)) return false;
  return (fcntl(descriptor, F_GETFL) & O_ACCMODE) != O_WRONLY;
}

int open_descriptor(const std::string& filename) {
  if (filename == standard_input_name) return dup(STDIN_FILENO);
  return open(filename.c_str(), O_RDONLY | O_CLOEXEC);
}

}  // namespace

void ByteSource::Close::operator()(hFILE* file) const {
  hclose_abruptly(file);
}

void ByteSource::Close::operator()(BGZF* file) const {
  bgzf_close(file);
}

ByteSource::ByteSource(const std::string& filename) {
  // Opened here and not by the library, for which a name may also be an address in a network.
  const int descriptor = open_descriptor(filename);
  if (descriptor == -1) return;
  struct stat status {};
  if (fstat(descriptor, &status) == 0 && can_be_read(descriptor, status)) file_.reset(hdopen(descriptor, "r"));
  if (!is_open()) close(descriptor);
  if (S_ISREG(status.st_mode)) size_ = static_cast<std::uint64_t>(status.st_size);
}

ByteSource::~ByteSource() = default;

std::size_t ByteSource::read(char* to, std::size_t n) {
  if (!looked_) look_for_compression();
  return bgzf_ != nullptr ? read_compressed(to, n) : read_plain(to, n);
}

std::uint64_t ByteSource::position() const {
  hFILE* const file = bgzf_ != nullptr ? bgzf_->fp : file_.get();
  return file == nullptr ? 0 : static_cast<std::uint64_t>(htell(file));
}

bool ByteSource::lacks_end_marker() const {
  return bgzf_ != nullptr && bgzf_->no_eof_block;
}

/// Not done at once: a pipe may have nothing to say yet.
void ByteSource::look_for_compression() {
  looked_ = true;
  std::array<char, 2> first{};
  const ssize_t got = hpeek(file_.get(), first.data(), first.size());
  if (got < 0) throw static_cast<int>(FASTA_READ_FAILED);
  if (got < 2 || first[0] != '\x1f' || first[1] != '\x8b') return;
  hts_set_log_level(HTS_LOG_OFF);  // the driver says what is wrong
  bgzf_.reset(bgzf_hopen(file_.get(), "r"));
  if (bgzf_ == nullptr) throw std::bad_alloc();
  static_cast<void>(file_.release());  // closed with it
  damaged_ = !bgzf_->is_compressed;    // too short for a header
}

std::size_t ByteSource::read_plain(char* to, std::size_t n) {
  const ssize_t got = hread(file_.get(), to, n);
  if (got < 0) throw static_cast<int>(FASTA_READ_FAILED);
  return static_cast<std::size_t>(got);
}

/// The library hands out whole blocks only. What it had decompressed of the last one of a gzip file when the input
/// ended stands in its buffer; in a damaged one it would be anything.
void ByteSource::salvage_gzip() {
  const bool is_cut_off = bgzf_->is_gzip != 0 && bgzf_->gz_stream->avail_in == 0;
  if (!is_cut_off || bgzf_->block_offset != 0) return;
  const std::size_t decompressed = BGZF_MAX_BLOCK_SIZE - std::size_t{bgzf_->gz_stream->avail_out};
  salvaged_.assign(static_cast<const char*>(bgzf_->uncompressed_block), decompressed);
}

std::size_t ByteSource::read_compressed(char* to, std::size_t n) {
  std::size_t got = 0;
  while (got < n && !damaged_) {
    const int next = bgzf_peek(bgzf_.get());
    if (next == -1) break;
    if (next < 0) {
      damaged_ = true;
      salvage_gzip();
      break;
    }
    // Never across the end of a block: if the next one were damaged, these bytes would be lost with it.
    const auto in_block = static_cast<std::size_t>(bgzf_->block_length - bgzf_->block_offset);
    const ssize_t taken = bgzf_read(bgzf_.get(), to + got, std::min(in_block, n - got));
    got += static_cast<std::size_t>(taken);
  }
  const std::size_t taken = salvaged_.copy(to + got, n - got);
  salvaged_.erase(0, taken);
  got += taken;
  if (!damaged_ || got > 0) return got;
  throw static_cast<int>(herrno(bgzf_->fp) != 0 ? FASTA_READ_FAILED : FASTA_DAMAGED_COMPRESSION);
}
