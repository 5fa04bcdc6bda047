// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/video/frames_ahead.h"

#include <algorithm>
#include <new>
#include <system_error>
#include <utility>

#include "tools/lumora/picture/raw_frame.h"

namespace lumora::tools {
namespace {

constexpr size_t kMostBytes = size_t{64} << 20;

PixelView LumaOf(const ClipFrame& frame) {
  const ConstFrameView view = frame.View();
  return {view.planes[0], {view.width, view.height}, 1, static_cast<size_t>(view.strides[0])};
}

/// So many that a search finds its frame read when the one before it is done, while the frames in
/// between are processed.
size_t MostFrames(const Y4mHeader& header, int search_every) {
  const size_t wanted = 2 * static_cast<size_t>(search_every) + 1;
  return std::clamp(kMostBytes / RawFrameBytes(header.size), size_t{1}, wanted);
}

}  // namespace

FramesAhead::FramesAhead(Y4mReader& reader, FaceSource& faces, ReadStop& stop)
    : reader_(reader),
      faces_(faces),
      stop_(stop),
      most_(MostFrames(reader.header(), faces.search_every())) {
  try {
    thread_ = std::thread([this] { Work(); });
  } catch (const std::system_error&) {
    throw std::bad_alloc();  // its stack did not fit
  }
}

FramesAhead::~FramesAhead() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopping_ = true;
    if (!ended_) stop_.Set();
  }
  changed_.notify_all();
  thread_.join();
}

FramesAhead::Frame* FramesAhead::Next() {
  std::unique_lock<std::mutex> lock(mutex_);
  if (current_ != nullptr) {
    free_.push_back(std::move(current_));
    changed_.notify_all();
  }
  changed_.wait(lock, [this] { return ended_ || !ready_.empty(); });
  if (ready_.empty()) {
    if (thrown_ != nullptr) std::rethrow_exception(thrown_);
    return nullptr;
  }
  current_ = std::move(ready_.front());
  ready_.pop_front();
  return current_.get();
}

FramesAhead::FramePointer FramesAhead::Free() {
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait(lock, [this] { return stopping_ || !free_.empty() || made_ < most_; });
  if (stopping_) return nullptr;
  if (free_.empty()) {
    auto frame = std::make_unique<Frame>(reader_.header());
    ++made_;
    return frame;
  }
  FramePointer frame = std::move(free_.back());
  free_.pop_back();
  return frame;
}

void FramesAhead::Work() {
  std::exception_ptr thrown;
  try {
    for (FramePointer frame; (frame = Free()) != nullptr && reader_.Read(frame->samples);) {
      frame->line = reader_.frame_line();
      frame->faces = faces_.Next(LumaOf(frame->samples));
      const std::lock_guard<std::mutex> lock(mutex_);
      ready_.push_back(std::move(frame));
      changed_.notify_all();
    }
  } catch (...) {
    thrown = std::current_exception();
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  thrown_ = thrown;
  ended_ = true;
  changed_.notify_all();
}

}  // namespace lumora::tools
