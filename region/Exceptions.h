// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The exceptions of the data plane.
#pragma once

#include "domain/MeasureValue.h"
#include "region/QelExport.h"

#include <exception>
#include <string>

/// Exceptions of the data plane.
namespace ex {

/// A failure, described in one sentence.
///
/// Threads: reentrant.
class QEL_EXPORT TAVSimpleException : public std::exception {
public:
    /// @param message what failed
    explicit TAVSimpleException(std::string const& message);

    /// @return the message, valid as long as this object
    char const* what() const noexcept override;

private:
    std::string message_;
};

/// The type of a measured value cannot be stored. Not a TAVSimpleException.
///
/// Threads: reentrant.
class QEL_EXPORT InvalidTypeException : public std::exception {
public:
    /// @param type the type that cannot be stored
    explicit InvalidTypeException(measval::MeasureValueType type);

    /// @return a sentence that names the type, valid as long as this object
    char const* what() const noexcept override;

private:
    std::string message_;
};

/// A sensor id names no known point. Not a TAVSimpleException.
///
/// Threads: reentrant.
class QEL_EXPORT InvalidSensorIdException : public std::exception {
public:
    /// @param svid the id without a place
    explicit InvalidSensorIdException(long long svid);

    /// @return a sentence that explains the id, valid as long as this object
    char const* what() const noexcept override;

private:
    std::string message_;
};

} // namespace ex
