// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Powers of ten between a value and its fixed-point form.
#pragma once

namespace tav {

/// Digits after the point of the key's fixed-point form, 0 for a key without a scale.
/// Logs at WARN in "qel.shm.access.format" that a key has no scale.
///
/// Threads: reentrant.
unsigned int scalepos(unsigned short key);

/// 10 to the power of a scale position, and its inverse.
///
/// Threads: reentrant.
/// @throws std::out_of_range for a position above 5
double scaleFactor(unsigned int position);
double inverseScaleFactor(unsigned int position);

} // namespace tav
