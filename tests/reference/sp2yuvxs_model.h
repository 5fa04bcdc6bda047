// SPDX-License-Identifier: Apache-2.0
// A slow model of sp2yuvxs() that follows its row arithmetic one byte at a time.
#ifndef TESTS_CONVERT_SP2YUVXS_MODEL_H_
#define TESTS_CONVERT_SP2YUVXS_MODEL_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <ostream>
#include <vector>

// Bytes on both sides of an origin. Offsets outside throw std::out_of_range. It remembers which
// bytes were asked for.
class Arena {
 public:
  explicit Arena(std::size_t bytes_on_each_side)
      : bytes_(2 * bytes_on_each_side), origin_(bytes_on_each_side) {}

  std::uint8_t& operator[](long offset) {
    lowest_ = std::min(lowest_, offset);
    end_ = std::max(end_, offset + 1);
    return bytes_.at(origin_ + static_cast<std::size_t>(offset));
  }
  std::uint8_t* origin() { return bytes_.data() + origin_; }
  std::vector<std::uint8_t>& bytes() { return bytes_; }
  const std::vector<std::uint8_t>& bytes() const { return bytes_; }

  // The range of the offsets that were used so far: its first one, and how many bytes it has.
  long lowest() const { return end_ > lowest_ ? lowest_ : 0; }
  std::size_t touched() const {
    return end_ > lowest_ ? static_cast<std::size_t>(end_ - lowest_) : 0;
  }

 private:
  std::vector<std::uint8_t> bytes_;
  std::size_t origin_;
  long lowest_ = std::numeric_limits<long>::max();
  long end_ = std::numeric_limits<long>::min();
};

enum class Form { kA, kB, kC };

// The arguments of a call, in the order of form C; dstHeight is not used by form A.
struct Geometry {
  int dstStride, dstHeight, srcStride, srcHeight, x, y, w, h;
};
std::ostream& operator<<(std::ostream& out, const Geometry& g);

// What the call does to `dst`. In forms A and B, `chroma` is the same arena as `luma`.
void ModelSp2yuvxs(Form form, Arena& dst, Arena& luma, Arena& chroma, const Geometry& g);

#endif  // TESTS_CONVERT_SP2YUVXS_MODEL_H_
