// SPDX-License-Identifier: Apache-2.0
// Outline variant: a red band on the outer rim of the warped region.
  if(ratio>0.95 && ratio<1.0) gl_FragColor = vec4(1.0, 0.0, 0.0, 1.0);
