// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/CaptureReader.h"

#include "inspect/capture/CaptureWriter.h"

#include "tests/inspect/capture/CaptureFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace qel::inspect {

namespace {

using testing::HasSubstr;

class CaptureReaderTest : public test::CaptureTest {
protected:
    /// A capture of random images, 50 ms apart; gives the offset of each sample and of the end.
    std::vector<std::size_t> record(std::size_t count) {
        images_ = test::randomImages(count, 21);
        CaptureWriter writer(path(), 1'700'000'000'000);
        auto const end = [&] {
            return static_cast<std::size_t>(writer.size());
        };
        std::vector<std::size_t> offsets{end()};
        for (std::size_t index = 0; index < count; ++index) {
            writer.append(7 + index * 50, images_[index]);
            offsets.push_back(end());
        }
        return offsets;
    }

    /// Reads as many samples as there are and compares them.
    void expectSamples(CaptureReader& sut, std::size_t count) const {
        for (std::size_t index = 0; index < count; ++index) {
            auto const sample = sut.next();
            ASSERT_TRUE(sample);
            EXPECT_EQ(7 + index * 50, sample->time);
            test::expectSame(images_[index], sample->image);
        }
        EXPECT_EQ(count, sut.samples());
    }

    std::string problemAfter(std::size_t count) const {
        CaptureReader sut(path("damaged"));
        expectSamples(sut, count);
        auto problem = problemOf([&] { sut.next(); });
        EXPECT_EQ(problem, problemOf([&] { sut.next(); })) << "it stays";
        return problem;
    }

    std::vector<Image> images_;
};

} // namespace

TEST_F(CaptureReaderTest, Samples_AreTheCapturedImages) {
    auto const offsets = record(40);
    CaptureReader sut(path());
    EXPECT_EQ(1'700'000'000'000U, sut.startTime());
    EXPECT_EQ(offsets.front(), sut.offset());
    expectSamples(sut, 40);
    EXPECT_EQ(offsets.back(), sut.offset());
    EXPECT_FALSE(sut.next());
    EXPECT_FALSE(sut.next());
}

TEST_F(CaptureReaderTest, WithoutSamplesThereAreNone) {
    record(0);
    CaptureReader sut(path());
    EXPECT_FALSE(sut.next());
}

TEST_F(CaptureReaderTest, CutOffAnywhere_KeepsTheSamplesBefore) {
    auto const offsets = record(9);
    auto const whole = content(path());
    ASSERT_EQ(offsets.back(), whole.size());
    // Around every boundary, and at some places in between.
    std::vector<std::size_t> ends;
    for (std::size_t index = 0; index < 9; ++index) {
        for (auto const behind : {0U, 1U, 7U, 8U, 9U, 20U}) {
            ends.push_back(offsets[index] + behind);
        }
        ends.push_back(offsets[index + 1] - 1);
    }
    for (auto const end : ends) {
        auto const complete = static_cast<std::size_t>(std::upper_bound(offsets.begin(), offsets.end(), end) -
                                                       offsets.begin() - 1);
        fill(path("damaged"), whole.substr(0, end));
        if (end == offsets[complete]) {
            CaptureReader sut(path("damaged"));
            expectSamples(sut, complete);
            EXPECT_FALSE(sut.next());
        } else {
            auto const count =
                complete == 1 ? "1 sample before it is" : std::to_string(complete) + " samples before it are";
            EXPECT_EQ("cannot read " + path("damaged") + ": the sample at byte " +
                          std::to_string(offsets[complete]) + " is cut off; " + count + " complete",
                      problemAfter(complete))
                << "end " << end;
        }
    }
}

TEST_F(CaptureReaderTest, DamagedAnywhere_NamesTheSample) {
    auto const offsets = record(5);
    auto const whole = content(path());
    for (std::size_t index = 0; index < 5; ++index) {
        for (auto const byte : {offsets[index], offsets[index] + 3, offsets[index] + 4, offsets[index] + 8,
                                offsets[index + 1] - 1}) {
            auto damaged = whole;
            damaged[byte] = static_cast<char>(damaged[byte] ^ 0x40);
            fill(path("damaged"), damaged);
            EXPECT_THAT(problemAfter(index),
                        HasSubstr("the sample at byte " + std::to_string(offsets[index]) + " is "))
                << "byte " << byte;
        }
    }
}

TEST_F(CaptureReaderTest, WrongChecksumAndLength_AreNamed) {
    auto const offsets = record(2);
    auto damaged = content(path());
    damaged[offsets[1] + 8] = static_cast<char>(damaged[offsets[1] + 8] ^ 1);
    fill(path("damaged"), damaged);
    EXPECT_THAT(problemAfter(1),
                HasSubstr("is damaged: the checksum is wrong; 1 sample before it is complete"));
    damaged[offsets[1] + 3] = '\x7F';
    fill(path("damaged"), damaged);
    EXPECT_THAT(problemAfter(1), HasSubstr("is damaged: there is no sample of that length"));
}

TEST_F(CaptureReaderTest, TimeBeyondAllBounds_IsDamage) {
    fill(path("damaged"), captureHeader(0) +
                              frameOf(std::numeric_limits<std::uint64_t>::max(), Image(), Image()) +
                              frameOf(1, Image(), Image()));
    CaptureReader sut(path("damaged"));
    EXPECT_EQ(std::numeric_limits<std::uint64_t>::max(), sut.next().value().time);
    EXPECT_THAT(problemOf([&] { sut.next(); }), HasSubstr("is damaged: the time is out of range"));
}

TEST_F(CaptureReaderTest, WhatIsNoCapture_IsRefused) {
    auto const refused = [&](std::string const& bytes) {
        fill(path(), bytes);
        return problemOf([&] { CaptureReader sut(path()); });
    };
    auto const prefix = "cannot read " + path() + ": ";
    EXPECT_EQ(prefix + "it is not a capture, or it ends within the header", refused(""));
    EXPECT_EQ(prefix + "it is not a capture, or it ends within the header",
              refused(captureHeader(0).substr(0, 27)));
    EXPECT_EQ(prefix + "it is not a capture", refused(std::string(1000, 'x')));
    EXPECT_EQ("cannot read " + path("none") + ": No such file or directory",
              problemOf([&] { CaptureReader sut(path("none")); }));
    EXPECT_EQ("cannot read " + path("") + ": Is a directory",
              problemOf([&] { CaptureReader sut(path("")); }));
}

TEST_F(CaptureReaderTest, Pipe_IsReadToo) {
    record(3);
    auto const bytes = content(path());
    int ends[2] = {-1, -1};
    ASSERT_EQ(0, ::pipe(ends));
    std::thread feeder([&] {
        for (std::size_t done = 0; done < bytes.size();) { // in small pieces
            auto const count = std::min<std::size_t>(1001, bytes.size() - done);
            ASSERT_EQ(static_cast<ssize_t>(count), ::write(ends[1], bytes.data() + done, count));
            done += count;
        }
        ::close(ends[1]);
    });
    CaptureReader sut("/dev/fd/" + std::to_string(ends[0]));
    expectSamples(sut, 3);
    EXPECT_FALSE(sut.next());
    feeder.join();
    ::close(ends[0]);
}

// The writing process is killed while it writes as fast as it can.
TEST_F(CaptureReaderTest, KilledWriter_LosesNoCompleteSample) {
    images_ = test::randomImages(20, 21);
    int ends[2] = {-1, -1};
    ASSERT_EQ(0, ::pipe(ends));
    pid_t const child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        CaptureWriter writer(path(), 0);
        for (std::size_t index = 0;; ++index) {
            writer.append(7 + index * 50, images_[index % images_.size()]);
            if (::write(ends[1], "x", 1) != 1) {
                ::_exit(1);
            }
        }
    }
    ::close(ends[1]);
    char tick = 0;
    std::size_t written = 0;
    while (written < 30 && ::read(ends[0], &tick, 1) == 1) {
        ++written;
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    while (::read(ends[0], &tick, 1) == 1) {
        ++written;
    }
    ::close(ends[0]);

    CaptureReader sut(path());
    std::size_t read = 0;
    auto const problem = problemOf([&] {
        while (auto const sample = sut.next()) {
            test::expectSame(images_[read % images_.size()], sample->image);
            ++read;
        }
    });
    EXPECT_GE(written, 30U);
    EXPECT_GE(read, written);
    EXPECT_LE(read, written + 1);
    EXPECT_TRUE(problem == "(none)" || problem.find("is cut off") != std::string::npos) << problem;
}

} // namespace qel::inspect
