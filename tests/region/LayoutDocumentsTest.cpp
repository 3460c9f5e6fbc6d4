// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The tables that tell people the layout say what the records are.

#include "region/QelShmRecords.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Row {
    std::size_t offset;
    std::string width;
    std::string field;

    bool operator==(Row const& other) const {
        return offset == other.offset && width == other.width && field == other.field;
    }
};

std::ostream& operator<<(std::ostream& out, Row const& row) {
    return out << row.offset << ' ' << row.width << ' ' << row.field;
}

using Table = std::vector<Row>;

template <typename Field>
std::string width() {
    if constexpr (std::is_array_v<Field>) {
        return std::to_string(sizeof(Field));
    } else if constexpr (std::is_enum_v<Field>) {
        return width<std::underlying_type_t<Field>>();
    } else {
        char const kind = std::is_floating_point_v<Field> ? 'f' : std::is_signed_v<Field> ? 'i' : 'u';
        return kind + std::to_string(8 * sizeof(Field));
    }
}

std::vector<Table> layoutOfTheRecords() {
    using shm::record::QelShmMP;
    using shm::record::QelShmMVal;
    using shm::record::QelShmRoot;
    return {{{offsetof(QelShmMP, pos), width<decltype(QelShmMP::pos)>(), "pos"},
             {offsetof(QelShmMP, next), width<decltype(QelShmMP::next)>(), "next"},
             {offsetof(QelShmMP, prev), width<decltype(QelShmMP::prev)>(), "prev"},
             {offsetof(QelShmMP, mvs), width<decltype(QelShmMP::mvs)>(), "mvs"},
             {offsetof(QelShmMP, children), width<decltype(QelShmMP::children)>(), "children"},
             {offsetof(QelShmMP, parent), width<decltype(QelShmMP::parent)>(), "parent"},
             {offsetof(QelShmMP, guid), width<decltype(QelShmMP::guid)>(), "guid"},
             {offsetof(QelShmMP, at), width<decltype(QelShmMP::at)>(), "at"},
             {offsetof(QelShmMP, state), width<decltype(QelShmMP::state)>(), "state"},
             {offsetof(QelShmMP, type), width<decltype(QelShmMP::type)>(), "type"},
             {offsetof(QelShmMP, reserved), width<decltype(QelShmMP::reserved)>(), "reserved"}},
            {{offsetof(QelShmMVal, value), width<decltype(QelShmMVal::value)>(), "value"},
             {offsetof(QelShmMVal, at), width<decltype(QelShmMVal::at)>(), "at"},
             {offsetof(QelShmMVal, state), width<decltype(QelShmMVal::state)>(), "state"},
             {offsetof(QelShmMVal, next), width<decltype(QelShmMVal::next)>(), "next"},
             {offsetof(QelShmMVal, key), width<decltype(QelShmMVal::key)>(), "key"},
             {offsetof(QelShmMVal, reserved), width<decltype(QelShmMVal::reserved)>(), "reserved"}},
            {{offsetof(QelShmRoot, guid), width<decltype(QelShmRoot::guid)>(), "guid"},
             {offsetof(QelShmRoot, unused), width<decltype(QelShmRoot::unused)>(), "unused"},
             {offsetof(QelShmRoot, devices), width<decltype(QelShmRoot::devices)>(), "devices"},
             {offsetof(QelShmRoot, groups), width<decltype(QelShmRoot::groups)>(), "groups"},
             {offsetof(QelShmRoot, state), width<decltype(QelShmRoot::state)>(), "state"},
             {offsetof(QelShmRoot, version), width<decltype(QelShmRoot::version)>(), "version"},
             {offsetof(QelShmRoot, reserved), width<decltype(QelShmRoot::reserved)>(), "reserved"}}};
}

std::string textOf(char const* path) {
    std::ifstream file(path);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The cells of a line "| a | b |", without blanks, backquotes and the word "bytes"; empty for other lines.
std::vector<std::string> cellsOf(std::string line) {
    if (line.rfind("/// ", 0) == 0) {
        line.erase(0, 4);
    }
    std::vector<std::string> cells;
    if (line.rfind('|', 0) != 0) {
        return cells;
    }
    std::istringstream rest(line.substr(1));
    for (std::string cell; std::getline(rest, cell, '|');) {
        std::string word;
        std::istringstream(cell) >> word;
        if (word.size() > 1 && word.front() == '`') {
            word = word.substr(1, word.size() - 2);
        }
        cells.push_back(word);
    }
    return cells;
}

/// All tables whose first columns bear these names; the numbers of a row stand in the first column.
std::vector<Table> tablesOf(std::string const& text, std::string const& second, std::string const& third) {
    std::vector<Table> tables;
    std::istringstream lines(text);
    bool inside = false;
    for (std::string line; std::getline(lines, line);) {
        auto const cells = cellsOf(line);
        if (cells.size() < 3) {
            inside = false;
        } else if (cells[0] == "offset" && cells[1] == second && cells[2] == third) {
            inside = true;
            tables.emplace_back();
        } else if (inside && cells[0].find_first_not_of('-') != std::string::npos) {
            tables.back().push_back({std::stoul(cells[0]), cells[1], cells[2]});
        }
    }
    return tables;
}

TEST(LayoutDocumentsTest, DocumentTellsEveryFieldOfTheRecords) {
    EXPECT_EQ(tablesOf(textOf(QEL_LAYOUT_DOCUMENT), "width", "field"), layoutOfTheRecords());
}

TEST(LayoutDocumentsTest, HeaderTellsEveryFieldOfTheRecords) {
    EXPECT_EQ(tablesOf(textOf(QEL_LAYOUT_HEADER), "width", "field"), layoutOfTheRecords());
}

TEST(LayoutDocumentsTest, FieldsFillTheirRecords) {
    for (auto const& [table, size] : {std::pair(0U, 48U), std::pair(1U, 32U), std::pair(2U, 32U)}) {
        auto const last = layoutOfTheRecords()[table].back();
        EXPECT_EQ(last.offset + std::stoul(last.width), size);
    }
}

TEST(LayoutDocumentsTest, DocumentTellsTheMapOfTheRegion) {
    auto const tables = tablesOf(textOf(QEL_LAYOUT_DOCUMENT), "length", "contents");
    using shm::record::Region;
    ASSERT_EQ(tables.size(), 1U);
    EXPECT_EQ(tables[0], (Table{{offsetof(Region, points), std::to_string(sizeof(Region::points)), "800"},
                                {offsetof(Region, values), std::to_string(sizeof(Region::values)), "8800"},
                                {offsetof(Region, root), std::to_string(sizeof(Region::root)), "the"}}));
}

TEST(LayoutDocumentsTest, DocumentTellsNameSizeAndLimits) {
    auto const text = textOf(QEL_LAYOUT_DOCUMENT);
    for (auto const& words :
         {"`" + std::string(shm::REGION_NAME) + "`",
          "| size | " + std::to_string(shm::REGION_SIZE) + " bytes",
          "800 measurement points of " + std::to_string(sizeof(shm::record::QelShmMP)) + " bytes",
          "8800 measured values of " + std::to_string(sizeof(shm::record::QelShmMVal)) + " bytes",
          "`version` is exactly " + std::to_string(shm::ACTIVE_VERSION)}) {
        EXPECT_NE(text.find(words), std::string::npos) << words;
    }
}

TEST(LayoutDocumentsTest, DocumentLinksToFilesThatExist) {
    auto const text = textOf(QEL_LAYOUT_DOCUMENT);
    auto const folder = fs::path(QEL_LAYOUT_DOCUMENT).parent_path();
    int links = 0;
    for (auto begin = text.find("]("); begin != std::string::npos; begin = text.find("](", begin)) {
        begin += 2;
        auto const target = text.substr(begin, text.find(')', begin) - begin);
        EXPECT_TRUE(fs::exists(folder / target)) << target;
        ++links;
    }
    EXPECT_GT(links, 0);
}

} // namespace
