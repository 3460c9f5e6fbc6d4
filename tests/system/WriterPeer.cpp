// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The writing process of the system tests: a writer and the hardware manager's service, driven by lines.
//
//   answer N                    what "initialized" answers from now on
//   add ID KEY...               addStructure with one point and these value keys
//   active                      setActive
//   update ID KEY VALUE STATE   updateMV, time stamp 1000
//   propagate                   propagateStates
//   modify ID...                modifyStructure with these ids of points and values
//   churn ROUNDS SEED           modifyStructure and the signal, that often, with random sockets
//   whole                       modifyStructure with the whole changing unit
//   rebuild ROUNDS              removes everything and lays out the whole unit again, and the signal, that often
//   storm SEED STEPS FILE       all that a writer does, at random, that often (0: for ever); progress in the file
//   signal                      shmStructureChanged
//   ids                         ids of all points in the tree, ascending
//   tree                        the same with the keys of their values
//   quit                        clean end
//
// Each command is answered by one line.

#include "tests/support/ChangingUnit.h"
#include "tests/support/FakeHardwareManager.h"
#include "tests/support/ProgressPage.h"
#include "tests/system/PeerText.h"
#include "tests/system/Storm.h"
#include "writer/QelSharedMemoryWriter.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <unordered_set>
#include <vector>

namespace qel::test {

namespace {

constexpr std::uint64_t timestamp = 1000;

class WriterPeer {
public:
    WriterPeer() { manager_.setAnswer(0); }

    std::string answerTo(std::vector<std::string> const& words) {
        auto const& command = words.at(0);
        if (command == "answer") {
            manager_.setAnswer(std::stoi(words.at(1)));
            return "done";
        }
        if (command == "add") {
            return add(words) ? "added" : "unchanged";
        }
        if (command == "active") {
            writer_.setActive();
            return "done";
        }
        if (command == "update") {
            return update(words) ? "stored" : "refused";
        }
        if (command == "propagate") {
            writer_.propagateStates();
            return "done";
        }
        if (command == "modify") {
            std::unordered_set<long long> svids;
            std::transform(words.begin() + 1, words.end(), std::inserter(svids, svids.end()), idFrom);
            return writer_.modifyStructure(svids) ? "changed" : "unchanged";
        }
        if (command == "churn") {
            churn(std::stoi(words.at(1)), static_cast<std::uint32_t>(std::stoul(words.at(2))));
            return "done";
        }
        if (command == "whole") {
            return writer_.modifyStructure(changingUnit::whole()) ? "changed" : "unchanged";
        }
        if (command == "rebuild") {
            rebuild(std::stoi(words.at(1)));
            return "done";
        }
        if (command == "storm") {
            ProgressPage page(words.at(3));
            Storm(writer_, manager_, static_cast<std::uint32_t>(std::stoul(words.at(1))), page)
                .run(std::stoul(words.at(2)));
            return "done";
        }
        if (command == "signal") {
            manager_.emitStructureChanged();
            return "done";
        }
        if (command == "ids") {
            return points(false);
        }
        if (command == "tree") {
            return points(true);
        }
        return "unknown command";
    }

private:
    bool add(std::vector<std::string> const& words) {
        shm::QelSharedMemoryWriter::Definitions definitions;
        auto& keys = definitions[idFrom(words.at(1))].mvs;
        for (std::size_t i = 2; i < words.size(); ++i) {
            keys[static_cast<unsigned short>(std::stoul(words[i], nullptr, 0))] = 0;
        }
        return writer_.addStructure(definitions);
    }

    bool update(std::vector<std::string> const& words) {
        auto const svid = idFrom(words.at(1)) | std::stoll(words.at(2), nullptr, 0);
        auto const state = static_cast<eStatus_Bits>(std::stoi(words.at(4)));
        return writer_.updateMV(
            svid, std::make_unique<measval::MeasureValue>(std::stod(words.at(3)), timestamp, state));
    }

    void churn(int rounds, std::uint32_t seed) {
        std::mt19937 random(seed);
        for (int round = 0; round < rounds; ++round) {
            writer_.modifyStructure(changingUnit::part(random));
            writer_.propagateStates();
            manager_.emitStructureChanged();
        }
    }

    void rebuild(int rounds) {
        auto const whole = changingUnit::whole();
        for (int round = 0; round < rounds; ++round) {
            writer_.removeStructure({});
            writer_.modifyStructure(whole);
            writer_.propagateStates();
            manager_.emitStructureChanged();
        }
    }

    // Out of the tree's text, where each point stands on a line of its own, its keys in brackets at the end.
    std::string points(bool withKeys) const {
        std::istringstream tree(writer_.tree());
        std::vector<std::string> found;
        for (std::string line; std::getline(tree, line);) {
            if (auto const dash = line.find("- 0x"); dash != std::string::npos) {
                auto point = line.substr(dash + 2, 18);
                if (withKeys) {
                    auto keys = line.substr(line.find('['));
                    keys.erase(std::remove(keys.begin(), keys.end(), ' '), keys.end());
                    point += keys;
                }
                found.push_back(point);
            }
        }
        std::sort(found.begin(), found.end());
        std::string text = std::to_string(found.size());
        for (auto const& point : found) {
            text += ' ' + point;
        }
        return text;
    }

    FakeHardwareManager manager_;
    shm::QelSharedMemoryWriter writer_;
};

int run() {
    WriterPeer peer;
    serve(peer);
    return 0;
}

} // namespace

} // namespace qel::test

int main() {
    try {
        return qel::test::run();
    } catch (std::exception const& failure) {
        std::cerr << "system-writer: " << failure.what() << '\n';
        return 1;
    }
}
