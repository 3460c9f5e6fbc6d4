// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the data plane throws.
#pragma once

#include "domain/MeasureValue.h"
#include "region/QelExport.h"

#include <exception>
#include <string>

namespace ex {

/// A failure told in one sentence.
class QEL_EXPORT TAVSimpleException : public std::exception {
public:
    explicit TAVSimpleException(std::string const& message);
    char const* what() const noexcept override;

private:
    std::string message_;
};

/// A measured value is of a type that cannot be stored; not a TAVSimpleException.
class QEL_EXPORT InvalidTypeException : public std::exception {
public:
    explicit InvalidTypeException(measval::MeasureValueType type);
    char const* what() const noexcept override;

private:
    std::string message_;
};

/// A sensor id names nothing that is known here; not a TAVSimpleException.
class QEL_EXPORT InvalidSensorIdException : public std::exception {
public:
    explicit InvalidSensorIdException(long long svid);
    char const* what() const noexcept override;

private:
    std::string message_;
};

} // namespace ex
