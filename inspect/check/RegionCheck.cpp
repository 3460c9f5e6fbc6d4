// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/RegionCheck.h"

#include "inspect/check/FindingList.h"
#include "inspect/check/PointIdCheck.h"
#include "inspect/check/PointLinkCheck.h"
#include "inspect/check/StateCheck.h"
#include "inspect/check/ValueChainCheck.h"
#include "inspect/image/PointTree.h"
#include "inspect/why/FoldedStates.h"

namespace qel::inspect {

namespace {

void checkSize(Image const& image, FindingList& findings) {
    if (image.size() != shm::REGION_SIZE) {
        auto const code = image.isWhole() ? FindingCode::RegionTooLong : FindingCode::RegionTooShort;
        findings.add(code, field::size, 0, shm::NO_POSITION, FieldValue::count(image.size()),
                     FieldValue::count(shm::REGION_SIZE));
    }
}

void checkRoot(Image const& image, FindingList& findings) {
    auto const& root = image.root();
    if (!image.isActive() && root.version != shm::WIPE_BYTE) {
        findings.addToRoot(FindingCode::VersionUnknown, field::version, FieldValue::byte(root.version),
                           FieldValue::words("0x20 (active) or 0xff (inactive)"));
    }
    if (image.isActive() && root.guid != shm::ROOT_SVID) {
        findings.addToRoot(FindingCode::RootIdWrong, field::rootGuid, FieldValue::svid(root.guid),
                           FieldValue::svid(shm::ROOT_SVID));
    }
    if (image.isActive() && root.unused != 0) {
        findings.addToRoot(FindingCode::RootUnusedSet, field::rootUnused, FieldValue::count(root.unused),
                           FieldValue::count(0));
    }
    findings.addUnknownState(field::rootState, 0, shm::NO_POSITION, root.state);
    findings.addChangedReserved(field::rootReserved, 0, shm::NO_POSITION, root.reserved);
}

void checkSlot(Image const& image, std::uint32_t pos, FindingList& findings) {
    auto const& point = image.region().points[pos];
    if (point.pos != pos) {
        findings.addToPoint(FindingCode::PosMismatch, field::pos, pos, FieldValue::position(point.pos),
                            FieldValue::position(pos));
    }
    findings.addUnknownState(field::pointState, pos, pos, point.state);
    findings.addChangedReserved(field::pointReserved, pos, pos, point.reserved);
}

} // namespace

Findings checkRegion(Image const& image) {
    FindingList findings;
    checkSize(image, findings);
    if (!image.isWhole()) {
        return findings.take(); // the root stands at the end, so nothing can be reached for sure
    }
    checkRoot(image, findings);
    PointTree const tree(image);
    PointLinkCheck const links(image, tree, findings);
    for (auto const& point : links.points()) {
        checkSlot(image, point.pos, findings);
    }
    checkPointIds(image, links.points(), findings);
    checkValueChains(image, links.points(), findings);
    if (image.isActive() && !hasDamage(findings.findings())) {
        checkStates(image, tree, FoldedStates(image, tree), findings);
    }
    return findings.take();
}

Findings confirmedFindings(Image const& first, std::function<Image()> const& secondCopy) {
    auto const found = checkRegion(first);
    return found.empty() ? found : findingsInBoth(found, checkRegion(secondCopy()));
}

} // namespace qel::inspect
