// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/tools/qelshm/SampleCapture.h"

#include "inspect/capture/CaptureWriter.h"
#include "inspect/image/PointTree.h"
#include "region/QelShmRecords.h"
#include "tests/tools/qelshm/SampleImages.h"

#include "format/ValueKeys.h"

#include <cstdlib>
#include <memory>

namespace qel::test {

std::uint64_t const captureStart = sampleTime;

namespace {

using inspect::Image;

shm::record::QelShmMVal& powerOf(shm::record::Region& region, Image const& image, long long point) {
    inspect::PointTree const tree(image);
    for (auto const& node : tree.nodes()) {
        for (auto const pos : tree.valuesOf(node)) {
            if (region.points[node.pos].guid == point && region.values[pos].key == shm::key::activePower) {
                return region.values[pos];
            }
        }
    }
    std::abort(); // the sample images have it
}

/// The sample images that the capture is made of; each is built once.
struct Images {
    Image healthy = sampleImage("healthy");
    Image warning = sampleImage("warning");
    Image alarm = sampleImage("alarm");
};

Image withPower(Image const& image, double watts, std::uint64_t time) {
    auto region = std::make_unique<shm::record::Region>(image.region());
    auto& value = powerOf(*region, image, sample::socket2);
    value.value = watts;
    value.at = time;
    return {std::move(region), image.size()};
}

/// As a new writing process leaves it before its first delivery.
Image fresh(Image const& image) {
    auto region = std::make_unique<shm::record::Region>(image.region());
    inspect::PointTree const tree(image);
    for (auto const pos : tree.values()) {
        region->values[pos].value = 0.0;
        region->values[pos].at = 0;
        region->values[pos].state = eStatus_ExpectedValue;
    }
    for (auto const& node : tree.nodes()) { // the sensor is the last one below the unit
        auto& next = region->points[node.pos].next;
        if (next < shm::MP_COUNT && region->points[next].guid == sample::sensor) {
            next = region->points[next].next;
        }
    }
    return {std::move(region), image.size()};
}

Image imageAt(std::uint64_t second, Images const& images) {
    auto const time = captureStart + second * 1000;
    auto const rising = 1000.0 + 50.0 * static_cast<double>(second);
    if (second < 10) {
        return withPower(images.healthy, rising, time);
    }
    if (second < 20) {
        return withPower(images.warning, rising, time);
    }
    if (second < 30) {
        return withPower(images.alarm, rising, time);
    }
    if (second < 55) {
        return withPower(images.healthy, 1000.0, time);
    }
    return second < 57 ? Image::wiped() : fresh(images.healthy);
}

} // namespace

std::string sampleCapture() {
    Images const images;
    inspect::CaptureWriter writer("night.rec", captureStart);
    for (std::uint64_t second = 0; second <= 60; ++second) {
        if (second < 40 || second >= 50) {
            writer.append(second * 1000, imageAt(second, images));
        }
    }
    writer.close();
    return "night.rec";
}

} // namespace qel::test
