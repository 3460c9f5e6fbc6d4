// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Feeds damaged captures to everything that reads one by time.
///
/// An input is a list of frames behind a good header. Its first byte chooses what the frames' heads are: 0 made to fit the
/// content, so that the content is read, 1 as in the input. Each frame: two bytes for the length of its content, then the
/// content (for 1: the rest of the input is the file). A good sample of a small unit comes first if the second byte is
/// odd.

#include "inspect/capture/CaptureFormat.h"
#include "inspect/capture/CaptureLog.h"
#include "inspect/capture/CaptureReader.h"
#include "inspect/capture/CaptureTimeline.h"
#include "inspect/capture/SelectedValues.h"

#include "tests/fuzz/Input.h"
#include "tests/fuzz/Verdict.h"
#include "tests/inspect/SampleUnit.h"

#include <boost/crc.hpp>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

namespace qel::fuzz {

namespace {

constexpr std::size_t mostFrames =
    40; // a frame may cost as much as a whole region; more of them find no more

void appendNumber(std::string& bytes, std::uint32_t number) {
    for (unsigned shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>(number >> shift & 0xFFU);
    }
}

/// A frame whose length and checksum are right.
std::string framed(std::string const& content) {
    std::string frame;
    appendNumber(frame, static_cast<std::uint32_t>(content.size()));
    boost::crc_32_type crc;
    crc.process_bytes(frame.data(), frame.size());
    crc.process_bytes(content.data(), content.size());
    appendNumber(frame, crc.checksum());
    return frame + content;
}

std::string captureOf(Input input) {
    static inspect::Image const unit(test::sampleUnit(), shm::REGION_SIZE);
    bool const isRaw = input.byte() % 2 == 1;
    auto file = inspect::captureHeader(1700000000000);
    if (input.byte() % 2 == 1) {
        file += inspect::frameOf(0, inspect::Image(), unit);
    }
    if (isRaw) {
        return file.append(reinterpret_cast<char const*>(input.rest()), input.restSize());
    }
    for (std::size_t frame = 0; !input.isEmpty() && frame < mostFrames; ++frame) {
        std::string content;
        for (auto left = input.number(2); left != 0 && !input.isEmpty(); --left) {
            content += static_cast<char>(input.byte());
        }
        file += framed(content);
    }
    return file;
}

/// A file in memory with a name.
class MemoryFile {
public:
    explicit MemoryFile(std::string const& bytes) : file_(::memfd_create("capture", MFD_CLOEXEC)) {
        require(inspect::writeAll(file_.number(), bytes) == 0, "the input was not written");
    }
    std::string name() const { return "/proc/self/fd/" + std::to_string(file_.number()); }

private:
    inspect::FileDescriptor file_;
};

void lookAt(inspect::CaptureTimeline const& timeline) {
    auto const length = timeline.last() - timeline.first();
    for (auto const time : {timeline.first(), timeline.first() + length / 2, timeline.last()}) {
        auto const sample = timeline.at(time);
        require(sample.time <= time, "a sample is later than the moment that was asked for");
    }
    require(timeline.timeOf({}) == timeline.last(), "the default moment is not the last one");
}

void goThrough(inspect::CaptureTimeline const& timeline) {
    std::size_t samples = 0;
    std::size_t events = 0;
    inspect::SelectedValues selected(
        {inspect::ValuePattern("**:active-power"), inspect::ValuePattern("unit1")});
    forEachSample(timeline, timeline.first(), timeline.last(),
                  [&](inspect::CaptureReader const& reader, std::optional<std::uint64_t> next) {
                      ++samples;
                      require(!next || *next >= reader.moment(), "a capture goes back in time");
                      selected.follow(reader.region());
                      for (std::size_t index = 0; index < selected.names().size(); ++index) {
                          inspect::deliveredNumber(selected.value(index));
                      }
                  });
    inspect::CaptureLog({}).read(timeline, timeline.first(), timeline.last(),
                                 [&](inspect::CaptureEvent const& event) {
                                     ++events;
                                     require(event.time >= timeline.first() && event.time <= timeline.last(),
                                             "an event outside of the capture");
                                 });
    require(samples <= timeline.samples(), "more samples than there are");
    require(events <= timeline.samples() * (shm::MP_COUNT * 6 + shm::MV_COUNT * 2),
            "more events than fields");
}

void look(Input const& input) {
    MemoryFile const file(captureOf(input));
    require(inspect::isCapture(file.name()), "a capture is not known by its magic");
    try {
        inspect::CaptureTimeline const timeline(file.name());
        lookAt(timeline);
        goThrough(timeline);
    } catch (inspect::CaptureError const&) {
        return; // it holds no complete sample
    }
}

} // namespace

} // namespace qel::fuzz

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    qel::fuzz::look({data, size});
    return 0;
}
