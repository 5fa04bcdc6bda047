// SPDX-License-Identifier: Apache-2.0
// Reports of calls, in memory that serves again and again.
#ifndef LUMORA_PIPELINE_SUPPORT_REPORTED_H_
#define LUMORA_PIPELINE_SUPPORT_REPORTED_H_

#include <utility>

#include "lumora/pipeline/report.h"
#include "lumora/pipeline/status.h"
#include "pipeline/support/guarded.h"

namespace lumora {

/// Makes a report that of no call, and keeps its memory.
inline void Clear(Report* report) {
  Report empty;
  const auto keep = [](auto& from, auto& to) {
    from.clear();
    to.swap(from);
  };
  keep(report->tones, empty.tones);
  keep(report->blocks, empty.blocks);
  *report = std::move(empty);
}

/// Where calls leave what they did: in their caller's report, or in one that nobody reads.
class ReportPlace {
 public:
  Report* For(Report* wanted) {
    if (wanted != nullptr) return wanted;
    Clear(&unread_);
    return &unread_;
  }

 private:
  Report unread_;
};

/// What `work` returns; `report`, which may be null, is empty when it begins and when it fails.
template <typename Work>
Status Reported(Report* report, Work work) {
  if (report != nullptr) Clear(report);
  Status status = Guarded(work);
  if (report != nullptr && !status.ok()) Clear(report);
  return status;
}

}  // namespace lumora

#endif  // LUMORA_PIPELINE_SUPPORT_REPORTED_H_
