// SPDX-License-Identifier: Apache-2.0
// A locale whose decimal point is a comma, made on the spot: no machine needs to have one
// installed.
#ifndef LUMORA_TESTS_SUPPORT_COMMA_LOCALE_H_
#define LUMORA_TESTS_SUPPORT_COMMA_LOCALE_H_

#include <string>

#include "support/scoped.h"

namespace lumora::test {

/// The numbers of this process have a decimal comma while it lives.
class CommaLocale {
 public:
  CommaLocale();
  ~CommaLocale();
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;

 private:
  TempDirectory directory_;
  ScopedEnvironment path_;
  std::string former_;
};

}  // namespace lumora::test

#endif  // LUMORA_TESTS_SUPPORT_COMMA_LOCALE_H_
