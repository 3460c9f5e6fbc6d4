// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// What the verbs print of each sample image, compared with golden/. QEL_UPDATE_GOLDEN=1 writes the files anew.
#include "tests/support/RawRegion.h"
#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/qelshm/SampleCapture.h"
#include "tests/tools/qelshm/SampleImages.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <utility>

namespace qel::test {

namespace {

struct Printed {
    char const* verb; ///< as in the file's name
    std::vector<std::string> arguments;
};

/// Of the full image, two levels speak for all of them; one image is shown by all verbs.
std::vector<Printed> printedOf(SampleImage const& sample) {
    std::string const name = sample.name;
    std::vector<std::string> tree{"tree", "--values"};
    if (name == "full") {
        tree.insert(tree.end(), {"--depth", "2"});
    }
    std::vector<Printed> printed{
        {"status", {"status", "--max-age", "60"}}, {"tree", tree}, {"check", {"check"}}, {"why", {"why"}}};
    if (name == "alarm") {
        printed.insert(printed.end(), {{"list", {"list"}},
                                       {"get", {"get", "unit1/sensor1.1", "humidity"}},
                                       {"find", {"find", "alarm"}},
                                       {"error", {"get", "unit9"}},
                                       {"dump", {"dump", "saved.img"}}});
    }
    return printed;
}

std::string goldenFile(SampleImage const& sample, Printed const& printed, char const* format) {
    return std::string(QEL_GOLDEN_DIR "/") + sample.name + '.' + printed.verb + '.' + format;
}

std::string contentOf(std::string const& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

/// The newest delivery of the recorded unit was before all others.
std::string nowOf(SampleImage const& sample) {
    constexpr std::uint64_t lastRow = 1686296372000;
    constexpr std::uint64_t age = 5000;
    return std::to_string((std::string(sample.name) == "recorded" ? lastRow : sampleTime) + age);
}

class GoldenTest : public testing::TestWithParam<SampleImage> {
protected:
    void compare(Printed const& printed, std::string const& format) const {
        std::vector<std::string> arguments{"--image", file_, "--now", nowOf(GetParam())};
        arguments.insert(arguments.end(), printed.arguments.begin(), printed.arguments.end());
        if (format == "json") {
            arguments.emplace_back("--json");
        }
        auto const outcome = runQelshm(arguments);
        EXPECT_EQ(expectedStatus(printed.verb), outcome.status) << printed.verb;
        auto const golden = goldenFile(GetParam(), printed, format.c_str());
        if (std::getenv("QEL_UPDATE_GOLDEN") != nullptr) {
            std::ofstream(golden) << outcome.output;
        }
        EXPECT_EQ(contentOf(golden), outcome.output) << golden;
    }

    /// By what the image is known for.
    static int expectedStatus(std::string const& verb) {
        auto const& sample = GetParam();
        bool const isFine = sample.isActive && sample.isSound;
        if (verb == "error") {
            return 1;
        }
        if (verb == "check") {
            return sample.isUndamaged ? 0 : 1;
        }
        return isFine && (verb != "why" || sample.isOn) ? 0 : 1;
    }

    ImageFolder const folder_;
    std::string const file_ = folder_.add(GetParam().name);
};

} // namespace

TEST_P(GoldenTest, Verbs_PrintWhatTheGoldenFilesHold) {
    for (auto const& printed : printedOf(GetParam())) {
        compare(printed, "txt");
        compare(printed, "json");
    }
}

// A live object has an owner, rights and names; an image has none of them.
TEST(GoldenLiveTest, ObjectOfSomebodyElse_IsPrintedAsTheGoldenFilesHoldIt) {
    constexpr char const* object = "/dev/shm/QelSharedMemory";
    constexpr char const* second = "/dev/shm/second";
    constexpr uid_t withoutName = 3999999999;
    auto const image = sampleImage("healthy");
    RawRegion const raw(true);
    std::memcpy(raw.bytes(), image.bytes().data(), rawRegionSize);
    bool const isGiven = ::chown(object, withoutName, withoutName) == 0;
    EXPECT_EQ(0, ::chmod(object, 0666));
    EXPECT_EQ(0, ::link(object, second));
    for (std::string const verb : {"status", "check"}) {
        for (std::string const format : {"txt", "json"}) {
            std::vector<std::string> arguments{verb, "--now", std::to_string(sampleTime + 5000)};
            if (format == "json") {
                arguments.emplace_back("--json");
            }
            auto const outcome = runQelshm(arguments);
            EXPECT_EQ(1, outcome.status);
            auto const golden = (QEL_GOLDEN_DIR "/live-foreign." + verb).append(".").append(format);
            if (std::getenv("QEL_UPDATE_GOLDEN") != nullptr) {
                std::ofstream(golden) << outcome.output;
            }
            if (isGiven) {
                EXPECT_EQ(contentOf(golden), outcome.output) << golden;
            }
        }
    }
    ::unlink(second);
    if (!isGiven) {
        GTEST_SKIP() << "there is no other user";
    }
}

TEST(GoldenCaptureTest, Verbs_PrintWhatTheGoldenFilesHold) {
    std::string const power = "unit1/inlet1/circuit1/socket2:active-power";
    std::vector<std::pair<std::string, std::vector<std::string>>> const runs{
        {"log.txt", {"log", "night.rec"}},
        {"log.json", {"log", "night.rec", "--json", "--to", "+59s"}},
        {"export.csv", {"export", "night.rec", "--csv", "--interval", "5"}},
        {"export-long.csv",
         {"export", "night.rec", "--layout", "long", "--from", "-6s", "unit1/sensor1.1", power}},
        {"plot.txt", {"plot", "night.rec", power, "--limit", "1800=fuse", "--width", "80", "--height", "24"}},
        {"plot-ascii.txt",
         {"plot", "night.rec", "**/socket2", "--ascii", "--width", "80", "--height", "30", "--to", "+39s"}},
        {"at.status.txt", {"--image", "night.rec", "--at", "-35s", "status"}},
        {"at.status.json", {"--image", "night.rec", "--at", "2023-11-14T22:13:45Z", "status", "--json"}},
        {"at.tree.txt", {"--image", "night.rec", "--at", "+25s", "tree", "--values"}},
    };
    ImageFolder const folder;
    sampleCapture();
    for (auto const& [name, arguments] : runs) {
        auto const outcome = runQelshm(arguments);
        EXPECT_EQ("", outcome.errors) << name;
        auto const golden = QEL_GOLDEN_DIR "/capture." + name;
        if (std::getenv("QEL_UPDATE_GOLDEN") != nullptr) {
            std::ofstream(golden) << outcome.output;
        }
        EXPECT_EQ(contentOf(golden), outcome.output) << golden;
    }
}

INSTANTIATE_TEST_SUITE_P(All, GoldenTest, testing::ValuesIn(sampleImages()),
                         [](testing::TestParamInfo<SampleImage> const& tested) {
                             std::string name = tested.param.name;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

} // namespace qel::test
