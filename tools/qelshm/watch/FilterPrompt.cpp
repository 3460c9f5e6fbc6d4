// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/FilterPrompt.h"

namespace qel::watch {

void FilterPrompt::end() {
    isTyping_ = false;
    completion_.reset();
}

void FilterPrompt::clear() {
    text_.clear();
    end();
}

void FilterPrompt::type(char character) {
    text_ += character;
    completion_.reset();
}

void FilterPrompt::erase() {
    if (!text_.empty()) {
        text_.pop_back();
    }
    completion_.reset();
}

void FilterPrompt::complete(UnitStructure const& structure) {
    text_ = completion_.complete(text_, structure);
}

} // namespace qel::watch
