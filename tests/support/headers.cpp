// SPDX-License-Identifier: Apache-2.0
// Nothing: the target is there for what it precompiles.
