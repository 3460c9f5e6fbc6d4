// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The kinds of work, for any contender.
#pragma once

#include "bench/support/Plan.h"
#include "bench/works/Work.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace bench {

/// The contender's store, built and filled with the first samples; one per process while anybody holds it.
template <typename Writer, typename Input>
std::shared_ptr<Writer> writerOf(Plan const& plan) {
    static std::weak_ptr<Writer> known;
    auto writer = known.lock();
    if (!writer) {
        writer = std::make_shared<Writer>();
        writer->open();
        writer->build(Input(plan));
        for (auto const& access : plan.valueAccesses()) {
            writer->update(access, firstSampleOf(access));
        }
        known = writer;
    }
    return writer;
}

template <typename Contender>
std::shared_ptr<typename Contender::Writer> writerOf(Plan const& plan) {
    return writerOf<typename Contender::Writer, typename Contender::Input>(plan);
}

/// The writer of a contender.
template <typename Contender>
class WriterSide {
public:
    explicit WriterSide(Plan const& plan) : writer_(writerOf<Contender>(plan)) {}
    typename Contender::Writer& operator*() { return *writer_; }

private:
    std::shared_ptr<typename Contender::Writer> writer_;
};

/// The writer of a contender, and what a client keeps for each of its values, by slot.
template <typename Contender>
class KeptWriterSide {
    using Writer = typename Contender::Writer;
    using Kept = typename Contender::Kept;

public:
    explicit KeptWriterSide(Plan const& plan) : writer_(writerOf<Contender>(plan)) {
        for (auto const& access : plan.valueAccesses()) {
            kept_.push_back(Contender::keep(*writer_, access));
        }
    }

    /// Has both addresses at hand, as a client's own loop would.
    class View {
    public:
        View(Writer& writer, Kept* kept) : writer_(writer), kept_(kept) {}
        bool update(Access const& access, Sample const& sample) const {
            return Contender::update(writer_, kept_[access.value], sample);
        }

    private:
        Writer& writer_;
        Kept* kept_;
    };
    View operator*() { return {*writer_, kept_.data()}; }

private:
    std::shared_ptr<Writer> writer_;
    std::vector<Kept> kept_;
};

/// The reader of a contender, and the store that it reads.
template <typename Contender>
class ReaderSide {
public:
    explicit ReaderSide(Plan const& plan) : writer_(writerOf<Contender>(plan)), reader_(plan) {}
    typename Contender::Reader& operator*() { return reader_; }

private:
    std::shared_ptr<typename Contender::Writer> writer_;
    typename Contender::Reader reader_;
};

/// One operation per value or point, in the order of the pass.
/// Operation: run(side, access), expected(access), the result it must have, and Sum, which adds results up.
template <typename Side, typename Operation>
class Sweep : public Entry {
public:
    Sweep(Plan const& plan, std::size_t limit) : side_(plan), limit_(limit) {}

    void begin(Order const& order) override {
        auto const& all = order.*Operation::accesses;
        accesses_.assign(all.begin(),
                         all.begin() + static_cast<std::ptrdiff_t>(std::min(all.size(), limit_)));
    }

    double run() override {
        auto&& side = *side_;
        typename Operation::Sum sum{};
        for (auto const& access : accesses_) {
            sum += Operation::run(side, access);
        }
        return static_cast<double>(sum);
    }

    double expected() const override {
        typename Operation::Sum sum{};
        for (auto const& access : accesses_) {
            sum += Operation::expected(access);
        }
        return static_cast<double>(sum);
    }

    std::size_t operations() const override { return accesses_.size(); }

private:
    Side side_;
    std::size_t limit_;
    std::vector<Access> accesses_;
};

/// One operation over everything.
/// Operation: run(side), the result as a number, and expected(order), the number it must be.
template <typename Side, typename Operation>
class Whole : public Entry {
public:
    explicit Whole(Plan const& plan) : side_(plan) {}

    void begin(Order const& order) override { expected_ = Operation::expected(order); }
    double run() override { return Operation::run(*side_); }
    double expected() const override { return expected_; }
    std::size_t operations() const override { return 1; }

private:
    Side side_;
    double expected_ = 0;
};

/// States are propagated after one value has changed its own.
template <typename Contender>
class PropagateAfterChange : public Entry {
public:
    explicit PropagateAfterChange(Plan const& plan) : side_(plan), changing_(plan.valueAccesses().back()) {}

    void begin(Order const& /*order*/) override {}
    bool preparing() const override { return true; }

    void prepare() override {
        auto sample = sampleOf(changing_);
        isWarning_ = !isWarning_;
        sample.state = isWarning_ ? eStatus_HighWarning : eStatus_NoError;
        (*side_).update(changing_, sample);
    }

    double run() override {
        (*side_).propagate();
        return 1;
    }

    double expected() const override { return 1; }
    std::size_t operations() const override { return 1; }

private:
    WriterSide<Contender> side_;
    Access changing_;
    bool isWarning_ = false;
};

/// States are propagated over and over, and nothing changes.
template <typename Contender>
class PropagateUnchanged : public Entry {
public:
    explicit PropagateUnchanged(Plan const& plan) : side_(plan) {}

    void begin(Order const& /*order*/) override { (*side_).propagate(); }

    double run() override {
        for (std::size_t count = 0; count < repetitions; ++count) {
            (*side_).propagate();
        }
        return 1;
    }

    double expected() const override { return 1; }
    std::size_t operations() const override { return repetitions; }

private:
    static constexpr std::size_t repetitions = 100; // so that the loop around them hardly counts

    WriterSide<Contender> side_;
};

/// Points and values are laid out in an empty store.
/// @tparam fresh whether making the store counts
template <typename Contender, bool fresh>
class Build : public Entry {
public:
    explicit Build(Plan const& plan) : input_(typename Contender::Input(plan)) {}

    void begin(Order const& /*order*/) override {}
    void end() override { writer_.reset(); }
    bool preparing() const override { return true; }

    void prepare() override {
        writer_.reset();
        writer_.emplace();
        if (!fresh) {
            writer_->open();
        }
    }

    double run() override {
        if (fresh) {
            writer_->open();
        }
        writer_->build(input_);
        return 1;
    }

    double expected() const override { return 1; }
    std::size_t operations() const override { return 1; }

private:
    typename Contender::Input input_;
    std::optional<typename Contender::Writer> writer_;
};

/// A contender's row in a work: its entry is made from a plan and the arguments.
template <typename Contender, typename EntryType, typename... Arguments>
Candidate candidate(std::string const& variant, Arguments... arguments) {
    return {Contender::name, variant, Contender::throughServer, Contender::waits,
            [=](Plan const& plan) -> std::unique_ptr<Entry> {
                return std::make_unique<EntryType>(plan, arguments...);
            }};
}

} // namespace bench
