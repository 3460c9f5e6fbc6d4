// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/TextTable.h"

#include "tools/common/SafeText.h"
#include "tools/qelshm/terminal/Utf8Text.h"

#include <algorithm>
#include <ostream>

namespace qel::tools {

void TextTable::add(std::size_t layout, std::vector<Cell> cells) {
    widths_.resize(std::max(widths_.size(), layout + 1));
    auto& widths = widths_[layout];
    widths.resize(std::max(widths.size(), cells.size()));
    for (std::size_t column = 0; column < cells.size(); ++column) {
        auto& text = cells[column].text;
        text = safeText(text);
        widths[column] = std::max(widths[column], widthOf(text));
    }
    while (!cells.empty() && cells.back().text.empty()) {
        cells.pop_back();
    }
    rows_.push_back({layout, std::move(cells)});
}

void TextTable::print(std::ostream& out, bool isColoured) const {
    std::string lines;
    for (auto const& row : rows_) {
        for (std::size_t column = 0; column < row.cells.size(); ++column) {
            auto const& cell = row.cells[column];
            bool const isLast = column + 1 == row.cells.size();
            auto const width = widths_[row.layout][column] + 2;
            lines.append(isColoured ? styled(cell.text, cell.style) : cell.text)
                .append(isLast ? 0 : width - widthOf(cell.text), ' ');
        }
        lines += '\n';
    }
    writeOutput(out, lines);
}

} // namespace qel::tools
