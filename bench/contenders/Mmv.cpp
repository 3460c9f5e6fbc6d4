// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/contenders/Mmv.h"

// Each needs the one before it.
#include <pcp/pmapi.h>

#include <pcp/mmv_stats.h>

#include <pcp/mmv_dev.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <stdexcept>
#include <string>

namespace bench {

namespace {

// The library appends "mmv" to the directory that this variable names.
constexpr char directoryVariable[] = "PCP_TMP_DIR";
constexpr char directory[] = "/dev/shm";
constexpr char subdirectory[] = "/dev/shm/mmv";
constexpr char fileName[] = "bench";
constexpr char path[] = "/dev/shm/mmv/bench";
constexpr int cluster = 42;
constexpr int instanceDomain = 1;

enum class Field { Number, At, State };

struct FieldMetric {
    Field field;
    char const* prefix;
    mmv_metric_type_t type;
};

constexpr std::array<FieldMetric, 3> fieldMetrics{{{Field::Number, "number.", MMV_TYPE_DOUBLE},
                                                   {Field::At, "at.", MMV_TYPE_U64},
                                                   {Field::State, "state.", MMV_TYPE_I32}}};

void* checked(void* result, char const* call) {
    if (result == nullptr) {
        throw std::runtime_error(std::string(call) + " failed");
    }
    return result;
}

template <typename Section>
Section* at(void* file, std::uint64_t offset) {
    return reinterpret_cast<Section*>(static_cast<char*>(file) +
                                      offset); // the file's format: offsets everywhere
}

/// The section of the values in the file's table of contents.
mmv_disk_toc_t const& valuesSection(void* file) {
    auto const* const header = at<mmv_disk_header_t>(file, 0);
    auto const* const sections = at<mmv_disk_toc_t>(file, sizeof *header);
    for (int section = 0; section < header->tocs; ++section) {
        if (sections[section].type == MMV_TOC_VALUES) {
            return sections[section];
        }
    }
    throw std::runtime_error("the file of memory-mapped values has no values");
}

/// Hands each value to the visitor with its sensor id and what of it the value is.
template <typename Visitor>
void forEachValue(void* file, Visitor const& visitor) {
    auto const& section = valuesSection(file);
    auto* const values = at<mmv_disk_value_t>(file, section.offset);
    for (int index = 0; index < section.count; ++index) {
        auto& value = values[index];
        std::string const metric = at<mmv_disk_metric_t>(file, value.metric)->name;
        auto const point = std::stoull(at<mmv_disk_instance_t>(file, value.instance)->external, nullptr, 16);
        for (auto const& field : fieldMetrics) {
            std::string const prefix = field.prefix;
            if (metric.compare(0, prefix.size(), prefix) == 0) {
                auto const key = std::stoull(metric.substr(prefix.size()));
                visitor(static_cast<long long>(point | key), field.field, value.value);
            }
        }
    }
}

} // namespace

Mmv::Writer::~Writer() {
    close();
}

void Mmv::Writer::close() {
    if (registry_ == nullptr) {
        return;
    }
    if (file_ != nullptr) {
        mmv_stats_stop(fileName, file_);
        unlink(path);
    }
    mmv_stats_free(static_cast<mmv_registry_t*>(registry_));
    registry_ = nullptr;
    file_ = nullptr;
    atoms_.clear();
}

void Mmv::Writer::open() {
    close();
    setenv(directoryVariable, directory, 1);
    mkdir(subdirectory, 0700);
    registry_ = checked(mmv_stats_registry(fileName, cluster, MMV_FLAG_NOPREFIX), "mmv_stats_registry");
}

void Mmv::Writer::build(Plan const& plan) {
    auto* const registry = static_cast<mmv_registry_t*>(registry_);
    pmUnits const units{};
    std::deque<std::string> names; // the registry keeps pointers to them until it is started
    mmv_stats_add_indom(registry, instanceDomain, "points", "");
    int instance = 0;
    for (auto const& point : plan.points()) {
        auto const& label = names.emplace_back(hexOfPoint(point.svid));
        mmv_stats_add_instance(registry, instanceDomain, instance++, label.c_str());
    }
    int item = 1;
    for (auto const key : valueKeys) {
        for (auto const& field : fieldMetrics) {
            auto const& label = names.emplace_back(field.prefix + std::to_string(key));
            mmv_stats_add_metric(registry, label.c_str(), item++, field.type, MMV_SEM_INSTANT, units,
                                 instanceDomain, "", "");
        }
    }
    file_ = checked(mmv_stats_start(registry), "mmv_stats_start");
    forEachValue(file_, [this](long long svid, Field field, pmAtomValue& value) {
        auto& atoms = atoms_[svid];
        (field == Field::Number ? atoms.number : field == Field::At ? atoms.at : atoms.state) = &value;
    });
}

bool Mmv::Writer::update(Access const& access, Sample const& sample) {
    auto const found = atoms_.find(access.svid);
    if (found == atoms_.end()) {
        return false;
    }
    update(found->second, sample);
    return true;
}

void Mmv::Writer::update(Atoms const& atoms, Sample const& sample) {
    auto copy = sample;
    mmv_set(file_, static_cast<pmAtomValue*>(atoms.at), &copy.at);
    mmv_set(file_, static_cast<pmAtomValue*>(atoms.state), &copy.state);
    mmv_set(file_, static_cast<pmAtomValue*>(atoms.number), &copy.number);
}

std::size_t Mmv::Writer::bytes() const {
    struct stat status {};
    stat(path, &status);
    return static_cast<std::size_t>(status.st_size);
}

Mmv::Reader::Reader(Plan const& /*plan*/) {
    int const file = ::open(path, O_RDONLY | O_CLOEXEC);
    struct stat status {};
    if (file < 0 || fstat(file, &status) != 0) {
        throw std::runtime_error("the file of memory-mapped values cannot be opened");
    }
    size_ = static_cast<std::size_t>(status.st_size);
    auto* const mapped = mmap(nullptr, size_, PROT_READ, MAP_SHARED, file, 0);
    ::close(file);
    file_ = static_cast<char*>(checked(mapped == MAP_FAILED ? nullptr : mapped, "mmap"));
    forEachValue(file_, [this](long long svid, Field field, pmAtomValue& value) {
        if (field == Field::Number) {
            numbers_.emplace(svid, &value.d);
        }
    });
}

Mmv::Reader::~Reader() {
    munmap(file_, size_);
}

double Mmv::Reader::fetch(Access const& access) const {
    auto const found = numbers_.find(access.svid);
    return found == numbers_.end() ? 0 : *const_cast<double const volatile*>(found->second);
}

double Mmv::Reader::sumOfAll() const {
    auto const& section = valuesSection(file_);
    auto const* const values = at<mmv_disk_value_t>(file_, section.offset);
    double sum = 0;
    for (int index = 0; index < section.count; ++index) {
        if (at<mmv_disk_metric_t>(file_, values[index].metric)->type == MMV_TYPE_DOUBLE) {
            sum += values[index].value.d;
        }
    }
    return sum;
}

} // namespace bench
