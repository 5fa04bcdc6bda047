// SPDX-License-Identifier: Apache-2.0
// Memory whose ends cannot be crossed unnoticed.
#ifndef LUMORA_TESTS_SUPPORT_GUARDED_BUFFER_H_
#define LUMORA_TESTS_SUPPORT_GUARDED_BUFFER_H_

#include <cstddef>
#include <cstdint>

namespace lumora::test {

/// `size` bytes between two inaccessible pages: an access past the guarded end faults at once.
/// The other end is only guarded up to the page: bytes between buffer and page hold kFill, and
/// `intact` tells whether they still do.
class GuardedBuffer {
 public:
  enum class Guard {
    End,   ///< the last byte touches the inaccessible page behind
    Begin  ///< the first byte touches the inaccessible page before
  };
  static constexpr uint8_t kFill = 0x66;

  /// The buffer's own bytes start as kFill.
  explicit GuardedBuffer(size_t size, Guard guard = Guard::End);
  ~GuardedBuffer();
  GuardedBuffer(const GuardedBuffer&) = delete;
  GuardedBuffer& operator=(const GuardedBuffer&) = delete;

  uint8_t* data() { return data_; }
  const uint8_t* data() const { return data_; }
  size_t size() const { return size_; }
  /// Whether nothing was written between the buffer and its unguarded end's page.
  bool intact() const;
  /// From now on writing into the buffer faults; reading does not.
  void protect_from_writing();

 private:
  uint8_t* mapping_ = nullptr;  // guard page, pages of the buffer, guard page
  size_t mapped_ = 0;
  uint8_t* data_ = nullptr;
  size_t size_ = 0;
};

}  // namespace lumora::test

#endif  // LUMORA_TESTS_SUPPORT_GUARDED_BUFFER_H_
