// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// Prints all that a reader sees of the region that is there: what a visit meets, and each value looked up by its id.

#include "format/Print.h"
#include "format/ValueFormatter.h"
#include "reader/BaseQelShmVisitor.h"
#include "tests/reader/MappedReader.h"

#include <exception>
#include <ios>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace qel::test {

namespace {

/// Prints what it meets, exact numbers included; the result takes the ids of the values.
class PrintingVisitor : public shm::BaseQelShmVisitor {
public:
    struct Values : shm::IQelVisitorResult {
        std::vector<long long> svids;
    };

    void onRoot(shm::QelShmRoot const& root, std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        std::cout << root << ", unused = " << root->unused << ", guid = " << root->guid << '\n';
    }

    void onMPnt(shm::QelShmMPnt const& point, unsigned int depth,
                std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        std::cout << std::dec << std::string(depth, '\t') << point << ", at = " << point->at << '\n';
    }

    void onMVal(shm::QelShmMVal const& value, long long svid, unsigned int depth,
                std::shared_ptr<shm::IQelVisitorResult>& result) override {
        std::cout << std::string(depth, '\t') << "  " << value << ", " << std::hexfloat << value->value
                  << std::defaultfloat << std::dec << ", state " << int{value->state} << '\n';
        static_cast<Values&>(*result).svids.push_back(svid | value->key);
    }
};

void printRegion() {
    MappedReader reader;
    reader.visitor(std::make_unique<PrintingVisitor>());
    auto const values = std::make_shared<PrintingVisitor::Values>();
    std::shared_ptr<shm::IQelVisitorResult> result = values;
    reader.visit(result);
    for (auto const svid : values->svids) {
        auto const point = reader.mpnt(svid & ~0xFFFFLL, false);
        auto const value = reader.mval(svid, false);
        if (!point || !value) {
            std::cout << std::hex << svid << " is not found\n";
            continue;
        }
        std::cout << std::hex << svid << std::dec << ": point " << (*point)->pos << ", "
                  << tav::ValueFormatter::str(value) << ", display "
                  << tav::ValueFormatter::strForDisplay(value->key, value->value, value->state) << ", scaled "
                  << tav::ValueFormatter::scale(value->key, value->value) << '\n';
    }
}

} // namespace

} // namespace qel::test

int main() {
    try {
        qel::test::printRegion();
        return 0;
    } catch (std::exception const& failure) {
        std::cerr << "image-reader: " << failure.what() << '\n';
        return 1;
    }
}
