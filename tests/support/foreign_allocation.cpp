// SPDX-License-Identifier: Apache-2.0
#include "support/foreign_allocation.h"

#include <new>
#include <string>

namespace lumora::test {

void AllocateElsewhere() {
  ::operator delete(::operator new(1));
  const volatile char last = std::string(100, 'x').back();
  static_cast<void>(last);
}

void CallFromElsewhere(void (*work)()) {
  work();
}

}  // namespace lumora::test
