// The export macro of libLumoraPipeline.
#ifndef LUMORA_PIPELINE_EXPORT_H_
#define LUMORA_PIPELINE_EXPORT_H_

#define LUMORA_PIPELINE_API __attribute__((visibility("default")))

#endif  // LUMORA_PIPELINE_EXPORT_H_
