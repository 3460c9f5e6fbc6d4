// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/Exceptions.h"

#include "domain/SensorIdentifier.h"

namespace ex {

// NOLINTNEXTLINE(modernize-pass-by-value): programs already compiled pass a reference.
TAVSimpleException::TAVSimpleException(std::string const& message) : message_(message) {}

char const* TAVSimpleException::what() const noexcept {
    return message_.c_str();
}

InvalidTypeException::InvalidTypeException(measval::MeasureValueType type)
    : message_("Measure Value has invalid type " + measval::mvtToStr(type)) {}

char const* InvalidTypeException::what() const noexcept {
    return message_.c_str();
}

InvalidSensorIdException::InvalidSensorIdException(long long svid)
    : message_("The sensor identifier " + SensorIdentifier::explain(svid) + " is invalid") {}

char const* InvalidSensorIdException::what() const noexcept {
    return message_.c_str();
}

} // namespace ex
