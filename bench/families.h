// SPDX-License-Identifier: Apache-2.0
// The families of benchmarks; each function registers one.
#ifndef LUMORA_BENCH_FAMILIES_H_
#define LUMORA_BENCH_FAMILIES_H_

namespace lumora::bench {

void RegisterConvert();    ///< frames to texels on the CPU
void RegisterSlimming();   ///< slimming of preview frames
void RegisterWhitening();  ///< whitening of preview frames
void RegisterCapture();    ///< blocks of captures
void RegisterStartUp();    ///< programs and first frames, in processes of their own
void RegisterMemory();     ///< peak memory of a capture, in a process of its own
void RegisterPipeline();   ///< the pipeline over the engine
void RegisterCpu();        ///< the pipeline on the cpu
void RegisterKernels();    ///< the cpu's kernels and their plain forms
void RegisterPhoto();      ///< the command over a photo, where the tools are built
void RegisterStages();     ///< times of single steps, without anything to compare with

}  // namespace lumora::bench

#endif  // LUMORA_BENCH_FAMILIES_H_
