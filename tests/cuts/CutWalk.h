// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Lets the real reader walk every picture that the real writer can leave it.
///
/// The protocol is one-way: the writer never waits for a reader and takes nothing from one. So whatever a reader meets is
/// a cut through the writer's stores: some of them visible, the others not yet. The writer's stores are recorded
/// (Recording, StoreLog), the cuts that the processor allows are gone through one by one (OrderModel), the region is
/// brought into each of them, and the reader is asked everything (CutReader). What it shows is held against what the slots
/// ever were (Judge); what is not as the writer leaves it when it rests goes into the Catalogue.
#pragma once

#include "tests/cuts/Catalogue.h"
#include "tests/cuts/CutReader.h"
#include "tests/cuts/Judge.h"
#include "tests/cuts/OrderModel.h"
#include "tests/cuts/Recording.h"
#include "tests/cuts/WriterBench.h"

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace qel::test {

class CutWalk {
public:
    struct Figures {
        std::size_t trees = 0;
        std::size_t operations = 0;
        std::size_t stores = 0;
        std::size_t states = 0;
        std::size_t movingVisits = 0;
    };

    CutWalk(WriterBench& bench, CutReader& reader) : bench_(bench), reader_(reader) {}

    /// All operations on a tree: in order, and reordered.
    /// @param halves Split: reordered with halves of 8 bytes, too
    void walk(Tree const& tree, OrderModel::Halves halves = OrderModel::Halves::Whole);

    /// The same operations under a visit that the region moves on in.
    void walkMoving(Tree const& tree);

    /// One operation with these stores instead of the writer's own, reordered.
    void walk(Recording const& recording, Stores const& stores, std::string const& name);

    /// Makes a recording that the reader is ready for.
    Recording record(Tree const& tree, Operation const& operation);

    /// All states, also those that differ only where nobody reads.
    void leaveNothingOut() { isPruning_ = false; }

    /// From now on fills digests().
    void collectDigests() { isDigesting_ = true; }

    /// Numbers that stand for all that the reader showed in a state; of all states so far, each once.
    std::set<std::size_t> const& digests() const { return digests_; }

    /// The first thing that must not be, "" while there is none.
    std::string const& violation() const { return violation_; }

    Catalogue const& catalogue() const { return catalogue_; }
    Figures const& figures() const { return figures_; }

private:
    class Film;

    bool meet(Recording const& recording, Judge const& judge, std::string const& when);
    std::string complaint(Past const& past, Judge const& judge, std::string const& when);
    std::string judgeOldIndex(Judge const& judge, std::string const& when);
    void visitMoving(Recording const& recording, std::string const& when);
    std::string judgeMoving(Past const& past, Judge const& judge, std::string const& when);
    std::string judgeStaying(Past const& past, std::string const& when);
    void noteDigest();
    void noteViolation(std::string const& violation, std::string const& when);

    WriterBench& bench_;
    CutReader& reader_;
    bool isPruning_ = true;
    bool isDigesting_ = false;
    std::set<std::size_t> digests_;
    std::string violation_;
    Catalogue catalogue_;
    Figures figures_;
    Picture plain_;
    Picture visited_;
    Picture scanned_;
    std::vector<CutReader::Found> found_;
};

} // namespace qel::test
