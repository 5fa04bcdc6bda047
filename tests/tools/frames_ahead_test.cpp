// SPDX-License-Identifier: Apache-2.0
// Frames that are read and searched ahead: the same whatever takes how long, and no further ahead
// than is of use.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/tools/clips.h"
#include "tests/tools/pictures.h"
#include "tests/tools/process.h"
#include "tools/lumora/support/failure.h"
#include "tools/lumora/video/frames_ahead.h"

namespace lumora::test {
namespace {

using testing::HasSubstr;
using tools::FramesAhead;
using tools::PixelView;

void Pause(int milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

/// A clip whose frames are filled with their numbers.
std::string NumberedClip(int frames, int side = 32) {
  const std::string size = std::to_string(side);
  std::string text = "YUV4MPEG2 W" + size + " H" + size + " F25:1\n";
  for (int i = 0; i < frames; ++i) {
    text += "FRAME I" + std::to_string(i) + "\n";
    text += std::string(static_cast<size_t>(side * side * 3 / 2), static_cast<char>(i));
  }
  return text;
}

/// One face a frame, as wide as the frame's samples are large. Takes a while in every n-th frame.
class NumberedFaces final : public tools::FaceSource {
 public:
  explicit NumberedFaces(int every, int pause = 0, int fails_at = -1)
      : every_(every), pause_(pause), fails_at_(fails_at) {}

  std::vector<Face> Next(const PixelView& luma) override {
    const int frame = asked_++;
    if (frame == fails_at_) throw std::runtime_error("no more faces");
    if (frame % every_ == 0) Pause(pause_);
    Face face;
    face.box.width = static_cast<float>(luma.pixels[0]);
    return {face};
  }

  int search_every() const override { return every_; }
  int asked() const { return asked_; }

 private:
  int every_, pause_, fails_at_;
  std::atomic<int> asked_{0};
};

/// The frames of a clip as they come out, after a pause each.
void ExpectNumbered(const std::string& path, NumberedFaces& faces, int frames, int pause) {
  tools::ReadStop stop;
  tools::Y4mReader reader(path, &stop);
  FramesAhead ahead(reader, faces, stop);
  for (int i = 0; i < frames; ++i) {
    const FramesAhead::Frame* const frame = ahead.Next();
    ASSERT_NE(frame, nullptr) << i;
    Pause(pause);
    EXPECT_EQ(frame->line, "FRAME I" + std::to_string(i));
    EXPECT_THAT(frame->samples.bytes(), testing::Each(i));
    ASSERT_EQ(frame->faces.size(), 1u);
    EXPECT_EQ(frame->faces[0].box.width, static_cast<float>(i));
  }
  EXPECT_EQ(ahead.Next(), nullptr);
  EXPECT_EQ(ahead.Next(), nullptr);
}

TEST(FramesAhead, ComeInOrderWithTheirOwnFacesWhateverIsSlow) {
  const Folder folder;
  const std::string path = folder.Put("in.y4m", NumberedClip(40));
  for (const int every : {1, 3, 100}) {
    for (const int search : {0, 3}) {
      for (const int processing : {0, 1}) {
        SCOPED_TRACE(testing::PrintToString(std::vector<int>{every, search, processing}));
        NumberedFaces faces(every, search);
        ExpectNumbered(path, faces, 40, processing);
      }
    }
  }
}

TEST(FramesAhead, ASearchRunsWhileTheFramesBeforeItAreProcessed) {
  const Folder folder;
  tools::ReadStop stop;
  tools::Y4mReader reader(folder.Put("in.y4m", NumberedClip(40)), &stop);
  NumberedFaces faces(5);
  FramesAhead ahead(reader, faces, stop);
  ahead.Next();
  // The frame in hand, and without anything more of it the search of the next but one.
  for (int i = 0; i < 2000 && faces.asked() < 11; ++i) Pause(1);
  Pause(20);
  EXPECT_EQ(faces.asked(), 11);
}

TEST(FramesAhead, LargeFramesAreNotHoarded) {
  const Folder folder;
  const std::string path = folder / "large.y4m";
  // 8000 x 8000: larger than what is kept ahead, so that there is one at a time.
  folder.Put("large.y4m", std::string("YUV4MPEG2 W8000 H8000 F25:1 Cmono\n"));
  for (int i = 1; i <= 2; ++i) {
    const int fd = open(path.c_str(), O_WRONLY | O_APPEND);
    ASSERT_EQ(write(fd, "FRAME\n", 6), 6);
    ASSERT_EQ(ftruncate(fd, lseek(fd, 0, SEEK_END) + 64000000), 0);
    close(fd);
  }
  tools::ReadStop stop;
  tools::Y4mReader reader(path, &stop);
  NumberedFaces faces(5);
  FramesAhead ahead(reader, faces, stop);
  const FramesAhead::Frame* const first = ahead.Next();
  ASSERT_NE(first, nullptr);
  Pause(100);
  EXPECT_EQ(faces.asked(), 1);
  EXPECT_EQ(ahead.Next(), first);
  EXPECT_EQ(ahead.Next(), nullptr);
}

TEST(FramesAhead, WhatFailsIsToldAfterTheFramesBeforeIt) {
  const Folder folder;
  const std::string whole = NumberedClip(8);
  const std::string path = folder.Put("in.y4m", whole.substr(0, whole.size() - 1));
  for (const int fails_at : {-1, 3}) {
    tools::ReadStop stop;
    tools::Y4mReader reader(path, &stop);
    NumberedFaces faces(2, 0, fails_at);
    FramesAhead ahead(reader, faces, stop);
    for (int i = 0; i < (fails_at < 0 ? 7 : fails_at); ++i) ASSERT_NE(ahead.Next(), nullptr) << i;
    try {
      ahead.Next();
      ADD_FAILURE();
    } catch (const std::runtime_error& error) {
      EXPECT_THAT(error.what(), HasSubstr(fails_at < 0 ? "frame 8: cut short" : "no more faces"));
    }
  }
}

/// A pipe with a name, filled from here, which is not at its end before this object is.
class NamedPipe {
 public:
  explicit NamedPipe(const std::string& path) : path_(path) {
    EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
  }
  ~NamedPipe() { Close(); }
  NamedPipe(const NamedPipe&) = delete;
  NamedPipe& operator=(const NamedPipe&) = delete;

  /// Waits for the other side.
  void Open(int mode) { fd_ = open(path_.c_str(), mode); }

  void Close() {
    if (fd_ >= 0) close(fd_);
    fd_ = -1;
  }

  void Write(const std::string& text) const {
    ASSERT_EQ(write(fd_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }

  std::string Read(size_t count) const {
    std::string text(count, '\0');
    size_t got = 0;
    for (ssize_t part; got < count && (part = read(fd_, &text[got], count - got)) > 0;) {
      got += static_cast<size_t>(part);
    }
    return text.substr(0, got);
  }

 private:
  std::string path_;
  int fd_ = -1;
};

TEST(FramesAhead, WaitForNoInputWhenNobodyWantsIt) {
  const Folder folder;
  NamedPipe pipe(folder / "in");
  std::thread opener([&] {
    pipe.Open(O_WRONLY);
    pipe.Write(NumberedClip(1));
  });
  tools::ReadStop stop;
  tools::Y4mReader reader(folder / "in", &stop);
  NumberedFaces faces(1);
  {
    FramesAhead ahead(reader, faces, stop);
    EXPECT_NE(ahead.Next(), nullptr);
    Pause(20);  // by then the thread waits for the frame that never comes
  }
  opener.join();
}

/// With everything off, so that it needs no display.
std::vector<std::string> VideoWords(const std::string& in, const std::string& out) {
  return {"video", in, "-o", out, "--slim", "0"};
}

TEST(VideoStreams, AFailureDoesNotWaitForMoreInput) {
  const Folder folder;
  NamedPipe pipe(folder / "in");
  std::thread writer([&] {
    pipe.Open(O_WRONLY);
    pipe.Write(NumberedClip(1));
  });
  const Result result = RunLumora(VideoWords(folder / "in", "/dev/full"));
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_THAT(result.err, HasSubstr("cannot write /dev/full: No space left on device"));
  writer.join();
}

TEST(VideoStreams, AFrameComesOutBeforeTheNextOneGoesIn) {
  const Folder folder;
  NamedPipe in(folder / "in"), out(folder / "out");
  const std::string clip = NumberedClip(3);
  const size_t header = clip.find('\n') + 1, frame = (clip.size() - header) / 3;
  Result result;
  std::thread command([&] { result = RunLumora(VideoWords(folder / "in", folder / "out")); });
  in.Open(O_WRONLY);
  in.Write(clip.substr(0, header));
  out.Open(O_RDONLY);
  EXPECT_EQ(out.Read(header), clip.substr(0, header));
  for (size_t at = header; at < clip.size(); at += frame) {
    in.Write(clip.substr(at, frame));
    EXPECT_TRUE(out.Read(frame) == clip.substr(at, frame)) << at;
  }
  in.Close();
  command.join();
  EXPECT_EQ(result.exit_code, 0) << result.err;
}

}  // namespace
}  // namespace lumora::test
