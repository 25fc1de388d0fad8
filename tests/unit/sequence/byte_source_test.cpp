#include "sequence/byte_source.h"

#include "compressed.h"
#include "sequence/fasta_error.h"
#include "test_support.h"

namespace {

using test::bgzf_block;
using test::bgzf_blocks;
using test::bgzf_of;
using test::gzip_of;

/// What a file of these bytes hands out, read in pieces of `step` bytes, and the error that ended it.
struct Outcome {
  std::string bytes;
  int error = -1;
  bool lacks_end_marker = false;
};

Outcome read_all(const std::string& content, std::size_t step = 100000) {
  const test::TempDir dir;
  ByteSource source(dir.write("x", content));
  Outcome outcome;
  std::string piece(step, ' ');
  try {
    while (const std::size_t got = source.read(piece.data(), step)) outcome.bytes.append(piece, 0, got);
  } catch (int error) {
    outcome.error = error;
  }
  outcome.lacks_end_marker = source.lacks_end_marker();
  return outcome;
}

/// Bases that do not compress to nothing.
std::string text_of(std::size_t size) {
  std::string text;
  unsigned state = 12345;
  for (std::size_t i = 0; i < size; ++i) {
    state = state * 1103515245U + 12345U;
    text += "ACGT"[state >> 30];
  }
  return text;
}

void expect_whole(const std::string& content, const std::string& text) {
  for (const std::size_t step : std::vector<std::size_t>{1, 7, 65280, 65281, 2000000}) {
    const Outcome outcome = read_all(content, step);
    EXPECT_EQ(outcome.bytes, text) << step;
    EXPECT_EQ(outcome.error, -1) << step;
    EXPECT_FALSE(outcome.lacks_end_marker) << step;
  }
}

void expect_damaged(const std::string& content, const std::string& text) {
  const Outcome outcome = read_all(content);
  EXPECT_EQ(outcome.bytes, text);
  EXPECT_EQ(outcome.error, FASTA_DAMAGED_COMPRESSION);
}

TEST(ByteSourceTest, PlainBytesAreHandedOutAsTheyAre) {
  expect_whole(text_of(150000), text_of(150000));
}

TEST(ByteSourceTest, AnEmptyFileHasNoBytes) {
  expect_whole("", "");
}

TEST(ByteSourceTest, TheFirstByteOfAGzipFileAloneIsPlain) {
  expect_whole("\x1f", "\x1f");
  expect_whole("\x1fT", "\x1fT");
}

TEST(ByteSourceTest, AGzipFileIsDecompressed) {
  expect_whole(gzip_of(text_of(150000)), text_of(150000));
}

TEST(ByteSourceTest, AGzipFileOfNothingHasNoBytes) {
  expect_whole(gzip_of(""), "");
}

TEST(ByteSourceTest, GzipMembersFollowEachOther) {
  expect_whole(gzip_of("AC") + gzip_of("") + gzip_of("GT"), "ACGT");
}

TEST(ByteSourceTest, ABgzfFileIsDecompressed) {
  expect_whole(bgzf_of(text_of(150000)), text_of(150000));
}

TEST(ByteSourceTest, ABgzfFileOfNothingHasNoBytes) {
  expect_whole(bgzf_of(""), "");
}

TEST(ByteSourceTest, BgzfFilesFollowEachOther) {
  expect_whole(bgzf_of("AC") + bgzf_of("GT"), "ACGT");
}

TEST(ByteSourceTest, AGzipMemberMayFollowABgzfFile) {
  expect_whole(bgzf_of("AC") + gzip_of("GT"), "ACGT");
}

TEST(ByteSourceTest, ABgzfFileMayFollowAGzipMember) {
  expect_whole(gzip_of("AC") + bgzf_of("GT"), "ACGT");
}

TEST(ByteSourceTest, AMissingEndMarkerIsNoticedAtTheEnd) {
  const Outcome outcome = read_all(bgzf_blocks("ACGT"));
  EXPECT_EQ(outcome.bytes, "ACGT");
  EXPECT_EQ(outcome.error, -1);
  EXPECT_TRUE(outcome.lacks_end_marker);
}

TEST(ByteSourceTest, TheBytesOfWholeBlocksComeBeforeADamagedOne) {
  const std::string damaged(40, '\0');
  expect_damaged(bgzf_blocks("ACGTA", 2) + damaged, "ACGTA");
  std::string last = bgzf_block("TTTT");
  last[last.size() - 6] ^= 1;  // the checksum
  expect_damaged(bgzf_blocks("ACGTA", 2) + last, "ACGTA");
}

TEST(ByteSourceTest, ABlockThatEndsTooEarlyIsDamaged) {
  const std::string blocks = bgzf_blocks("ACGTA", 5);
  for (std::size_t size = 2; size < blocks.size(); ++size) expect_damaged(blocks.substr(0, size), "");
}

TEST(ByteSourceTest, OfAGzipMemberThatEndsTooEarlyTheBeginningIsHandedOut) {
  const std::string text = text_of(100000);
  const std::string member = gzip_of(text);
  for (const std::size_t missing : {std::size_t{1}, std::size_t{40}, member.size() / 2, member.size() - 2}) {
    for (const std::size_t step : {std::size_t{7}, std::size_t{100000}}) {
      const Outcome outcome = read_all(member.substr(0, member.size() - missing), step);
      EXPECT_EQ(outcome.error, FASTA_DAMAGED_COMPRESSION) << missing;
      EXPECT_EQ(outcome.bytes, text.substr(0, outcome.bytes.size())) << missing;
      EXPECT_EQ(outcome.bytes.size() == text.size(), missing == 1) << missing;
      EXPECT_EQ(outcome.bytes.size() > text.size() / 4, missing < member.size() - 2) << missing;
    }
  }
}

TEST(ByteSourceTest, AGzipMemberWithAWrongChecksumIsDamaged) {
  std::string member = gzip_of("ACGTA");
  member[member.size() - 6] ^= 1;
  expect_damaged(member, "");
}

TEST(ByteSourceTest, OtherBytesBehindAGzipMemberAreDamage) {
  expect_damaged(gzip_of("ACGTA") + "ACGTA", "");
}

TEST(ByteSourceTest, WhatCannotBeOpenedIsNotOpen) {
  const test::TempDir dir;
  EXPECT_FALSE(ByteSource(dir.path("missing")).is_open());
  EXPECT_FALSE(ByteSource(dir.path()).is_open());
  EXPECT_FALSE(ByteSource("").is_open());
  EXPECT_FALSE(ByteSource("data:,ACGT").is_open());
}

}  // namespace
