// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/Exceptions.h"

#include <gtest/gtest.h>

#include <exception>
#include <string>
#include <type_traits>

namespace {

TEST(ExceptionsTest, EachDerivesFromStdExceptionAlone) {
    static_assert(std::is_base_of_v<std::exception, ex::TAVSimpleException>);
    static_assert(std::is_base_of_v<std::exception, ex::InvalidTypeException>);
    static_assert(std::is_base_of_v<std::exception, ex::InvalidSensorIdException>);
    static_assert(!std::is_base_of_v<ex::TAVSimpleException, ex::InvalidTypeException>);
    static_assert(!std::is_base_of_v<ex::TAVSimpleException, ex::InvalidSensorIdException>);
    try {
        throw ex::InvalidSensorIdException(1);
    } catch (ex::TAVSimpleException const&) {
        FAIL() << "caught as TAVSimpleException";
    } catch (std::exception const& error) {
        EXPECT_STRNE(error.what(), "");
    }
}

TEST(ExceptionsTest, TavSimpleException_CarriesACopyOfTheMessage) {
    std::string message = "what happened";
    ex::TAVSimpleException const sut(message);
    message = "something else";
    EXPECT_STREQ(sut.what(), "what happened");
    EXPECT_STREQ(ex::TAVSimpleException("").what(), "");
}

TEST(ExceptionsTest, TavSimpleException_CopyOutlivesTheOriginal) {
    std::exception_ptr held;
    try {
        throw ex::TAVSimpleException("a message that is too long to be stored inside of a string object");
    } catch (...) {
        held = std::current_exception();
    }
    try {
        std::rethrow_exception(held);
    } catch (ex::TAVSimpleException const& error) {
        EXPECT_STREQ(error.what(), "a message that is too long to be stored inside of a string object");
    }
}

TEST(ExceptionsTest, InvalidTypeException_NamesTheType) {
    EXPECT_STREQ(ex::InvalidTypeException(measval::Undefined).what(),
                 "Measure Value has invalid type Undefined");
    EXPECT_STREQ(ex::InvalidTypeException(measval::Bool).what(), "Measure Value has invalid type Bool");
    EXPECT_STREQ(ex::InvalidTypeException(measval::Integer).what(), "Measure Value has invalid type Integer");
    EXPECT_STREQ(ex::InvalidTypeException(measval::Double).what(), "Measure Value has invalid type Double");
    EXPECT_STREQ(ex::InvalidTypeException(measval::String).what(), "Measure Value has invalid type String");
    EXPECT_STREQ(ex::InvalidTypeException(static_cast<measval::MeasureValueType>(9)).what(),
                 "Measure Value has invalid type Unknown");
}

TEST(ExceptionsTest, InvalidSensorIdException_ExplainsTheId) {
    EXPECT_STREQ(
        ex::InvalidSensorIdException(0x0100010203050001LL).what(),
        "The sensor identifier 0x0100010203050001 (Electrical, device 1, inlet 1, phase 2, circuit 3, "
        "socket 5, key 0x1) is invalid");
    EXPECT_STREQ(ex::InvalidSensorIdException(-1).what(),
                 "The sensor identifier 0xffffffffffffffff (Undefined, key 0xffff) is invalid");
}

} // namespace
