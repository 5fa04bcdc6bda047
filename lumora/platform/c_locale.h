// SPDX-License-Identifier: Apache-2.0
// Numbers in files mean the same whatever language the host program speaks.
#ifndef LUMORA_PLATFORM_C_LOCALE_H_
#define LUMORA_PLATFORM_C_LOCALE_H_

#include <locale.h>  // NOLINT(modernize-deprecated-headers): newlocale is not in the C++ header

namespace lumora::platform {

/// The C locale on this thread while it lives.
class CLocale {
 public:
  CLocale() : c_(newlocale(LC_ALL_MASK, "C", nullptr)), former_(uselocale(c_)) {}
  ~CLocale() {
    if (c_ == nullptr) return;
    uselocale(former_);
    freelocale(c_);
  }
  CLocale(const CLocale&) = delete;
  CLocale& operator=(const CLocale&) = delete;

  /// False without memory for it: the host's locale is still in use.
  bool ok() const { return c_ != nullptr; }

 private:
  const locale_t c_;
  const locale_t former_;
};

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_C_LOCALE_H_
