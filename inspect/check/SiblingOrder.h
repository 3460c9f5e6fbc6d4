// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The order in which siblings are shown.
#pragma once

namespace qel::inspect {

/// Whether a point belongs before another one of the same list: electrical points, then residual-current monitors,
/// I2C sensors and socket groups; among themselves by id, I2C sensors by phase and circuit. This order holds between
/// all points of these kinds, however points came and went. False for a point of another kind, which stands anywhere.
/// Any thread.
bool belongsBefore(long long svid, long long other);

/// Whether a point has a kind that takes part in the order. Any thread.
bool isOrdered(long long svid);

} // namespace qel::inspect
