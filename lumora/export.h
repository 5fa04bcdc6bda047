// The export macro of libLumora: everything else in the library is hidden.
#ifndef LUMORA_EXPORT_H_
#define LUMORA_EXPORT_H_

#define LUMORA_API __attribute__((visibility("default")))

#endif  // LUMORA_EXPORT_H_
